// What is chosen for a run as a whole.
#include "hybrid/run_settings.h"

#include <gtest/gtest.h>

namespace {

TEST(RunSettings, ANumberOfCandidatesWinsOverTheRule) {
    RunSettings settings;
    EXPECT_EQ(settings.limit(), 0);
    settings.rules.limit = true;
    EXPECT_EQ(settings.limit(), 100);
    settings.candidates = 7;
    EXPECT_EQ(settings.limit(), 7);
    settings.rules.limit = false;
    EXPECT_EQ(settings.limit(), 7);
}

TEST(RunSettings, ANamedBoundWinsOverThatOfAll) {
    RunSettings settings;
    EXPECT_EQ(settings.noiseOf("room.xd"), 0.0);
    settings.noise["room.xd"] = 0.5;
    EXPECT_EQ(settings.noiseOf("room.xd"), 0.5);
    EXPECT_EQ(settings.noiseOf("room.x"), 0.0);
    settings.noise[""] = 0.25;
    EXPECT_EQ(settings.noiseOf("room.xd"), 0.5);
    EXPECT_EQ(settings.noiseOf("room.x"), 0.25);
    settings.noise["room.x"] = 0.0;  // this one is exact
    EXPECT_EQ(settings.noiseOf("room.x"), 0.0);
}

}  // namespace
