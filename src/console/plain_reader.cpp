// Reading and showing lines that nobody types.
//
// At a terminal a line is edited: some bytes fetch earlier lines, undo changes, or complete names.
// In a script the same bytes are binary rubbish or a slip, and obeying them would run commands that
// no line holds. So each byte is one of the line's own, but those that end it and those that cannot
// stand in it.
#include "console/plain_reader.h"

namespace {

constexpr std::size_t tabWidth = 8;  // columns

// A carriage return ends a line too, and the line end behind it an empty one.
bool endsLine(int c) {
    return c == '\n' || c == '\r';
}

bool isControl(unsigned char c) {
    return c < ' ' || c == 0x7f;
}

// All bytes of a letter in UTF-8 but its first.
bool continuesLetter(unsigned char c) {
    return (c & 0xc0) == 0x80;
}

// What one byte is shown as in *column*, counted from 0.
std::string shownByte(char c, std::size_t column) {
    if (c == '\t')
        return std::string(tabWidth - column % tabWidth, ' ');
    if (isControl(static_cast<unsigned char>(c)))
        return std::string("^") + static_cast<char>(c ^ 0x40);
    return std::string(1, c);
}

// *line* as it is shown from *column* on.
std::string shown(std::string const& line, std::size_t column) {
    std::string text;
    for (char const c : line) {
        std::string const piece = shownByte(c, column);
        text += piece;
        column += continuesLetter(static_cast<unsigned char>(c)) ? 0 : piece.size();
    }
    return text;
}

}  // namespace

std::optional<std::string> readPlainLine(std::FILE* in, std::FILE* out, char const* prompt) {
    std::fputs(prompt, out);
    std::fflush(out);
    std::clearerr(in);
    std::string line;
    bool zeroBytes = false;
    int c = std::fgetc(in);
    if (c == EOF)
        return std::nullopt;
    for (; c != EOF && !endsLine(c); c = std::fgetc(in)) {
        if (c == '\0')
            zeroBytes = true;
        else
            line += static_cast<char>(c);
    }
    if (zeroBytes)
        std::fputs("Zero bytes in a line are left out.\n", stderr);
    std::fprintf(out, "%s\n", shown(line, std::string(prompt).size()).c_str());
    std::fflush(out);
    return line;
}
