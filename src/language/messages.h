// What is told of a plant's text: errors, and warnings of what is legal and probably not meant.
//
// A message names a place, says in the reader's words what is wrong there, and what to write
// instead. All phases add to one list; it is shown in the order of the text.
#pragma once

#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "language/source.h"

enum class Severity { error, warning };

struct Message {
    Severity severity;
    TextRange range;
    std::string text;    // a sentence without its full stop
    std::string advice;  // what to do; may be empty
};

class Messages {
public:
    // The same sentence at the same place is told once, as when many instances share a type.
    void error(TextRange const& range, std::string text, std::string advice = "");
    void warning(TextRange const& range, std::string text, std::string advice = "");

    bool hasErrors() const { return errors > 0; }
    int countErrors() const { return errors; }
    int countWarnings() const { return static_cast<int>(list.size()) - errors; }
    // In the order of the texts; what has no place comes first.
    std::vector<Message> inOrder() const;

private:
    void add(Message message);

    std::vector<Message> list;
    std::set<std::tuple<int, int, std::string>> told;
    int errors = 0;
};

// With the place, the line, and a mark below it:
//
//     room.plant:12:3: error: there is no variable xdp
//       12 |   xdp = 3
//          |   ^^^
//          did you mean xdq?
std::string rendered(Message const& message, Sources const& sources);
// Every message of the list, each behind an empty line but the first.
std::string rendered(Messages const& messages, Sources const& sources);

// The word of *known* that *word* may have been meant to be, or "".
std::string nearest(std::string const& word, std::vector<std::string> const& known);
// "did you mean x?", or *otherwise* when nothing is near.
std::string suggestion(std::string const& word, std::vector<std::string> const& known,
                       std::string const& otherwise);
// "a, b or c"
std::string oneOf(std::vector<std::string> const& words);
