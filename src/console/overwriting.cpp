// Comparing the files that a run writes with those that it reads, and with each other.
#include "console/overwriting.h"

#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "console/console.h"
#include "console/exchange.h"
#include "console/losses.h"

namespace {

namespace fs = std::filesystem;

// Regular files alone can be overwritten: a device or a pipe may be at both ends.
bool isSameFile(std::string const& one, std::string const& other) {
    struct stat a {
    }, b{};
    return stat(one.c_str(), &a) == 0 && stat(other.c_str(), &b) == 0 && S_ISREG(a.st_mode) &&
           a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// Leads to the file that the program was given as its input.
constexpr char const* standardInput = "/dev/stdin";

void tellRefused(std::string const& output, char const* what, std::string const& input) {
    tellLoss("Can't write file %s: it is the %s %s\n", output.c_str(), what, input.c_str());
}

// Where a file is, or would be made: a directory and a name in it. Without a name nothing can be
// made there.
struct Spot {
    dev_t device = 0;
    ino_t directory = 0;
    std::string name;
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

Spot spotOf(fs::path path) {
    constexpr int mostLinks = 40;  // as the system has it
    for (int links = 0; followLink(path); ++links)
        if (links == mostLinks)
            return {};
    fs::path const name = path.filename();
    fs::path const directory = path.has_parent_path() ? path.parent_path() : ".";
    struct stat status {};
    if (name.empty() || name == "." || name == ".." || stat(directory.c_str(), &status) != 0)
        return {};
    return {status.st_dev, status.st_ino, name};
}

// What is to be written need not be there yet, nor what a link leads to.
bool leadToOneFile(std::string const& one, std::string const& other) {
    struct stat status {};
    if (stat(one.c_str(), &status) == 0)
        return isSameFile(one, other);
    Spot const spot = spotOf(one), otherSpot = spotOf(other);
    return !spot.name.empty() && spot.name == otherSpot.name && spot.device == otherSpot.device &&
           spot.directory == otherSpot.directory;
}

bool refuses(std::string const& output, char const* what, std::string const& input) {
    bool const same = leadToOneFile(output, input);
    if (same)
        tellRefused(output, what, input);
    return same;
}

bool refusesWritten(std::string const& output, char const* what, std::string const& written) {
    bool const same = !output.empty() && !written.empty() && leadToOneFile(output, written);
    if (same)
        tellRefused(output, what, written);
    return same;
}

bool wouldOverwriteLog(std::string const& output) {
    bool found = refusesWritten(output, "log of cycles", cycleBenchmark);
    found |= refusesWritten(output, "log of steps", stepBenchmark);
    found |= refusesWritten(output, "log of propagations", propagationBenchmark);
    return found;
}

}  // namespace

bool wouldOverwriteInput(std::string const& output) {
    bool found = refuses(output, "input file", inputFile);
    found |= refuses(output, "measure file", measureFile);
    found |= refuses(output, "scenario file", scenarFile);
    if (consolePlant != nullptr)
        found |= refuses(output, "file of prime implicates", consolePlant->name + ".pi");
    found |= refuses(output, "file of the optimiser's options", optimiserOptionsFile);
    found |= refuses(output, "script", standardInput);
    return found;
}

bool wouldOverwriteOutput(std::string const& output) {
    bool found = refusesWritten(output, "display file", displayFile);
    found |= refusesWritten(output, "mode file", modesFile);
    found |= wouldOverwriteLog(output);
    return found;
}

bool wouldOverwriteFiles() {
    bool found = false;
    for (std::string const& output : {displayFile, modesFile, std::string(cycleBenchmark)})
        found |= wouldOverwriteInput(output);
    found |= refusesWritten(displayFile, "mode file", modesFile);
    for (std::string const& output : {displayFile, modesFile})
        found |= wouldOverwriteLog(output);
    return found;
}

// The arguments are not understood yet: each may be any file. One that is no more than the name of
// a log is left to wouldOverwriteFiles, which knows what it is for.
bool wouldOverwriteArgument(std::string const& output, int count, char const* const* arguments) {
    std::error_code error;
    bool const leadsAway = fs::is_symlink(output, error);
    auto const same = leadsAway ? leadToOneFile : isSameFile;
    bool found = refuses(output, "script", standardInput);
    for (char const* const* argument = arguments + 1; argument < arguments + count; ++argument)
        if (same(output, inputPrefix + std::string(*argument)) ||
            same(output, measurePrefix + std::string(*argument))) {
            tellRefused(output, "argument", *argument);
            found = true;
        }
    return found;
}
