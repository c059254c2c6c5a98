// The options of the optimiser and their text, nelder.dat.
//
// The text is read by position: each option has its line, the value stands first on it, and all
// else is comment. A text is never trusted: a line may be missing, empty, foreign or of any length.
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>
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

// One that no int holds is none: wrapped around, a negative limit would be one of two billion.
void readValue(std::string const& text, int* value) {
    char* end = nullptr;
    errno = 0;
    long const read = std::strtol(text.c_str(), &end, 10);
    if (end != text.c_str() && errno == 0 && read >= INT_MIN && read <= INT_MAX)
        *value = static_cast<int>(read);
}

void readValue(std::string const& text, double* value) {
    double read;
    if (std::sscanf(text.c_str(), "%lg", &read) == 1)
        *value = read;
}

bool isBlank(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// The first word; one that is too long is cut, and so is one that holds a zero.
void readValue(std::string const& text, Name* value) {
    std::size_t length = 0;
    while (length < text.size() && length < sizeof(Name) - 1 && !isBlank(text[length]))
        ++length;
    text.copy(*value, length);
    (*value)[length] = '\0';
}

// The text of a line from its first character that is no blank on.
std::string withoutIndent(std::string const& line) {
    std::size_t first = 0;
    while (first < line.size() && isBlank(line[first]))
        ++first;
    return line.substr(first);
}

template <typename Entries>
void readEntries(std::istream& text, Entries const& entries) {
    int line = 0;
    std::string read;
    for (Entry const& entry : entries) {
        for (; line < entry.line; ++line)
            if (!std::getline(text, read))
                return;
        if (std::string const value = withoutIndent(read); !value.empty())
            std::visit([&value](auto* option) { readValue(value, option); }, entry.value);
    }
}

}  // namespace

Nelder_options Nelder_default_options() {
    return DEFAULTS;
}

void Nelder_read_options(std::istream& text, Nelder_options& options) {
    Entry const entries[] = {
        {7, &options.trace},      {8, &options.traceToFile},    {9, &options.traceFile},
        {13, &options.optLog},    {14, &options.optLogToFile},  {15, &options.optLogFile},
        {19, &options.stats},     {20, &options.statsToFile},   {21, &options.statsFile},
        {25, &options.reflexion}, {26, &options.contraction},   {27, &options.expansion},
        {28, &options.reduction}, {32, &options.initialType},   {33, &options.initialSize},
        {37, &options.pivotType}, {41, &options.stopType},      {42, &options.tolCost},
        {43, &options.tolX},      {44, &options.maxEvalFactor},
    };
    readEntries(text, entries);
}
