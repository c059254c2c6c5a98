// Reading a file whole.
#include "language/file_reader.h"

#include <fstream>
#include <iterator>

// A directory can be opened, but nothing can be read from it.
std::optional<std::string> FileReader::read(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file || file.peek() == std::ifstream::traits_type::eof()) {
        bool const isEmpty = file.eof() && !file.bad();
        return isEmpty ? std::optional<std::string>("") : std::nullopt;
    }
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return file.bad() ? std::nullopt : std::optional<std::string>(std::move(text));
}
