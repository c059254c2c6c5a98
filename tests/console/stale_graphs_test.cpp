// Graphs of earlier runs, on disk.
#include "console/stale_graphs.h"

#include "console_fixture.h"

namespace {

class StaleGraphsTest : public testing::Test {
protected:
    StaleGraphsTest() {
        for (char const* name : {"htraj0", "htraj1", "htraj2", "htraj10"})
            WorkDirectory::write(std::string(name) + ".dot",
                                 std::string("digraph ") + name + " {\n}\n");
    }

    WorkDirectory directory;
};

bool isThere(char const* name) {
    return std::filesystem::exists(std::filesystem::symlink_status(name));
}

std::string removing(int count) {
    return streamsOf([count] { removeStaleGraphs(count); }).err;
}

TEST_F(StaleGraphsTest, ThoseFromTheCountOnGo) {
    EXPECT_EQ(removing(2), "Graphs of an earlier run removed: 2, htraj2.dot to htraj10.dot\n");
    EXPECT_TRUE(isThere("htraj0.dot") && isThere("htraj1.dot"));
    EXPECT_FALSE(isThere("htraj2.dot") || isThere("htraj10.dot"));
    EXPECT_EQ(removing(2), "");
    EXPECT_EQ(removing(1), "Graphs of an earlier run removed: 1, htraj1.dot\n");
    EXPECT_EQ(removing(0), "Graphs of an earlier run removed: 1, htraj0.dot\n");
}

TEST_F(StaleGraphsTest, WhatIsNoGraphOfOursStays) {
    removing(0);
    char const* const others[] = {"htraj.dot",  "htraj01.dot", "htraj-1.dot",        "htraj1.dot~",
                                  "htraj1.svg", "traj1.dot",   "htraj9999999999.dot"};
    for (char const* name : others)
        WorkDirectory::write(name,
                             "digraph " + std::filesystem::path(name).stem().string() + " {\n");
    WorkDirectory::write("htraj3.dot", "digraph htraj4 {\n");
    WorkDirectory::write("htraj4.dot", "");
    WorkDirectory::write("aside", "digraph htraj5 {\n");
    std::filesystem::create_symlink("aside", "htraj5.dot");
    std::filesystem::create_directory("htraj6.dot");
    EXPECT_EQ(removing(0), "");
    for (char const* name : others)
        EXPECT_TRUE(isThere(name)) << name;
    for (char const* name : {"htraj3.dot", "htraj4.dot", "htraj5.dot", "htraj6.dot"})
        EXPECT_TRUE(isThere(name)) << name;
}

TEST_F(StaleGraphsTest, AreToldWhereNoneAreWritten) {
    EXPECT_EQ(streamsOf([] { tellNoGraphs(); }).err,
              "No graphs are written: those here are of an earlier run\n");
    EXPECT_TRUE(isThere("htraj0.dot"));
    removing(0);
    EXPECT_EQ(streamsOf([] { tellNoGraphs(); }).err, "No graphs are written\n");
}

}  // namespace
