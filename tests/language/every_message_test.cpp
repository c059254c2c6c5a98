// No message without a test: the words that the phases tell with are looked up in these tests.
//
// A message is made by one of a few calls. Every literal among their arguments, its neighbours
// joined to it as the compiler does, must stand in a literal of some other file here. What a place
// of the grammar expects must stand there as it is shown, up to its end, since many of these words
// are short.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Piece {
    enum Kind { word, text, sign };
    Kind kind;
    std::string content;
};

// A source file as words, literals and signs, without its comments.
class Pieces {
public:
    explicit Pieces(fs::path const& path) {
        std::ifstream file(path, std::ios::binary);
        source.assign(std::istreambuf_iterator<char>(file), {});
        EXPECT_FALSE(source.empty()) << path;
        while (at < source.size())
            step();
    }

    std::vector<Piece> list;

private:
    static bool isOfWord(char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
    }
    void step() {
        if (source.compare(at, 2, "//") == 0)
            at = std::min(source.find('\n', at), source.size());
        else if (source.compare(at, 3, "R\"(") == 0)
            raw();
        else if (source[at] == '"')
            addText(quoted('"'));
        else if (source[at] == '\'')
            quoted('\'');
        else if (isOfWord(source[at]))
            word();
        else if (std::isspace(static_cast<unsigned char>(source[at])) != 0)
            ++at;
        else
            list.push_back({Piece::sign, std::string(1, source[at++])});
    }
    void raw() {
        std::size_t const end = source.find(")\"", at);
        addText(source.substr(at + 3, end - at - 3));
        at = end + 2;
    }
    std::string quoted(char quote) {
        std::string content;
        for (++at; at < source.size() && source[at] != quote; ++at)
            if (source[at] != '\\')
                content += source[at];
            else
                content += source[++at] == 'n' ? '\n' : source[at];
        ++at;
        return content;
    }
    void word() {
        std::size_t const begin = at;
        while (at < source.size() && isOfWord(source[at]))
            ++at;
        list.push_back({Piece::word, source.substr(begin, at - begin)});
    }
    void addText(std::string const& content) {
        if (!list.empty() && list.back().kind == Piece::text)
            list.back().content += content;
        else
            list.push_back({Piece::text, content});
    }

    std::string source;
    std::size_t at = 0;
};

struct Told {
    std::string call, literal, file;
};

// Calls whose words are told, by themselves or behind "expected is" or "write".
std::set<std::string> const expecting = {"expected", "expect", "expectWord"};
std::set<std::string> const naming = {"name", "wholeNumber"};
std::set<std::string> const telling = {"error",       "warning",    "giveUp",    "suggestion",
                                       "plainNumber", "quantityOf", "checkUnit", "once"};

bool tells(std::string const& call) {
    return expecting.count(call) + naming.count(call) + telling.count(call) != 0;
}

void gatherTold(fs::path const& path, std::vector<Told>& into) {
    std::vector<std::string> calls;
    Piece before{Piece::sign, ""};
    for (Piece const& piece : Pieces(path).list) {
        if (piece.kind == Piece::sign && piece.content == "(") {
            calls.push_back(before.kind == Piece::word ? before.content : "");
        } else if (piece.kind == Piece::sign && piece.content == ")" && !calls.empty()) {
            calls.pop_back();
        } else if (piece.kind == Piece::text) {
            auto const call = std::find_if(calls.rbegin(), calls.rend(), tells);
            if (call != calls.rend())
                into.push_back({*call, piece.content, path.filename()});
        }
        before = piece;
    }
}

std::vector<fs::path> sourcesIn(std::string const& folder) {
    std::vector<fs::path> found;
    for (auto const& entry : fs::directory_iterator(std::string(TAVRO_SOURCE) + "/" + folder))
        if (entry.path().extension() == ".cpp" &&
            entry.path().filename() != fs::path(__FILE__).filename())
            found.push_back(entry.path());
    return found;
}

class Tested {
public:
    Tested() {
        for (fs::path const& path : sourcesIn("tests/language"))
            for (Piece const& piece : Pieces(path).list)
                if (piece.kind == Piece::text)
                    literals.push_back(piece.content);
    }
    bool holds(std::string const& words) const {
        return std::any_of(literals.begin(), literals.end(), [&words](std::string const& literal) {
            return literal.find(words) != std::string::npos;
        });
    }
    // With the end of a line or of the literal behind them.
    bool holdsLine(std::string const& words) const {
        return std::any_of(literals.begin(), literals.end(), [&words](std::string const& literal) {
            return (literal + "\n").find(words + "\n") != std::string::npos;
        });
    }

private:
    std::vector<std::string> literals;
};

bool isTested(Told const& told, Tested const& tested) {
    if (expecting.count(told.call) != 0)
        return tested.holdsLine("expected is " + told.literal);
    if (naming.count(told.call) != 0)
        return tested.holdsLine("expected is " + told.literal) ||
               tested.holdsLine("write " + told.literal) || tested.holds(told.literal + " must be");
    return tested.holds(told.literal);
}

TEST(EveryMessageTest, HasATest) {
    std::vector<Told> all;
    for (fs::path const& path : sourcesIn("src/language"))
        gatherTold(path, all);
    EXPECT_GT(all.size(), 200u) << "the calls that tell are called otherwise now";
    Tested const tested;
    for (Told const& told : all)
        EXPECT_TRUE(isTested(told, tested)) << told.file << ": " << told.literal;
}

}  // namespace
