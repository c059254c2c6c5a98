// Finding the graphs of earlier runs.
#include "console/stale_graphs.h"

#include <dirent.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "console/losses.h"

namespace {

namespace fs = std::filesystem;

std::string const prefix = "htraj";
// More digits no run comes to, and an int holds these.
constexpr std::size_t mostDigits = 9;

std::string graphName(int number) {
    return prefix + std::to_string(number) + ".dot";
}

// The number in a name as the program writes it, or -1.
int numberIn(std::string const& name) {
    if (!name.starts_with(prefix))
        return -1;
    std::size_t const start = prefix.size();
    std::size_t const end = name.find_first_not_of("0123456789", start);
    if (end == std::string::npos || end == start || end - start > mostDigits)
        return -1;
    int const number = std::stoi(name.substr(start, end - start));
    return name == graphName(number) ? number : -1;
}

// The program's own graphs begin with their name.
bool isOurs(int number) {
    fs::path const path = graphName(number);
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(path, error)))
        return false;
    std::ifstream file(path);
    std::string const expected = "digraph " + path.stem().string() + " {\n";
    std::string found(expected.size(), '\0');
    file.read(found.data(), static_cast<std::streamsize>(found.size()));
    return found == expected;
}

// The numbers of the graphs that are there, from *first* on, in their order. The library's own walk
// over a directory would end the process when an allocation fails.
std::vector<int> graphsFrom(int first) {
    std::unique_ptr<DIR, int (*)(DIR*)> const directory(opendir("."), closedir);
    std::vector<int> numbers;
    if (directory == nullptr)
        return numbers;
    while (dirent const* entry = readdir(directory.get())) {
        int const number = numberIn(entry->d_name);
        if (number >= first && isOurs(number))
            numbers.push_back(number);
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

}  // namespace

void removeStaleGraphs(int count) {
    int removed = 0;
    std::string names;
    for (int const number : graphsFrom(count)) {
        std::string const name = graphName(number);
        std::error_code error;
        if (!fs::remove(name, error)) {
            tellLoss("Can't remove file %s, a graph of an earlier run\n", name.c_str());
            continue;
        }
        ++removed;
        names = removed == 1 ? name : names.substr(0, names.find(' ')) + " to " + name;
    }
    if (removed != 0)
        std::fprintf(stderr, "Graphs of an earlier run removed: %d, %s\n", removed, names.c_str());
}

void tellNoGraphs() {
    tellLoss("No graphs are written%s\n",
             graphsFrom(0).empty() ? "" : ": those here are of an earlier run");
}
