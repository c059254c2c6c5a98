// The texts that a plant is written in, and places in them.
//
// Nothing here opens a file: whoever reads a plant gives a SourceReader. A Sources owns every text
// that was read, and lives as long as anything that has a TextRange of it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A piece of one text, by bytes. A message about a whole plant is at no place.
struct TextRange {
    static constexpr int noFile = -1;

    int file = noFile;  // number in Sources
    int begin = 0;
    int end = 0;  // behind the last byte

    bool isPlace() const { return file != noFile; }
};

// From the first byte of *a* to the last of *b*, which is in the same text and behind it.
TextRange through(TextRange const& a, TextRange const& b);

// Counted from 1, as editors do; columns in characters.
struct TextPosition {
    int line;
    int column;
};

class SourceText {
public:
    SourceText(std::string path, std::string text);

    std::string const& path() const { return name; }
    std::string_view text() const { return content; }
    TextPosition positionOf(int offset) const;
    // Without its end.
    std::string_view line(int number) const;

private:
    std::string name;
    std::string content;
    std::vector<int> lineStarts;
};

// How texts are found. The base class knows none.
class SourceReader {
public:
    virtual ~SourceReader() = default;
    // Nothing when there is no such text, or it cannot be read.
    virtual std::optional<std::string> read(std::string const& path);
    // Where a text of that name would be among those that come with the program; empty for nowhere.
    virtual std::string shipped(std::string const& name);
};

class Sources {
public:
    // The number of the text.
    int add(std::string path, std::string text);
    SourceText const& operator[](int file) const;
    int size() const { return static_cast<int>(texts.size()); }
    // The number of a text of that path, or TextRange::noFile.
    int find(std::string const& path) const;

private:
    std::vector<std::unique_ptr<SourceText>> texts;
};

// The path of a text that *includer* names as *name*: beside it, unless it begins at the root.
std::string pathBeside(std::string const& includer, std::string const& name);
