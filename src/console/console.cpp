// The line reader, the command table and the loop.
#include "console/console.h"

#include <readline/history.h>
#include <readline/readline.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <new>

#include "console/interrupts.h"
#include "console/losses.h"
#include "console/plain_reader.h"
#include "console/process.h"
#include "console/run.h"

int done = 0;
char* ligne = nullptr;
bool discrete = false;
bool disc_init = false;
std::string inputFile, scenarFile, measureFile, displayFile, modesFile;
std::string auxFile;
std::unique_ptr<Plant> consolePlant;
std::unique_ptr<RunState> consoleRun;

snCom const cde[] = {
    {"quit", snQuit, "Quit exec"},
    {"q", snQuit, "Shortcut to quit"},
    {"help", snHelp, "Get Help"},
    {"#", snComment, "Comment line"},
    {"detect", snDetect, "Prediction and default detection"},
    {"gnuplot", snGnup, "Display results"},
    {"gp", snGnup, "Shortcut to gnuplot"},
    {"init", snInit, "Run initializations"},
    {"print", snPrint, "Print data structures"},
    {"p", snPrint, "Shortcut to print"},
    {"simul", snSimul, "Simulation"},
    {"disc", snDisc, "Run discrete only models"},
    {"system", snSystem, "Issue a shell command"},
    {"debug", snDebug, "Debug mode"},
    {nullptr, nullptr, nullptr},
};

snCom const dde[] = {
    {"exit", deExit, "Return to normal mode"},
    {"x", deExit, "Shortcut to exit"},
    {"help", deHelp, "Get Help"},
    {"print", dePrint, "Print data structures"},
    {"p", dePrint, "Shortcut to print"},
    {nullptr, nullptr, nullptr},
};

namespace {

// How long the reader waits before it polls again at end of input, in microseconds.
constexpr unsigned endOfInputPause = 100000;
constexpr int namesPerRow = 6;

}  // namespace

snCom const* whichCom(snCom const* table, char const* word) {
    snCom const* found = nullptr;
    for (snCom const* record = table; record->name != nullptr; ++record)
        if (std::strcmp(record->name, word) == 0)
            found = record;
    return found;
}

namespace {

void printNoMatch(char const* arg) {
    std::fprintf(stderr, "No commands match `%s'.  Possibilities are:\n", arg);
    int column = 0;
    for (snCom const* record = cde; record->name != nullptr; ++record) {
        std::fprintf(stderr, "%-12s", record->name);
        column = (column + 1) % namesPerRow;
        if (column == 0)
            std::fprintf(stderr, "\n");
    }
    if (column != 0)
        std::fprintf(stderr, "\n");
}

}  // namespace

void printHelp(char const* arg) {
    int count = 0;
    for (snCom const* record = cde; record->name != nullptr; ++record) {
        bool const matches =
            arg == nullptr || std::strncmp(record->name, arg, std::strlen(arg)) == 0;
        if (!matches)
            continue;
        std::fprintf(stderr, "%-12s%s.\n", record->name, record->doc);
        ++count;
    }
    if (count == 0)
        printNoMatch(arg);
}

int snQuit(char const*) {
    done = 1;
    return 0;
}

int snHelp(char const* arg) {
    printHelp(arg);
    return 0;
}

int snComment(char const*) {
    return 1;
}

int deExit(char const*) {
    return 1;
}

int deHelp(char const*) {
    return 1;
}

int dePrint(char const*) {
    return 1;
}

void ligneInit() {
    constexpr std::size_t size = 81;
    ligne = static_cast<char*>(std::calloc(size, 1));
}

namespace {

// A line that the caller frees, or null. Keys are for terminals: what comes from elsewhere is read
// as it is. At a terminal the library's own completion works: Tab completes file names, not
// commands.
char* readLine(char const* prompt) {
    std::FILE* const in = rl_instream != nullptr ? rl_instream : stdin;
    if (isatty(fileno(in)))
        return readline(prompt);
    std::FILE* const out = rl_outstream != nullptr ? rl_outstream : stdout;
    std::optional<std::string> const line = readPlainLine(in, out, prompt);
    return line ? strdup(line->c_str()) : nullptr;
}

}  // namespace

char* do_gets(char const* prompt) {
    std::free(ligne);
    ligne = nullptr;
    flushAll();
    Waiting const waiting;
    try {
        ligne = readLine(prompt);
    } catch (std::bad_alloc const&) {
        tellLoss("Memory runs short: a line is not read.\n");
        return nullptr;
    }
    if (ligne == nullptr)
        usleep(endOfInputPause);
    else if (*ligne != '\0')
        add_history(ligne);
    return ligne;
}

void stripWhite(char* text) {
    auto const isSpace = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    if (text == nullptr)
        return;
    char const* start = text;
    while (isSpace(*start))
        ++start;
    std::size_t length = std::strlen(start);
    std::memmove(text, start, length + 1);
    while (length > 1 && isSpace(text[length - 1]))
        text[--length] = '\0';
}

void obeyLine(char* line) {
    stripWhite(line);
    char* argument = std::strchr(line, ' ');
    if (argument != nullptr)
        *argument++ = '\0';
    snCom const* command = whichCom(cde, line);
    if (command == nullptr) {
        std::fprintf(stderr, "%s: Unknown Tavro executer subcommand.\n", line);
        return;
    }
    stripWhite(argument);
    try {
        command->func(argument);
    } catch (std::bad_alloc const&) {
        tellLoss("Memory runs short: %s is not carried out.\n", line);
    }
}

// At end of input the console goes on polling: a script must end in `quit`.
void runConsole() {
    while (!done && statusOfInterrupt() == 0) {
        char* line = do_gets("e> ");
        if (line == nullptr || *line == '\0')
            continue;
        if (!isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO))
            std::fprintf(stderr, "%s\n", line);
        // Tested before the white space goes: a comment starts in the first column.
        if (*line != '#')
            obeyLine(line);
    }
}
