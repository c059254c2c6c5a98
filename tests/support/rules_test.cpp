// The names of the rules, as a user writes them.
#include "support/rules.h"

#include <gtest/gtest.h>

namespace {

Rules taken(std::string const& text) {
    Rules rules;
    std::string wrong;
    EXPECT_TRUE(Rules::read(text, rules, wrong)) << text << ": " << wrong;
    return rules;
}

TEST(RulesTest, ClassicIsNoRuleAtAll) {
    EXPECT_EQ(taken("classic"), Rules{});
    EXPECT_EQ(taken("classic"), classicRules);
}

TEST(RulesTest, SharpIsEveryRule) {
    Rules every;
    every.continuity = every.regions = every.narrow = every.histories = every.likelihood = true;
    every.unknown = every.again = every.dates = every.cover = every.limit = every.suspects = true;
    every.derived = true;
    EXPECT_EQ(taken("sharp"), every);
    EXPECT_EQ(Rules::sharp(), every);
}

TEST(RulesTest, AListIsTheRulesItNames) {
    Rules two;
    two.narrow = two.limit = true;
    EXPECT_EQ(taken("narrow,limit"), two);
    EXPECT_EQ(taken("limit,narrow,limit"), two);
    EXPECT_EQ(taken("classic,limit,narrow"), two);
    EXPECT_EQ(taken("limit,sharp"), Rules::sharp());
}

TEST(RulesTest, AWordThatIsNoneIsToldAndChangesNothing) {
    for (auto const& [text, word] : {std::pair{"sharper", "sharper"},
                                     {"narrow,,limit", ""},
                                     {"limit,Narrow", "Narrow"},
                                     {"", ""},
                                     {"narrow,", ""},
                                     {" narrow", " narrow"}}) {
        Rules rules;
        rules.again = true;
        std::string wrong = "?";
        EXPECT_FALSE(Rules::read(text, rules, wrong)) << text;
        EXPECT_EQ(wrong, word);
        EXPECT_TRUE(rules.again);
        EXPECT_FALSE(rules.narrow);
    }
}

TEST(RulesTest, TheTextOfASetReadsBackAsTheSet) {
    EXPECT_EQ(Rules{}.text(), "classic");
    EXPECT_EQ(Rules::sharp().text(), "sharp");
    EXPECT_EQ(taken("limit,continuity").text(), "continuity,limit");
    EXPECT_EQ(taken(taken("again,cover").text()), taken("again,cover"));
}

}  // namespace
