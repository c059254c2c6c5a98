// Plants as text beside the same plants as they are built by hand.
#include "language/text_fixture.h"

extern CompiledModel const therm_model, lamp_model, tap_model, gauge_model, works_model, rig_model,
    vat_model, pumps_model;

#include <gtest/gtest.h>

#include <regex>

using namespace language_fixture;

namespace {

// Every pool, index and table.
TEST(SamePlantsTest, TheRoomRecordByRecord) {
    BuiltPlant const compiled(therm_model.startinit);
    EXPECT_EQ(recordsOf(builtFrom("plants/room/room.plant")->get()), recordsOf(compiled.get()));
}

// The others number by hand, and not as the builder does: what they say is compared.
class MeaningTest : public testing::TestWithParam<std::pair<char const*, CompiledModel const*>> {};

TEST_P(MeaningTest, IsTheSame) {
    BuiltPlant const compiled(GetParam().second->startinit);
    auto const text =
        builtFrom(std::string("tests/language/plants/") + GetParam().first + ".plant");
    EXPECT_EQ(meaningOf(text->get()), meaningOf(compiled.get()));
}

INSTANTIATE_TEST_SUITE_P(Plants, MeaningTest,
                         testing::Values(std::pair("lamp", &lamp_model),
                                         std::pair("tap", &tap_model),
                                         std::pair("gauge", &gauge_model),
                                         std::pair("works", &works_model),
                                         std::pair("rig", &rig_model)),
                         [](auto const& info) { return std::string(info.param.first); });

// An interval of the text is closed, where the vat has an open one; what is raised to a power is
// worked out from what is written, in the form that its engine has for it.
TEST(SamePlantsTest, TheVat) {
    BuiltPlant const compiled(vat_model.startinit);
    auto const text = builtFrom("tests/language/plants/vat.plant");
    auto const comparable = [](Plant const& plant) {
        Texts lines = meaningOf(plant);
        for (std::string& line : lines) {
            for (std::size_t at; (at = line.find("vat.in_")) != std::string::npos;)
                line.replace(at, 7, "vat.in");
            if (std::size_t const at = line.find("]8,16["); at != std::string::npos)
                line.replace(at, 6, "[8,16]");
        }
        std::sort(lines.begin(), lines.end());
        return lines;
    };
    EXPECT_EQ(comparable(text->get()), comparable(compiled.get()));
}

// In a text numbers alone act through a parameter of each component, where these pumps have one for
// all; and a region of a text leaves no gap, where they have one from 100 on.
TEST(SamePlantsTest, ThePumps) {
    BuiltPlant const compiled(pumps_model.startinit);
    auto const text = builtFrom("tests/language/plants/pumps.plant");
    Texts lines = meaningOf(text->get());
    std::string const beyond = "region tank.range=high wide.level";
    EXPECT_EQ(std::erase_if(lines, [&](auto const& line) { return line.starts_with(beyond); }), 1u);
    for (std::string& line : lines)
        line = std::regex_replace(line, std::regex("\\b[a-z]+\\.un\\b"), "one");
    std::sort(lines.begin(), lines.end());
    auto const repeated = std::unique(lines.begin(), lines.end(), [](auto const& a, auto const& b) {
        return a == b && a.starts_with("variable one ");
    });
    lines.erase(repeated, lines.end());
    EXPECT_EQ(lines, meaningOf(compiled.get()));
}

// What nothing can tell apart by its bytes, and a run could: names that live in the text.
TEST(SamePlantsTest, AnEndedTextLeavesNothingBehind) {
    std::unique_ptr<BuiltPlant> built;
    {
        SourceTreeReader reader;
        auto file = std::make_unique<PlantFile>("plants/room/room.plant", reader);
        PlantSource const source = file->source();
        file.reset();
        built = std::make_unique<BuiltPlant>(source.build);
    }
    BuiltPlant const compiled(therm_model.startinit);
    EXPECT_EQ(recordsOf(built->get()), recordsOf(compiled.get()));
}

}  // namespace
