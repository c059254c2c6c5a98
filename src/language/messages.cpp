// Collecting messages and showing them beside the text.
#include "language/messages.h"

#include <algorithm>

void Messages::error(TextRange const& range, std::string text, std::string advice) {
    add({Severity::error, range, std::move(text), std::move(advice)});
}

void Messages::warning(TextRange const& range, std::string text, std::string advice) {
    add({Severity::warning, range, std::move(text), std::move(advice)});
}

void Messages::add(Message message) {
    if (!told.insert({message.range.file, message.range.begin, message.text}).second)
        return;
    errors += message.severity == Severity::error;
    list.push_back(std::move(message));
}

std::vector<Message> Messages::inOrder() const {
    std::vector<Message> ordered = list;
    std::stable_sort(ordered.begin(), ordered.end(), [](Message const& a, Message const& b) {
        return std::tie(a.range.file, a.range.begin) < std::tie(b.range.file, b.range.begin);
    });
    return ordered;
}

namespace {

// Longer lines are shown from a little before the place on.
constexpr std::size_t longestLine = 120;
constexpr std::size_t shownBefore = 40;

// Characters, each of which is one column.
std::size_t widthOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

// Blanks as wide as *text*, with its tabs, so that what follows stands below it.
std::string blanksFor(std::string_view text) {
    std::string blanks;
    for (char const c : text)
        if (c == '\t')
            blanks += '\t';
        else if ((static_cast<unsigned char>(c) & 0xC0) != 0x80)
            blanks += ' ';
    return blanks;
}

// The line with the place, and the mark below it.
std::string excerpt(TextRange const& range, SourceText const& source) {
    TextPosition const position = source.positionOf(range.begin);
    std::string_view line = source.line(position.line);
    std::size_t const lineStart = static_cast<std::size_t>(line.data() - source.text().data());
    std::size_t before = std::min(static_cast<std::size_t>(range.begin) - lineStart, line.size());
    std::size_t marked =
        std::min(static_cast<std::size_t>(range.end - range.begin), line.size() - before);
    if (line.size() > longestLine) {
        std::size_t const cut = before > shownBefore ? before - shownBefore : 0;
        line = line.substr(cut, longestLine);
        before -= cut;
        marked = std::min(marked, line.size() - before);
    }
    std::string const number = std::to_string(position.line);
    std::string const gutter(number.size() + 2, ' ');
    std::string shown(2, ' ');
    shown.append(number).append(" | ").append(line).append("\n").append(gutter).append(" | ");
    shown.append(blanksFor(line.substr(0, before)));
    shown.append(std::max<std::size_t>(widthOf(line.substr(before, marked)), 1), '^');
    return shown.append("\n");
}

}  // namespace

std::string rendered(Message const& message, Sources const& sources) {
    std::string const kind = message.severity == Severity::error ? "error: " : "warning: ";
    auto const advised = [&message](std::string text, std::size_t indent) {
        if (!message.advice.empty())
            text.append(indent, ' ').append(message.advice).append("\n");
        return text;
    };
    if (!message.range.isPlace())
        return advised(kind + message.text + "\n", 2);
    SourceText const& source = sources[message.range.file];
    TextPosition const position = source.positionOf(message.range.begin);
    std::string text = source.path() + ":" + std::to_string(position.line) + ":" +
                       std::to_string(position.column) + ": " + kind + message.text + "\n" +
                       excerpt(message.range, source);
    return advised(std::move(text), std::to_string(position.line).size() + 3);
}

std::string rendered(Messages const& messages, Sources const& sources) {
    std::string text;
    for (Message const& message : messages.inOrder()) {
        if (!text.empty())
            text += "\n";
        text += rendered(message, sources);
    }
    return text;
}

namespace {

// How many letters must be put in, left out or changed, or swapped with the next.
std::size_t distance(std::string const& a, std::string const& b) {
    std::vector<std::size_t> older(b.size() + 1), old(b.size() + 1), current(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        old[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        current[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            current[j] = std::min(
                {old[j] + 1, current[j - 1] + 1, old[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                current[j] = std::min(current[j], older[j - 2] + 1);
        }
        older.swap(old);
        old.swap(current);
    }
    return old[b.size()];
}

constexpr std::size_t longestWord = 40;  // of longer ones nothing is said

}  // namespace

std::string nearest(std::string const& word, std::vector<std::string> const& known) {
    if (word.size() > longestWord)
        return "";
    std::string best;
    std::size_t least = word.size() < 4 ? 2 : word.size() < 9 ? 3 : 4;
    for (std::string const& candidate : known) {
        if (candidate.size() > longestWord)
            continue;
        std::size_t const d = distance(word, candidate);
        if (d < least && d < std::max(word.size(), candidate.size())) {
            least = d;
            best = candidate;
        }
    }
    return best;
}

std::string suggestion(std::string const& word, std::vector<std::string> const& known,
                       std::string const& otherwise) {
    std::string const near = nearest(word, known);
    return near.empty() ? otherwise : "did you mean " + near + "?";
}

std::string oneOf(std::vector<std::string> const& words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0)
            text += i + 1 == words.size() ? " or " : ", ";
        text += words[i];
    }
    return text;
}
