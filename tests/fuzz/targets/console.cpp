// Lines of a script: read, cut into words and looked up; help and print are obeyed. Run it with
// -close_fd_mask=3.
#include "console/console.h"

#include <cstring>

#include "console/console_host.h"
#include "console/parameters.h"
#include "console/plain_reader.h"
#include "fuzz/targets/target.h"

namespace {

// A command that neither starts a program nor a run.
bool isHarmless(std::string line) {
    stripWhite(line.data());
    std::string const word = line.substr(0, std::min(line.find(' '), std::strlen(line.c_str())));
    return word == "help" || word == "print" || word == "p" ||
           whichCom(cde, word.c_str()) == nullptr;
}

void readWords(std::string const& line) {
    Parameters parameters(line.c_str());
    while (std::optional<std::string> const word = parameters.next())
        if (isNumeric(*word))
            numberOf(*word);
}

void makeConsole() {
    if (consoleRun != nullptr)
        return;
    consolePlant = buildPlant(therm_model, consoleHost());
    consoleRun = std::make_unique<RunState>(*consolePlant, consoleHost());
}

}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    if (size == 0)
        return 0;
    makeConsole();
    std::string text = textOf(data, size);
    auto const stream = streamOver(text);
    for (int i = 0; i < 20; ++i) {
        std::optional<std::string> line = readPlainLine(stream.get(), stdout, "e> ");
        if (!line)
            break;
        readWords(*line);
        if (isHarmless(*line))
            obeyLine(line->data());
    }
    return 0;
}
