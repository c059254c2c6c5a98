// Reading a file whole.
#include "language/file_reader.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

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

namespace {

// Beside the program, wherever that has been moved to; else where the library was installed, for
// programs of others.
std::vector<std::filesystem::path> foldersOfLibrary() {
    std::vector<std::filesystem::path> folders;
    if (char const* told = std::getenv("TAVRO_LIBRARY"); told != nullptr && *told != '\0')
        folders.emplace_back(told);
    std::error_code failed;
    auto const program = std::filesystem::read_symlink("/proc/self/exe", failed);
    if (!failed)
        folders.push_back(program.parent_path() / TAVRO_LIBRARY_FROM_PROGRAM);
    folders.emplace_back(TAVRO_LIBRARY_INSTALLED);
    return folders;
}

}  // namespace

std::string FileReader::shipped(std::string const& name) {
    if (name.empty() || name.front() == '/')
        return {};
    std::vector<std::filesystem::path> const folders = foldersOfLibrary();
    std::error_code failed;
    for (auto const& folder : folders)
        if (std::filesystem::exists(folder / name, failed))
            return (folder / name).lexically_normal();
    return (folders.front() / name).lexically_normal();
}
