// What may be left out of a text, beside the text that says it all.
#include <gtest/gtest.h>

#include "text_fixture.h"

using namespace language_fixture;

namespace {

Texts recordsOfText(std::string const& text) {
    TextReader reader({{"p.plant", text}});
    PlantFile const file("p.plant", reader);
    EXPECT_EQ(rendered(file.messages(), file.sources()), "");
    if (!file.isSound())
        return {};
    return recordsOf(BuiltPlant(file.source().build).get());
}

std::string const tank = R"(
type tank(first) {
  variable level = first
  parameter rate = 1
  level integrates A * B * rate
  measure level
}
type lamp {
  mode on, off
  idle on with 1
  idle off with 1
  move when off_now = yes from on to off with 1
  command off_now: none, yes
}
)";

TEST(ShortForms, SeveralConstantsInOneStatement) {
    std::string const end = tank + "one: tank(first = A)\n";
    Texts const each =
        recordsOfText("plant p\nsample 1 s\nconstant A = 2\nconstant B = A + 1\n" + end);
    EXPECT_FALSE(each.empty());
    EXPECT_EQ(recordsOfText("plant p\nsample 1 s\nconstant A = 2, B = A + 1\n" + end), each);
}

TEST(ShortForms, AnInstanceThatGivesNothing) {
    std::string const start =
        "plant p\nsample 1 s\nconstant A = 2, B = 3\n" + tank + "one: tank(first = 1)\n";
    Texts const written = recordsOfText(start + "l: lamp() symbol L\nm: lamp()\n");
    EXPECT_FALSE(written.empty());
    EXPECT_EQ(recordsOfText(start + "l: lamp symbol L\nm: lamp\n"), written);
}

}  // namespace
