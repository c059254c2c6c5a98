// The memory that a process may still take, as Linux tells it.
//
// Control groups stand in each other, and each may have a limit: the memory of a group counts for
// all groups around it, so the walk goes from the group of the process up to the root. In a
// container the path that the process is told may be that of the machine outside, of which only the
// root is there: levels that are missing are passed over. What a group holds of files, to be read
// again faster, is given back as soon as it is needed and counts as left.
#include "support/available_memory.h"

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>
#include <sstream>

namespace {

constexpr double unlimited = std::numeric_limits<double>::infinity();
// Version 1 writes the highest number of pages, in bytes, where there is no limit. No machine has
// as much.
constexpr double mostOfAnyMachine = 1e18;

using Limits = std::vector<MemoryLimit>;

void addLimit(Limits& limits, double most, double used) {
    limits.push_back({most, std::max(0.0, most - used)});
}

// A text that is one number of bytes; none for "max" or whatever else it may be.
std::optional<double> numberIn(std::string const& text) {
    std::istringstream stream(text);
    double value = 0.0;
    if (stream >> value && value >= 0.0 && (stream >> std::ws).eof())
        return value;
    return std::nullopt;
}

// The number behind the word *field* at the start of a line.
std::optional<double> numberAfter(std::string const& text, std::string const& field) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string word;
        double value = 0.0;
        if (words >> word && word == field && words >> value)
            return value;
    }
    return std::nullopt;
}

// ---- The machine ----

void addMachine(SystemTexts const& system, Limits& limits) {
    constexpr double kilobyte = 1024.0;
    std::string const text = system.read("/proc/meminfo");
    auto const most = numberAfter(text, "MemTotal:");
    auto const left = numberAfter(text, "MemAvailable:");
    if (left)
        limits.push_back({most.value_or(*left) * kilobyte, *left * kilobyte});
}

// ---- The process ----

// Pages by kind, in the order of /proc/self/statm.
struct OwnPages {
    double addressSpace = 0.0, resident = 0.0, shared = 0.0, code = 0.0, libraries = 0.0,
           data = 0.0;  // with the stack
};

OwnPages ownPages(SystemTexts const& system) {
    OwnPages pages;
    std::istringstream text(system.read("/proc/self/statm"));
    text >> pages.addressSpace >> pages.resident >> pages.shared >> pages.code >> pages.libraries >>
        pages.data;
    return pages;
}

void addProcess(SystemTexts const& system, Limits& limits) {
    double const space = system.limitOf(RLIMIT_AS);
    double const data = system.limitOf(RLIMIT_DATA);
    if (space == unlimited && data == unlimited)
        return;
    OwnPages const pages = ownPages(system);
    auto const pageSize = static_cast<double>(sysconf(_SC_PAGESIZE));
    if (space != unlimited)
        addLimit(limits, space, pages.addressSpace * pageSize);
    if (data != unlimited)
        addLimit(limits, data, pages.data * pageSize);
}

// ---- Control groups ----

// The names of one version's files.
struct GroupFiles {
    char const* root;
    char const* limit;
    char const* usage;
    char const* fileCache;  // field of memory.stat: what is held of files and not in use
};

constexpr GroupFiles legacy{"/sys/fs/cgroup/memory", "/memory.limit_in_bytes",
                            "/memory.usage_in_bytes", "total_inactive_file"};
constexpr GroupFiles unified{"/sys/fs/cgroup", "/memory.max", "/memory.current", "inactive_file"};
// Where version 1 has the usual place and version 2 stands beside it.
constexpr GroupFiles beside{"/sys/fs/cgroup/unified", "/memory.max", "/memory.current",
                            "inactive_file"};

void addGroup(SystemTexts const& system, GroupFiles const& files, std::string const& directory,
              Limits& limits) {
    auto const most = numberIn(system.read(directory + files.limit));
    if (!most || *most >= mostOfAnyMachine)
        return;
    auto const used = numberIn(system.read(directory + files.usage));
    if (!used)
        return;
    double const cache =
        numberAfter(system.read(directory + "/memory.stat"), files.fileCache).value_or(0.0);
    addLimit(limits, *most, std::max(0.0, *used - cache));
}

// *path* is "/" for the root, else "/outer/inner".
void addGroups(SystemTexts const& system, GroupFiles const& files, std::string path,
               Limits& limits) {
    // A group outside of what the process can see.
    if (path.find("..") != std::string::npos)
        path.clear();
    while (!path.empty() && path.back() == '/')
        path.pop_back();
    for (; !path.empty(); path.erase(path.rfind('/')))
        addGroup(system, files, files.root + path, limits);
    addGroup(system, files, files.root, limits);
}

// The path in a line "number:controllers:path" of the group that rules over the memory: version 2
// names no controllers. None for another line.
std::optional<std::string> memoryPath(std::string const& line, bool& isLegacy) {
    std::size_t const first = line.find(':');
    std::size_t const second = first == std::string::npos ? first : line.find(':', first + 1);
    if (second == std::string::npos || second + 1 == line.size() || line[second + 1] != '/')
        return std::nullopt;
    std::string controllers = ",";
    controllers.append(line, first + 1, second - first - 1).append(",");
    isLegacy = controllers.find(",memory,") != std::string::npos;
    if (!isLegacy && controllers != ",,")
        return std::nullopt;
    return line.substr(second + 1);
}

// Without a path of its own the process is taken to stand at the root.
void addControlGroups(SystemTexts const& system, Limits& limits) {
    std::string legacyPath = "/", unifiedPath = "/";
    std::istringstream lines(system.read("/proc/self/cgroup"));
    for (std::string line; std::getline(lines, line);) {
        bool isLegacy = false;
        if (auto const path = memoryPath(line, isLegacy))
            (isLegacy ? legacyPath : unifiedPath) = *path;
    }
    addGroups(system, legacy, legacyPath, limits);
    addGroups(system, unified, unifiedPath, limits);
    addGroups(system, beside, unifiedPath, limits);
}

}  // namespace

std::string SystemTexts::read(std::string const& path) const {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

double SystemTexts::limitOf(int resource) const {
    rlimit limit{};
    if (getrlimit(static_cast<__rlimit_resource>(resource), &limit) != 0 ||
        limit.rlim_cur == RLIM_INFINITY)
        return unlimited;
    return static_cast<double>(limit.rlim_cur);
}

double SystemTexts::heldFree() const {
    return static_cast<double>(mallinfo2().fordblks);
}

std::vector<MemoryLimit> memoryLimits(SystemTexts const& system) {
    Limits limits;
    addMachine(system, limits);
    addProcess(system, limits);
    addControlGroups(system, limits);
    return limits;
}

double availableMemory(SystemTexts const& system) {
    double left = unlimited;
    for (MemoryLimit const& limit : memoryLimits(system))
        left = std::min(left, limit.left);
    return left;
}
