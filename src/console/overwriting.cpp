// Comparing the files that a run writes with those that it reads.
#include "console/overwriting.h"

#include <sys/stat.h>

#include <string>

#include "console/console.h"
#include "console/exchange.h"
#include "console/losses.h"

namespace {

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

bool refuses(std::string const& output, char const* what, std::string const& input) {
    bool const same = isSameFile(output, input);
    if (same)
        tellRefused(output, what, input);
    return same;
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

bool wouldOverwriteInputs() {
    bool found = false;
    for (std::string const& output : {displayFile, modesFile, std::string(cycleBenchmark)})
        found |= wouldOverwriteInput(output);
    return found;
}

// The arguments are not understood yet: each may be any file.
bool wouldOverwriteArgument(std::string const& output, int count, char const* const* arguments) {
    bool found = refuses(output, "script", standardInput);
    for (char const* const* argument = arguments + 1; argument < arguments + count; ++argument)
        if (isSameFile(output, inputPrefix + std::string(*argument)) ||
            isSameFile(output, measurePrefix + std::string(*argument))) {
            tellRefused(output, "argument", *argument);
            found = true;
        }
    return found;
}
