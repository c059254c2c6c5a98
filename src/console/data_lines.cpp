// Numbers from lines, and the oddities of lines.
#include "console/data_lines.h"

#include <sys/stat.h>

#include <cctype>
#include <cmath>

#include "console/interrupts.h"
#include "console/losses.h"
#include "console/run.h"
#include "support/numbers.h"
#include "support/run_stopped.h"

namespace {

bool isBlank(int c) {
    return std::isspace(c) != 0;
}

// Who stops the run does not wait for a line that may never come.
void heedStop(std::FILE* stream) {
    if (std::ferror(stream) != 0 && stopReason() != nullptr)
        throw RunStopped(RunStopped::overdue, stopReason());
}

// The next byte, or EOF.
int next(std::FILE* stream) {
    int const c = std::fgetc(stream);
    if (c == EOF)
        heedStop(stream);
    return c;
}

// The same, and it stays in the stream.
int peek(std::FILE* stream) {
    int const c = next(stream);
    return c == EOF ? EOF : std::ungetc(c, stream);
}

// Whether the next line may be long in coming.
bool isAwaited(std::FILE* stream) {
    struct stat status {};
    return fstat(fileno(stream), &status) == 0 && !S_ISREG(status.st_mode);
}

}  // namespace

void DataLines::read(std::FILE* stream, int count, double* values) {
    if (count == 0)
        return;
    if (!awaited)
        awaited = isAwaited(stream);
    std::optional<Interruptible> interruptible;
    if (*awaited)
        interruptible.emplace();
    readLine(stream, count, values);
}

void DataLines::readLine(std::FILE* stream, int count, double* values) {
    bool reading = true;
    for (int i = 0; i < count && reading; ++i)
        reading = readValue(stream, i, count, &values[i]);
    if (reading && !glued)
        lookForMore(stream, count);
    skipLine(stream);
}

// False when the rest of the line is of no use.
bool DataLines::readValue(std::FILE* stream, int index, int count, double* value) {
    if (!findValue(stream, index, count))
        return false;
    lastLine = place.line;
    lineIsBlank = glued = false;
    double number = *value;
    int const result = readNumber(stream, &number);
    if (result == 1 && std::isfinite(number)) {
        *value = number;
        tellWhatFollows(stream, number);
        return true;
    }
    tellLoss("%s: value %d of time %g is not a number, %g stays\n", path.c_str(), index + 1,
             simTime, *value);
    return result == 1;
}

// Goes to the next byte that is not blank, and tells what it went over; false, told, when there is
// none.
bool DataLines::findValue(std::FILE* stream, int index, int count) {
    Place const before = place;
    if (skipBlanks(stream) == EOF) {
        tellEnd(stream, index, count);
        return false;
    }
    std::string const line = std::to_string(place.line);
    if (index > 0 && place.line > before.line)
        tellShort(index, count, "the next ones come from line " + line);
    if (blankLine != 0)
        tell(BLANK, {blankLine, 1},
             "blank line, skipped: line " + line + " stands for time " + shortText(simTime));
    return true;
}

// Sets shortEnd and blankLine. Returns what peek would.
int DataLines::skipBlanks(std::FILE* stream) {
    int const line = place.line;
    blankLine = 0;
    int c = next(stream);
    for (; c != EOF && isBlank(c); c = next(stream)) {
        if (c == '\n' && lineIsBlank && blankLine == 0)
            blankLine = place.line;
        if (place.line == line)
            shortEnd = place;
        skipByte(c);
    }
    if (place.line == line)
        shortEnd = place;
    return c == EOF ? EOF : std::ungetc(c, stream);
}

void DataLines::skipByte(int c) {
    ++place.column;
    if (c != '\n')
        return;
    place = {place.line + 1, 1};
    lineIsBlank = true;
}

// The result of the scan: 1 for a number, finite or not. Stands on no blank.
int DataLines::readNumber(std::FILE* stream, double* number) {
    int bytes = 0;
    int const result = std::fscanf(stream, "%lg%n", number, &bytes);
    heedStop(stream);
    place.column += bytes;
    return result;
}

void DataLines::tellWhatFollows(std::FILE* stream, double number) {
    int const c = peek(stream);
    glued = c != EOF && !isBlank(c);
    if (!glued)
        return;
    std::string const taken = shortText(number);
    tell(GLUED, place, "text follows " + taken + " without a blank, " + taken + " is taken");
}

// Behind the last number of a line anything may stand, but a number there looks like a column that
// the model does not know.
void DataLines::lookForMore(std::FILE* stream, int count) {
    int c = peek(stream);
    for (; c != EOF && c != '\n' && isBlank(c); c = peek(stream))
        skipByte(std::fgetc(stream));
    if (c == EOF || isBlank(c))
        return;
    Place const start = place;
    double number = 0.0;
    if (readNumber(stream, &number) == 1 && (peek(stream) == EOF || isBlank(peek(stream))))
        tell(LONG, start,
             "too many numbers, more than " + std::to_string(count) +
                 ": the rest of the line is skipped");
}

// Leaves the line end.
void DataLines::skipLine(std::FILE* stream) {
    [[maybe_unused]] int const skipped = std::fscanf(stream, "%*[^\n]");
    heedStop(stream);
}

void DataLines::tellEnd(std::FILE* stream, int index, int count) {
    if (std::ferror(stream) != 0)
        tellLoss("Can't read file %s\n", path.c_str());
    else if (index > 0)
        tellShort(index, count, "the next ones stay");
    else if (lastLine == 0)
        tell(ENDED, {}, "no line: the values stay from time " + shortText(simTime) + " on");
    else
        tell(ENDED, {lastLine, 1},
             "last line: the values stay from time " + shortText(simTime) + " on");
}

void DataLines::tellShort(int index, int count, std::string const& madeOfIt) {
    tell(SHORT, shortEnd,
         "too few numbers, " + std::to_string(index) + " of " + std::to_string(count) + ": " +
             madeOfIt);
}

void DataLines::tell(Kind kind, Place where, std::string const& text) {
    if (told[kind])
        return;
    told[kind] = true;
    tellLoss("%s, line %d, column %d: %s\n", path.c_str(), where.line, where.column, text.c_str());
}
