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

}  // namespace

bool wouldOverwriteInputs() {
    struct Input {
        char const* what;
        std::string path;
    };
    Input const inputs[] = {{"input file", inputFile},
                            {"measure file", measureFile},
                            {"scenario file", scenarFile},
                            {"file of prime implicates", consolePlant->name + ".pi"},
                            {"file of the optimiser's options", optimiserOptionsFile}};
    bool found = false;
    for (std::string const& output : {displayFile, modesFile, std::string(cycleBenchmark)})
        for (Input const& input : inputs)
            if (isSameFile(output, input.path)) {
                tellLoss("Can't write file %s: it is the %s %s\n", output.c_str(), input.what,
                         input.path.c_str());
                found = true;
            }
    return found;
}
