// From a text to its tokens.
//
// Ends of lines end statements, so they are tokens; but not inside parentheses and brackets, behind
// what wants more, or before what only goes on. What means nothing is told here and left out.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "language/messages.h"
#include "language/source.h"

enum class TokenKind {
    end,
    statementEnd,  // an end of line that counts, or a semicolon
    name,
    number,
    string,
    parenOpen,
    parenClose,
    bracketOpen,
    bracketClose,
    braceOpen,
    braceClose,
    comma,
    colon,
    dot,
    dots,  // ..
    at,
    plus,
    minus,
    times,
    over,
    power,
    equal,
    different,
    less,
    lessEqual,
    greater,
    greaterEqual
};

struct Token {
    TokenKind kind;
    TextRange range;
    std::string_view text;  // of the source; of a string what is between its quotes
    double number = 0.0;
};

// The last token is TokenKind::end.
std::vector<Token> tokensOf(Sources const& sources, int file, Messages& messages);

// Words that cannot be names, since a statement goes on with them.
bool isReserved(std::string_view word);
// Words that begin a statement, and nothing else.
bool beginsStatement(std::string_view word);
