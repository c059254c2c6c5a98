// A plant whose text is compiled into the program.
#include <gtest/gtest.h>

#include "fixtures/line.h"
#include "language/text_fixture.h"

using namespace language_fixture;

namespace {

TEST(TextModelTest, IsTheShippedTextByteByByte) {
    EXPECT_EQ(line_text.text, textOfFile("plants/line/line.plant"));
}

// The name of the model is that of the file, and so must be that which the text gives.
TEST(TextModelTest, HasTheNameThatItsTextGives) {
    TextReader reader({{"line.plant", std::string(line_text.text)}});
    PlantFile const file("line.plant", reader);
    ASSERT_TRUE(file.isSound());
    EXPECT_EQ(file.source().name, line_model.model_name);
}

TEST(TextModelTest, IsBuiltAsFromItsFile) {
    BuiltPlant const compiled(line_model.startinit);
    EXPECT_EQ(recordsOf(compiled.get()), recordsOf(builtFrom("plants/line/line.plant")->get()));
}

TEST(TextModelTest, TakesSettings) {
    BuiltPlant const compiled([](Scheduler* scheduler) { buildLine(scheduler, 3); });
    auto const text = builtFrom("plants/line/line.plant", {"valves=3"});
    EXPECT_EQ(compiled.get().active_comps.size(), 5u);
    EXPECT_EQ(recordsOf(compiled.get()), recordsOf(text->get()));
}

}  // namespace
