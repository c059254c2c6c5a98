// The words after a command.
#pragma once

#include <optional>
#include <string>

// Words separated by single blanks, taken one after the other; a null text has none.
class Parameters {
public:
    explicit Parameters(char const* text) : rest(text != nullptr ? text : "") {}
    // The next word without white space around it, or nothing.
    std::optional<std::string> next();

private:
    std::string rest;
};

// A number begins with a digit: a leading sign or point is refused.
bool isNumeric(std::string const& word);
// The value of a numeric word. Required: only the beginning has to be a number. It is told what a
// word is read as that does not look like the decimal number that it is read as.
double numberOf(std::string const& word);
