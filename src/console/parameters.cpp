// Splitting the text after a command into words.
#include "console/parameters.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

#include "console/console.h"

std::optional<std::string> Parameters::next() {
    std::size_t const start = rest.find_first_not_of(' ');
    if (start == std::string::npos)
        return std::nullopt;
    std::size_t const end = rest.find(' ', start);
    std::string word = rest.substr(start, end == std::string::npos ? end : end - start);
    rest = end == std::string::npos ? "" : rest.substr(end);
    stripWhite(word.data());
    word.resize(word.find('\0') == std::string::npos ? word.size() : word.find('\0'));
    return word;
}

bool isNumeric(std::string const& word) {
    return !word.empty() && std::isdigit(static_cast<unsigned char>(word.front())) != 0;
}

double numberOf(std::string const& word) {
    char* end = nullptr;
    double const number = std::strtod(word.c_str(), &end);
    bool const decimal = word.find_first_not_of("0123456789.eE+-") == std::string::npos;
    if (!decimal || *end != '\0')
        std::fprintf(stderr, "Parameter %s is read as %g\n", word.c_str(), number);
    return number;
}
