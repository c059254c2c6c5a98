// Comparing the files that a run writes with those that it reads, and with each other.
#include "console/overwriting.h"

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "console/console.h"
#include "console/exchange.h"
#include "console/losses.h"

namespace {

namespace fs = std::filesystem;

// ---- Files by other means than their names ----

// A file that is there, or the directory and the name by which it would be made.
struct Identity {
    // Regular files alone can be overwritten: a device or a pipe may be at both ends.
    enum Kind { NONE, PRESENT, ABSENT } kind = NONE;
    dev_t device = 0;
    ino_t inode = 0;   // of the file, or of the directory
    std::string name;  // of one that is absent

    bool operator==(Identity const&) const = default;
};

// Replaces a path that is a symbolic link by the path that it holds.
bool followLink(fs::path& path) {
    std::error_code error;
    fs::path const target = fs::read_symlink(path, error);
    if (error)
        return false;
    path = path.parent_path() / target;
    return true;
}

// Where the file would be made that *path* leads to.
Identity absentFile(fs::path path) {
    constexpr int mostLinks = 40;  // as the system has it
    for (int links = 0; followLink(path); ++links)
        if (links == mostLinks)
            return {};
    fs::path const name = path.filename();
    fs::path const directory = path.has_parent_path() ? path.parent_path() : ".";
    struct stat status {};
    if (name.empty() || name == "." || name == ".." || stat(directory.c_str(), &status) != 0)
        return {};
    return {Identity::ABSENT, status.st_dev, status.st_ino, name};
}

Identity identityOf(std::string const& path) {
    struct stat status {};
    if (path.empty())
        return {};
    if (stat(path.c_str(), &status) != 0)
        return absentFile(path);
    if (!S_ISREG(status.st_mode))
        return {};
    return {Identity::PRESENT, status.st_dev, status.st_ino, ""};
}

bool isSame(Identity const& one, Identity const& other) {
    return one.kind != Identity::NONE && one == other;
}

// ---- Files that are in use ----

struct UsedFile {
    UsedFile(char const* use, std::string path)
        : use(use), path(std::move(path)), identity(identityOf(this->path)) {}

    char const* use;  // as a message tells it
    std::string path;
    Identity identity;
};
using UsedFiles = std::vector<UsedFile>;

// Leads to the file that the program was given as its input.
constexpr char const* standardInput = "/dev/stdin";

UsedFiles inputs() {
    UsedFiles files{
        {"input file", inputFile}, {"measure file", measureFile}, {"scenario file", scenarFile}};
    if (consolePlant != nullptr)
        files.emplace_back("file of prime implicates", consolePlant->name + ".pi");
    files.emplace_back("file of the optimiser's options", optimiserOptionsFile);
    files.emplace_back("script", standardInput);
    return files;
}

UsedFiles logs() {
    return {{"log of cycles", cycleBenchmark},
            {"log of steps", stepBenchmark},
            {"log of propagations", propagationBenchmark}};
}

// ---- Refusals ----

void tellRefused(std::string const& output, char const* use, std::string const& path) {
    tellLoss("Can't write file %s: it is the %s %s\n", output.c_str(), use, path.c_str());
}

// Whether *output* is one of the files, which is told of each.
bool refuses(std::string const& output, UsedFiles const& files) {
    Identity const identity = identityOf(output);
    bool found = false;
    for (UsedFile const& file : files)
        if (isSame(identity, file.identity)) {
            tellRefused(output, file.use, file.path);
            found = true;
        }
    return found;
}

}  // namespace

bool leadToOneFile(std::string const& one, std::string const& other) {
    return isSame(identityOf(one), identityOf(other));
}

bool wouldOverwriteInput(std::string const& output) {
    return refuses(output, inputs());
}

bool wouldOverwriteOutput(std::string const& output) {
    bool found = refuses(output, {{"display file", displayFile}, {"mode file", modesFile}});
    found |= refuses(output, logs());
    return found;
}

bool wouldOverwriteFiles() {
    UsedFiles const read = inputs(), written = logs();
    bool found = false;
    for (std::string const& output : {displayFile, modesFile})
        found |= refuses(output, read);
    // A log that was not there at the start can still be what is read as measures: its timings.
    for (UsedFile const& log : written)
        found |= refuses(log.path, read);
    found |= refuses(displayFile, {{"mode file", modesFile}});
    for (std::string const& output : {displayFile, modesFile})
        found |= refuses(output, written);
    return found;
}

// The arguments are not understood yet: each may be any file. One that is no more than the name of
// a log is left to wouldOverwriteFiles, which knows what it is for.
bool wouldOverwriteArgument(std::string const& output, int count, char const* const* arguments) {
    Identity const identity = identityOf(output);
    std::error_code error;
    bool const lost = identity.kind == Identity::PRESENT || fs::is_symlink(output, error);
    bool found = refuses(output, {{"script", standardInput}});
    for (char const* const* argument = arguments + 1; lost && argument < arguments + count;
         ++argument)
        if (isSame(identity, identityOf(inputPrefix + std::string(*argument))) ||
            isSame(identity, identityOf(measurePrefix + std::string(*argument)))) {
            tellRefused(output, "argument", *argument);
            found = true;
        }
    return found;
}
