// Reading a file whole.
#include "tavro/file_reader.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

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

std::string FileReader::shipped(std::string const& name) {
    std::error_code failed;
    auto const program = std::filesystem::read_symlink("/proc/self/exe", failed);
    if (failed || name.empty() || name.front() == '/')
        return {};
    return (program.parent_path() / TAVRO_LIBRARY_FROM_PROGRAM / name).lexically_normal();
}
