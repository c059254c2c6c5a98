// Texts, their lines, and paths from one to another.
#include "language/source.h"

#include <algorithm>
#include <cassert>

TextRange through(TextRange const& a, TextRange const& b) {
    if (!a.isPlace() || a.file != b.file)
        return a;
    return {a.file, a.begin, std::max(a.end, b.end)};
}

SourceText::SourceText(std::string path, std::string text)
    : name(std::move(path)), content(std::move(text)), lineStarts{0} {
    for (std::size_t i = 0; i < content.size(); ++i)
        if (content[i] == '\n')
            lineStarts.push_back(static_cast<int>(i) + 1);
}

namespace {

// The later bytes of a character of more than one.
bool continuesCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

}  // namespace

TextPosition SourceText::positionOf(int offset) const {
    auto const next = std::upper_bound(lineStarts.begin(), lineStarts.end(), offset);
    int const start = *(next - 1);
    auto const end =
        content.begin() + std::min<std::ptrdiff_t>(offset, static_cast<int>(content.size()));
    auto const later = std::count_if(content.begin() + start, end, continuesCharacter);
    return {static_cast<int>(next - lineStarts.begin()),
            static_cast<int>(end - content.begin()) - start - static_cast<int>(later) + 1};
}

std::string_view SourceText::line(int number) const {
    assert(number >= 1 && number <= static_cast<int>(lineStarts.size()));
    std::string_view rest =
        text().substr(static_cast<std::size_t>(lineStarts[static_cast<std::size_t>(number - 1)]));
    rest = rest.substr(0, rest.find('\n'));
    if (!rest.empty() && rest.back() == '\r')
        rest.remove_suffix(1);
    return rest;
}

std::optional<std::string> SourceReader::read(std::string const&) {
    return std::nullopt;
}

std::string SourceReader::shipped(std::string const&) {
    return {};
}

int Sources::add(std::string path, std::string text) {
    texts.push_back(std::make_unique<SourceText>(std::move(path), std::move(text)));
    return size() - 1;
}

SourceText const& Sources::operator[](int file) const {
    return *texts.at(static_cast<std::size_t>(file));
}

int Sources::find(std::string const& path) const {
    for (int file = 0; file < size(); ++file)
        if ((*this)[file].path() == path)
            return file;
    return TextRange::noFile;
}

std::string pathBeside(std::string const& includer, std::string const& name) {
    std::size_t const slash = includer.rfind('/');
    bool const fromRoot = !name.empty() && name.front() == '/';
    return fromRoot || slash == std::string::npos ? name : includer.substr(0, slash + 1) + name;
}
