// Cutting a text into tokens.
#include "language/lexer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

bool isReserved(std::string_view word) {
    static constexpr std::string_view words[] = {
        "all",     "always",   "and", "any",  "by",    "follows", "for",        "from", "if",
        "iff",     "in",       "inf", "lags", "never", "implies", "integrates", "not",  "or",
        "setting", "responds", "to",  "when", "with",  "within",  "starts"};
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

bool beginsStatement(std::string_view word) {
    static constexpr std::string_view words[] = {
        "plant",      "sample",   "window",  "include", "constant", "type",   "order", "set",
        "parameter",  "variable", "measure", "display", "move",     "fail",   "idle",  "clause",
        "constraint", "define",   "import",  "region",  "observe",  "command"};
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

namespace {

// A line that ends in one of these goes on.
bool wantsMore(Token const& token) {
    static constexpr std::string_view words[] = {
        "and", "by", "follows", "from", "if",   "iff",  "in",     "lags", "implies", "integrates",
        "not", "or", "setting", "to",   "when", "with", "within", "for",  "starts",  "responds"};
    if (token.kind == TokenKind::name)
        return std::find(std::begin(words), std::end(words), token.text) != std::end(words);
    return token.kind >= TokenKind::comma;
}

// A line that begins with one of these goes on with the one before.
bool goesOn(Token const& token) {
    static constexpr std::string_view words[] = {"and",     "by",     "if",      "iff",
                                                 "implies", "or",     "setting", "to",
                                                 "when",    "within", "with",    "starts"};
    if (token.kind == TokenKind::name)
        return std::find(std::begin(words), std::end(words), token.text) != std::end(words);
    return token.kind == TokenKind::plus || token.kind == TokenKind::minus ||
           token.kind == TokenKind::times || token.kind == TokenKind::over ||
           token.kind == TokenKind::comma;
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

class Lexer {
public:
    Lexer(Sources const& sources, int file, Messages& messages)
        : file(file), text(sources[file].text()), messages(messages) {}

    std::vector<Token> run() {
        while (at < text.size())
            step();
        lineEnded = true;
        put(TokenKind::end, 0);
        return std::move(tokens);
    }

private:
    char peek(std::size_t ahead = 0) const {
        return at + ahead < text.size() ? text[at + ahead] : '\0';
    }
    TextRange rangeOf(std::size_t begin, std::size_t length) const {
        return {file, static_cast<int>(begin), static_cast<int>(begin + length)};
    }

    void step();
    void put(TokenKind kind, std::size_t length, double number = 0.0);
    void endLine(Token const& next);
    bool isDeclared() const;
    void number();
    void string();
    bool symbol();
    void meaningless();

    int file;
    std::string_view text;
    Messages& messages;
    std::size_t at = 0;
    std::vector<Token> tokens;
    bool lineEnded = false;
    std::size_t lineEnd = 0;  // where, when it did
    int depth = 0;            // parentheses and brackets that are open
};

void Lexer::step() {
    char const c = peek();
    if (c == '\n') {
        if (!lineEnded)
            lineEnd = at;
        lineEnded = true;
        ++at;
    } else if (c == ' ' || c == '\t' || c == '\r') {
        ++at;
    } else if (c == '#') {
        at = std::min(text.find('\n', at), text.size());
    } else if (isLetter(c)) {
        std::size_t length = 1;
        while (isLetter(peek(length)) || isDigit(peek(length)))
            ++length;
        put(TokenKind::name, length);
    } else if (isDigit(c)) {
        number();
    } else if (c == '"') {
        string();
    } else if (!symbol()) {
        meaningless();
    }
}

// Puts the end of the line before *next*, if it counts.
void Lexer::endLine(Token const& next) {
    lineEnded = false;
    bool const begins = next.kind == TokenKind::braceClose ||
                        (next.kind == TokenKind::name &&
                         (beginsStatement(next.text) || (next.text == "mode" && isDeclared())));
    if (begins || next.kind == TokenKind::end)
        depth = 0;  // what is still open was forgotten, and is told by the parser
    if (tokens.empty() || depth > 0 || tokens.back().kind == TokenKind::statementEnd)
        return;
    if (!begins && next.kind != TokenKind::end && (wantsMore(tokens.back()) || goesOn(next)))
        return;
    tokens.push_back({TokenKind::statementEnd, rangeOf(lineEnd, 1), "end of the line", 0.0});
}

// Behind the word mode, which begins at the current place, stands a name, and so no condition.
bool Lexer::isDeclared() const {
    std::size_t ahead = 4;
    while (peek(ahead) == ' ' || peek(ahead) == '\t')
        ++ahead;
    return isLetter(peek(ahead)) &&
           !(text.substr(at + ahead, 2) == "in" && !isLetter(peek(ahead + 2)));
}

void Lexer::put(TokenKind kind, std::size_t length, double number) {
    Token const token{kind, rangeOf(at, length), text.substr(at, length), number};
    if (lineEnded)
        endLine(token);
    if (kind == TokenKind::parenOpen || kind == TokenKind::bracketOpen)
        ++depth;
    if ((kind == TokenKind::parenClose || kind == TokenKind::bracketClose) && depth > 0)
        --depth;
    tokens.push_back(token);
    at += length;
}

// Two dots behind digits are a range, and no part of the number.
void Lexer::number() {
    std::size_t length = 1;
    auto const digits = [&] {
        while (isDigit(peek(length)))
            ++length;
    };
    digits();
    if (peek(length) == '.' && isDigit(peek(length + 1))) {
        ++length;
        digits();
    }
    std::size_t const sign = peek(length + 1) == '+' || peek(length + 1) == '-' ? 1 : 0;
    if ((peek(length) == 'e' || peek(length) == 'E') && isDigit(peek(length + 1 + sign))) {
        length += 1 + sign;
        digits();
    }
    double value = 0.0;
    auto const result = std::from_chars(text.data() + at, text.data() + at + length, value);
    if (result.ec == std::errc::result_out_of_range) {
        messages.error(rangeOf(at, length), "this number cannot be held",
                       "its size must be from 1e-307 to 1e308");
        value = 1.0;
    }
    put(TokenKind::number, length, value);
}

void Lexer::string() {
    std::size_t length = 1;
    while (at + length < text.size() && peek(length) != '"' && peek(length) != '\n')
        ++length;
    bool const closed = peek(length) == '"';
    if (!closed)
        messages.error(rangeOf(at, length), "this text has no end", "close it with \" on its line");
    std::string_view const content = text.substr(at + 1, length - 1);
    put(TokenKind::string, length + (closed ? 1 : 0));
    tokens.back().text = content;
}

bool Lexer::symbol() {
    struct Symbol {
        std::string_view text;
        TokenKind kind;
    };
    // Longer ones first.
    static constexpr Symbol symbols[] = {
        {"..", TokenKind::dots},        {"!=", TokenKind::different},
        {"<=", TokenKind::lessEqual},   {">=", TokenKind::greaterEqual},
        {"(", TokenKind::parenOpen},    {")", TokenKind::parenClose},
        {"[", TokenKind::bracketOpen},  {"]", TokenKind::bracketClose},
        {"{", TokenKind::braceOpen},    {"}", TokenKind::braceClose},
        {",", TokenKind::comma},        {":", TokenKind::colon},
        {".", TokenKind::dot},          {"@", TokenKind::at},
        {"+", TokenKind::plus},         {"-", TokenKind::minus},
        {"*", TokenKind::times},        {"/", TokenKind::over},
        {"^", TokenKind::power},        {"=", TokenKind::equal},
        {"<", TokenKind::less},         {">", TokenKind::greater},
        {";", TokenKind::statementEnd},
    };
    for (Symbol const& symbol : symbols)
        if (text.substr(at, symbol.text.size()) == symbol.text) {
            put(symbol.kind, symbol.text.size());
            return true;
        }
    return false;
}

// A run of bytes that begin no token is told once.
void Lexer::meaningless() {
    std::size_t const begin = at;
    auto const begins = [](char c) {
        return isLetter(c) || isDigit(c) ||
               std::string_view(" \t\r\n#\".!=<>()[]{},:@+-*/^;").find(c) != std::string_view::npos;
    };
    do
        ++at;
    while (at < text.size() && !begins(text[at]));
    messages.error(rangeOf(begin, at - begin), "these characters have no meaning here",
                   "take them out; names are of letters, digits and _");
}

}  // namespace

std::vector<Token> tokensOf(Sources const& sources, int file, Messages& messages) {
    return Lexer(sources, file, messages).run();
}
