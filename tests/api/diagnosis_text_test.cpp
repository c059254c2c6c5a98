// Suspects read from the text of an isolation.
#include "run/diagnosis_text.h"

#include <gtest/gtest.h>

namespace {

using tavro::SuspectSet;
using Sets = std::vector<SuspectSet>;

}  // namespace

TEST(DiagnosisText, ReadsSetsAndSuspects) {
    EXPECT_EQ(readDiagnosis(""), Sets{});
    EXPECT_EQ(readDiagnosis("[]"), Sets{SuspectSet{}});
    EXPECT_EQ(readDiagnosis("[{T1.i1,0,((thermostat.mode=on))}]"),
              (Sets{{{"T1.i1", 0, "((thermostat.mode=on))"}}}));
    EXPECT_EQ(readDiagnosis("[{a,12,()}{b,3,(((m=1)) | ((m=2)))}][{c,0,()}]"),
              (Sets{{{"a", 12, "()"}, {"b", 3, "(((m=1)) | ((m=2)))"}}, {{"c", 0, "()"}}}));
}

// An influence may have no name, and a condition a comma or brackets of its own.
TEST(DiagnosisText, TakesWhatANameAndAConditionMayHold) {
    EXPECT_EQ(readDiagnosis("[{,1,(x,[y])}]"), (Sets{{{"", 1, "(x,[y])"}}}));
}

// What is whole before the fault is kept.
TEST(DiagnosisText, EndsWhereTheFormEnds) {
    for (char const* text : {"[{a,1,()}]x", "[{a,1,()}][{b", "[{a,1,()}][{b}]", "[{a,1,()}][{b,}]",
                             "[{a,1,()}][{b,c,()}]", "[{a,1,()}][{b,1,()}"})
        EXPECT_EQ(readDiagnosis(text), (Sets{{{"a", 1, "()"}}})) << text;
    EXPECT_EQ(readDiagnosis("nothing"), Sets{});
}
