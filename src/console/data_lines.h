// The lines of one data file, read in the order of the steps, and what is odd about them.
//
// What is used of a line: numbers one after the other, across line ends where a line holds too few,
// and then nothing up to the line's end. That lets files through which mean something else than
// they say: a decimal comma, a date in front, a blank line for a lost step. So each oddity is told,
// with its place and what was made of it; once for a file, since where there is one there may be a
// thousand.
#pragma once

#include <array>
#include <cstdio>
#include <optional>
#include <string>

// Holds a meaning from the opening of a file to the opening of the next one. Does not own the
// stream.
class DataLines {
public:
    // Before the first byte of the file *path*.
    explicit DataLines(std::string path = "") : path(std::move(path)) {}

    // Reads *count* values for simTime. A value stays where there is no number for it. Throws
    // RunStopped when the run is to stop while the line is waited for.
    void read(std::FILE* stream, int count, double* values);

private:
    // What is told once.
    enum Kind { GLUED, SHORT, LONG, BLANK, ENDED, kinds };
    struct Place {
        int line = 1, column = 1;
    };

    void readLine(std::FILE* stream, int count, double* values);
    bool readValue(std::FILE* stream, int index, int count, double* value);
    bool findValue(std::FILE* stream, int index, int count);
    int skipBlanks(std::FILE* stream);
    void skipByte(int c);
    int readNumber(std::FILE* stream, double* number);
    void tellWhatFollows(std::FILE* stream, double number);
    void lookForMore(std::FILE* stream, int count);
    void skipLine(std::FILE* stream);
    void tellEnd(std::FILE* stream, int index, int count);
    void tellShort(int index, int count, std::string const& madeOfIt);
    void tell(Kind kind, Place place, std::string const& text);

    std::string path;
    std::optional<bool> awaited;  // whether lines may be long in coming; known from the first on
    // Of the next byte. The column holds a meaning until the rest of a line is skipped, and again
    // from the next line on.
    Place place;
    bool lineIsBlank = true;  // as far as it has been read
    bool glued = false;       // the last number was followed by text
    int lastLine = 0;         // that is not blank; 0 before there is one
    Place shortEnd;           // where the first line ended that skipBlanks went over
    int blankLine = 0;        // first one that skipBlanks went over, or 0
    std::array<bool, kinds> told{};
};
