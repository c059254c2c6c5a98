// One wrong statement each, and what is told of it.
//
// The place that the message is to point at stands between two tildes, which are no part of the
// statement; with nothing between them it is the end of the line.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "language/text_fixture.h"

namespace language_fixture {

struct Slip {
    char const* statement;
    char const* text;
    char const* advice;
};

inline void PrintTo(Slip const& slip, std::ostream* out) {
    *out << slip.statement;
}

// Line 3 of a text.
struct Frame {
    std::string before, after;
};

// In a type with the variables x and y, the modes off and on, and the command c.
inline Frame const inType{
    "plant p; sample 1 s\ntype t { variable x = 0, y; mode off, on; command c: none, go\n",
    "\n  x integrates y; measure x, y; fail from off to on with 0.1 }\na: t()\n"};

// Beside the component a of such a type, which may be given a number k.
inline Frame const inFile{
    "plant p; sample 1 s\ntype t(k = 1) { variable x = 0, y; mode off, on; command c: none, go; x "
    "integrates y; measure x, y; fail from off to on with 0.1 }\n",
    "\na: t()\n"};

inline void expectTold(Frame const& frame, Slip const& slip) {
    std::string line = std::string("  ") + slip.statement;
    std::size_t const begin = line.find('~');
    std::size_t const width = line.find('~', begin + 1) - begin - 1;
    line.erase(begin, 1);
    line.erase(begin + width, 1);
    std::string const mark(std::max<std::size_t>(width, 1), '^');
    EXPECT_EQ(told(frame.before + line + frame.after),
              "p.plant:3:" + std::to_string(begin + 1) + ": error: " + slip.text + "\n  3 | " +
                  line + "\n    | " + std::string(begin, ' ') + mark + "\n    " + slip.advice +
                  "\n");
}

}  // namespace language_fixture
