// Each token of each shipped plant is left out, doubled, and replaced by others. Whatever comes of
// it is told or not, but nothing crashes or hangs, and what is sound can be built.
//
// The texts are found by a walk of plants/, so that no plant can be left out. One that others
// include, as those of the library, is looked at through the smallest plant that does.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <numeric>
#include <ostream>
#include <set>

#include "language/lexer.h"
#include "language/text_fixture.h"

using namespace language_fixture;

namespace {

namespace fs = std::filesystem;

// ---- The shipped plants ----

// Those that have a size of their own, in a small one.
std::map<std::string, Texts> const sizes = {{"plants/building/building.plant", {"rooms=2"}}};

// All shipped texts by their paths, each read once.
std::map<std::string, std::string> const& shippedTexts() {
    static std::map<std::string, std::string> const texts = [] {
        std::map<std::string, std::string> found;
        fs::path const top = TAVRO_SOURCE;
        for (auto const& entry : fs::recursive_directory_iterator(top / "plants"))
            if (entry.path().extension() == ".plant") {
                std::string const path = fs::relative(entry.path(), top);
                found[path] = textOfFile(path);
            }
        return found;
    }();
    return texts;
}

// The shipped texts, one of them changed; tells which were read.
class ChangedReader : public SourceReader {
public:
    ChangedReader(std::string const& path, std::string const& text) : path(path), text(text) {}
    std::optional<std::string> read(std::string const& wanted) override {
        auto const found = shippedTexts().find(wanted);
        if (found == shippedTexts().end())
            return std::nullopt;
        wasRead.insert(wanted);
        return wanted == path ? text : found->second;
    }
    std::string shipped(std::string const& name) override { return "plants/library/" + name; }

    std::set<std::string> wasRead;

private:
    std::string const &path, &text;
};

// A text, and the plant that it is looked at through.
struct Subject {
    std::string path, plant;

    Texts settings() const {
        auto const found = sizes.find(plant);
        return found == sizes.end() ? Texts{} : found->second;
    }
};
std::ostream& operator<<(std::ostream& out, Subject const& subject) {
    return out << subject.path;
}

// Texts that no plant reads are left with none.
std::vector<Subject> subjects() {
    std::map<std::string, std::string> readers;
    for (auto const& [path, text] : shippedTexts()) {
        ChangedReader reader(path, text);
        PlantFile const file(path, reader);
        std::string const& itself = path;
        readers.insert({itself, ""});
        if (!file.isSound())
            continue;
        for (std::string const& part : reader.wasRead) {
            std::string& through = readers[part];
            bool const isSmaller =
                through.empty() || text.size() < shippedTexts().at(through).size();
            if (part == itself || (through != part && isSmaller))
                through = itself;
        }
    }
    std::vector<Subject> all;
    for (auto const& [path, plant] : readers)
        all.push_back({path, plant});
    return all;
}

std::string nameOf(testing::TestParamInfo<Subject> const& info) {
    std::string name = fs::path(info.param.path).stem();
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; }, '_');
    return name;
}

// ---- Their tokens ----

// A large circuit says the same over and over: of its tokens one in so many is tried. A prime, so
// that it is another place of a statement each time.
std::map<std::string, std::size_t> const sampled = {{"plants/circuits/c432.plant", 211}};

// What a token is replaced by.
std::vector<char const*> const others = {"x", "0",    "1e308", "(",  "]", "}",
                                         ",", "when", "inf",   "\"", "-"};
// Of a text that has more of them, some are tried: of each token some others, and of the next token
// different ones.
constexpr std::size_t mostReplacements = 1500;

class MutationsTest : public testing::TestWithParam<Subject> {
protected:
    MutationsTest() {
        Messages messages;
        tokens = tokensOf(sources, sources.add(GetParam().path, text), messages);
        tokens.pop_back();
        auto const found = sampled.find(GetParam().path);
        std::size_t const every = found == sampled.end() ? 1 : found->second;
        std::size_t taken = 0;
        for (std::size_t i = 0; i < tokens.size(); i += every)
            tokens[taken++] = tokens[i];
        tokens.resize(taken);
    }

    std::string with(Token const& token, std::string const& replacement) const {
        return text.substr(0, static_cast<std::size_t>(token.range.begin)) + replacement +
               text.substr(static_cast<std::size_t>(token.range.end));
    }
    std::string written(Token const& token) const {
        return text.substr(static_cast<std::size_t>(token.range.begin),
                           static_cast<std::size_t>(token.range.end - token.range.begin));
    }
    // Looks at the plant with that text, and builds it when it is sound. What it says, if nothing
    // was told.
    std::optional<Texts> lookAt(std::string const& changed) const {
        ChangedReader reader(GetParam().path, changed);
        PlantFile const file(GetParam().plant, reader, GetParam().settings());
        rendered(file.messages(), file.sources());
        if (!file.isSound())
            return std::nullopt;
        BuiltPlant const built(file.source().build);
        return file.messages().inOrder().empty() ? std::optional<Texts>(meaningOf(built.get()))
                                                 : std::nullopt;
    }

    std::string const text = shippedTexts().at(GetParam().path);
    Sources sources;
    std::vector<Token> tokens;
};

TEST_P(MutationsTest, AsItIsNothingIsTold) {
    EXPECT_NE(GetParam().plant, "") << "no shipped plant includes it";
    EXPECT_TRUE(lookAt(text));
}

TEST_P(MutationsTest, TokensLeftOut) {
    for (Token const& token : tokens)
        lookAt(with(token, ""));
}

TEST_P(MutationsTest, TokensDoubled) {
    for (Token const& token : tokens)
        lookAt(with(token, written(token) + " " + written(token)));
}

TEST_P(MutationsTest, TokensReplaced) {
    std::size_t const all = tokens.size() * others.size();
    std::size_t every = (all + mostReplacements - 1) / mostReplacements;
    while (std::gcd(every, others.size()) != 1)
        ++every;
    ASSERT_LE(every, others.size()) << "tokens are left out";
    for (std::size_t i = 0; i < all; i += every)
        lookAt(with(tokens[i / others.size()], others[i % others.size()]));
}

TEST_P(MutationsTest, EndedAnywhere) {
    for (Token const& token : tokens)
        lookAt(text.substr(0, static_cast<std::size_t>(token.range.begin)));
}

// A name that is spelt otherwise in one place is always told: nothing is left that would take it
// for another. What names only itself may be called anything.
TEST_P(MutationsTest, MisspeltNamesAreTold) {
    std::optional<Texts> const before = lookAt(text);
    for (Token const& token : tokens) {
        if (token.kind != TokenKind::name)
            continue;
        std::optional<Texts> const after = lookAt(with(token, written(token) + "zz"));
        if (!after)
            continue;
        bool const showsIt = std::any_of(after->begin(), after->end(), [](std::string const& line) {
            return line.find("zz") != std::string::npos;
        });
        EXPECT_TRUE(showsIt || before == after)
            << "silently another plant by " << written(token) << "zz at " << token.range.begin;
    }
}

INSTANTIATE_TEST_SUITE_P(Plants, MutationsTest, testing::ValuesIn(subjects()), nameOf);

}  // namespace
