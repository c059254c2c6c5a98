// The options of the optimiser and their file, nelder.dat.
//
// The file is read by position: each option has its line, the value stands first on it, and all
// other text is comment. It is read again for every search, so that the optimiser can be re-tuned
// without a restart; without the file a search costs one failed fopen. A file is never trusted:
// a line may be missing, empty, foreign or of any length.
#include <cctype>
#include <cstdio>
#include <variant>

#include "support/nelder.h"

namespace {

typedef char Name[NELDER_NAME_SIZE];

constexpr Nelder_options DEFAULTS = {
    .trace = 0,
    .traceToFile = 0,
    .traceFile = "nelder.out",
    .optLog = 1,
    .optLogToFile = 0,
    .optLogFile = "nelder.opt",
    .stats = 1,
    .statsToFile = 0,
    .statsFile = "nelder.stat",
    .reflexion = 1.0,
    .contraction = 0.5,
    .expansion = 2.0,
    .reduction = 2.0,
    .initialType = 1,
    .initialSize = 0.1,
    .pivotType = 1,
    .stopType = 1,
    .tolCost = 1e-6,
    .tolX = 1e-6,
    .maxEvalFactor = 1000,
};

struct Entry {
    int line;  // counted from 1; the entries are in ascending order
    std::variant<int*, double*, Name*> value;
};

void readValue(std::FILE* file, int* value) {
    int read;
    if (std::fscanf(file, "%d", &read) == 1)
        *value = read;
}

void readValue(std::FILE* file, double* value) {
    double read;
    if (std::fscanf(file, "%lg", &read) == 1)
        *value = read;
}

// A name that is too long is cut; the width is that of a Name.
void readValue(std::FILE* file, Name* value) {
    static_assert(sizeof(Name) == 80);
    Name read;
    if (std::fscanf(file, "%79s", read) == 1)
        std::snprintf(*value, sizeof(Name), "%s", read);
}

void skipLine(std::FILE* file) {
    for (int c = std::fgetc(file); c != '\n' && c != EOF;)
        c = std::fgetc(file);
}

// Skips the blanks of the current line, and nothing beyond its end: fscanf alone would go on to the
// next line and take the value of another option. False when the line has no more text.
bool findValue(std::FILE* file) {
    int c = std::fgetc(file);
    while (c != '\n' && c != EOF && std::isspace(c))
        c = std::fgetc(file);
    if (c != EOF)
        std::ungetc(c, file);
    return c != '\n' && c != EOF;
}

template <typename Entries>
void readEntries(std::FILE* file, Entries const& entries) {
    int line = 1;
    for (Entry const& entry : entries) {
        for (; line < entry.line; ++line)
            skipLine(file);
        if (findValue(file))
            std::visit([file](auto* value) { readValue(file, value); }, entry.value);
    }
}

void readFile(std::FILE* file, Nelder_options* options) {
    Entry const entries[] = {
        {7, &options->trace},      {8, &options->traceToFile},    {9, &options->traceFile},
        {13, &options->optLog},    {14, &options->optLogToFile},  {15, &options->optLogFile},
        {19, &options->stats},     {20, &options->statsToFile},   {21, &options->statsFile},
        {25, &options->reflexion}, {26, &options->contraction},   {27, &options->expansion},
        {28, &options->reduction}, {32, &options->initialType},   {33, &options->initialSize},
        {37, &options->pivotType}, {41, &options->stopType},      {42, &options->tolCost},
        {43, &options->tolX},      {44, &options->maxEvalFactor},
    };
    readEntries(file, entries);
}

}  // namespace

void Nelder_init_options(Nelder_options* options) {
    *options = DEFAULTS;
    std::FILE* const file = std::fopen("nelder.dat", "r");
    if (!file)
        return;
    readFile(file, options);
    std::fclose(file);
}
