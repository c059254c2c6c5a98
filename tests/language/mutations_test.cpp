// Each token of a shipped plant is left out, doubled, and replaced by others. Whatever comes of it
// is told or not, but nothing crashes or hangs, and what is sound can be built.
#include <gtest/gtest.h>

#include "language/lexer.h"
#include "language/text_fixture.h"

using namespace language_fixture;

namespace {

// Looks at the text, and builds it when it is sound. False when something was told.
bool lookAt(std::string const& text) {
    TextReader reader({{"p.plant", text}});
    PlantFile const file("p.plant", reader);
    rendered(file.messages(), file.sources());
    if (file.isSound())
        BuiltPlant const built(file.source().build);
    return file.messages().inOrder().empty();
}

// The tokens that a text can be cut at, by place.
std::vector<Token> tokensIn(std::string const& text, Sources& sources) {
    Messages messages;
    std::vector<Token> tokens = tokensOf(sources, sources.add("p.plant", text), messages);
    tokens.pop_back();
    return tokens;
}

class MutationsTest : public testing::TestWithParam<char const*> {
protected:
    std::string const text = textOfFile(GetParam());
    Sources sources;
    std::vector<Token> const tokens = tokensIn(text, sources);

    std::string with(Token const& token, std::string const& replacement) const {
        return text.substr(0, static_cast<std::size_t>(token.range.begin)) + replacement +
               text.substr(static_cast<std::size_t>(token.range.end));
    }
    std::string written(Token const& token) const {
        return text.substr(static_cast<std::size_t>(token.range.begin),
                           static_cast<std::size_t>(token.range.end - token.range.begin));
    }
};

TEST_P(MutationsTest, TokensLeftOut) {
    for (Token const& token : tokens)
        lookAt(with(token, ""));
}

TEST_P(MutationsTest, TokensDoubled) {
    for (Token const& token : tokens)
        lookAt(with(token, written(token) + " " + written(token)));
}

TEST_P(MutationsTest, TokensReplaced) {
    for (Token const& token : tokens)
        for (char const* other : {"x", "0", "1e308", "(", "]", "}", ",", "when", "inf", "\"", "-"})
            lookAt(with(token, other));
}

TEST_P(MutationsTest, EndedAnywhere) {
    for (Token const& token : tokens)
        lookAt(text.substr(0, static_cast<std::size_t>(token.range.begin)));
}

// A name that is spelt otherwise in one place is always told: nothing is left that would take it
// for another.
TEST_P(MutationsTest, MisspeltNamesAreTold) {
    for (Token const& token : tokens) {
        if (token.kind != TokenKind::name)
            continue;
        std::string const changed = with(token, written(token) + "zz");
        if (!lookAt(changed))
            continue;
        // What names only itself may be called anything.
        TextReader reader({{"p.plant", changed}});
        PlantFile const file("p.plant", reader);
        EXPECT_TRUE(file.isSound());
        auto const before = meaningOf(builtFrom(GetParam())->get());
        auto const after = meaningOf(BuiltPlant(file.source().build).get());
        bool const showsIt = std::any_of(after.begin(), after.end(), [](std::string const& line) {
            return line.find("zz") != std::string::npos;
        });
        EXPECT_TRUE(showsIt || before == after)
            << "silently another plant by " << written(token) << "zz at " << token.range.begin;
    }
}

INSTANTIATE_TEST_SUITE_P(Plants, MutationsTest, testing::Values("plants/room/room.plant"),
                         [](auto const&) { return std::string("room"); });

}  // namespace
