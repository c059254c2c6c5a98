// The table of displays of a run, and the lines of the display file made from it.
#include <limits>

#include "console/exchange.h"
#include "console_fixture.h"
#include "fixtures/the_run.h"

namespace {

// A runtime of *displays* displays whose bounds are those of *first*, first + 1 and so on.
std::unique_ptr<s_runtime> runtimeOf(int displays, double first = 0.0) {
    auto rt = std::make_unique<s_runtime>();
    rt->engine = &theRun().engine;
    rt->Ts = 1.0;
    rt->display.resize(static_cast<std::size_t>(displays));
    for (int j = 0; j < displays; ++j) {
        rt->dinfval.push_back(first + 2 * j);
        rt->dsupval.push_back(first + 2 * j + 1);
    }
    return rt;
}

std::vector<double> tableOf(s_runtime const& rt) {
    std::vector<double> values;
    for (int i = 0; i < rt.extra.size(); ++i)
        values.push_back(rt.extra[i]);
    return values;
}

using Values = std::vector<double>;

TEST(InitDispAll, MakesTwoValuesPerDisplayAndRow) {
    auto const rt = runtimeOf(2);
    EXPECT_EQ(initDispAll(rt.get(), 3.0), 1);
    EXPECT_EQ(rt->extra.size(), 12);
}

TEST(InitDispAll, TruncatesTheNumberOfValues) {
    auto const rt = runtimeOf(2);
    EXPECT_EQ(initDispAll(rt.get(), 2.9), 1);
    EXPECT_EQ(rt->extra.size(), 11) << "2 * 2.9 * 2 = 11.6";
    EXPECT_EQ(initDispAll(rt.get(), 0.2), 1);
    EXPECT_EQ(rt->extra.size(), 0);
}

TEST(InitDispAll, EmptiesTheTable) {
    auto const rt = runtimeOf(1);
    initDispAll(rt.get(), 2.0);
    rt->extra.set(0, 7.0);
    initDispAll(rt.get(), 2.0);
    EXPECT_EQ(tableOf(*rt), (Values{0, 0, 0, 0}));
}

TEST(InitDispAll, WithoutDisplaysThereIsNoTable) {
    auto const rt = runtimeOf(0);
    EXPECT_EQ(initDispAll(rt.get(), 3.0), 1);
    EXPECT_EQ(rt->extra.size(), 0);
}

TEST(InitDispAll, RefusesMoreThanATableCanHold) {
    auto const rt = runtimeOf(2);
    initDispAll(rt.get(), 1.0);
    EXPECT_EQ(initDispAll(rt.get(), std::numeric_limits<double>::infinity()), 0);
    EXPECT_EQ(initDispAll(rt.get(), 536870912.0), 0) << "2 * 2^29 * 2 = 2^31";
    EXPECT_EQ(rt->extra.size(), 4) << "the table stays as it was";
    EXPECT_EQ(initDispAll(rt.get(), 536870911.0), 1);
    EXPECT_EQ(rt->extra.size(), 2147483644);
}

TEST(SetRTDisplays, FillsTheRow) {
    auto const rt = runtimeOf(2, 10.0);
    initDispAll(rt.get(), 3.0);
    tavro_setRTDisplays(2, rt.get(), 2.0);
    EXPECT_EQ(tableOf(*rt), (Values{0, 0, 0, 0, 10, 11, 12, 13, 0, 0, 0, 0}));
}

TEST(SetRTDisplays, RoundsTheRowUp) {
    auto const rt = runtimeOf(1, 5.0);
    initDispAll(rt.get(), 3.0);
    tavro_setRTDisplays(1, rt.get(), 1.0000001);
    EXPECT_EQ(tableOf(*rt), (Values{0, 0, 5, 6, 0, 0}));
    tavro_setRTDisplays(1, rt.get(), 0.5);
    EXPECT_EQ(tableOf(*rt), (Values{5, 6, 5, 6, 0, 0}));
}

TEST(SetRTDisplays, SkipsRowsOutsideTheTable) {
    auto const rt = runtimeOf(1, 5.0);
    initDispAll(rt.get(), 2.0);
    for (double const row :
         {0.0, -0.5, -3.0, 3.0, 1e300, -1e300, std::numeric_limits<double>::quiet_NaN()})
        tavro_setRTDisplays(1, rt.get(), row);
    EXPECT_EQ(tableOf(*rt), (Values{0, 0, 0, 0}));
}

// Rows so far behind the end that their index is beyond the whole numbers.
TEST(SetRTDisplays, SkipsRowsWhoseIndexWouldOverflow) {
    auto const rt = runtimeOf(2, 5.0);
    initDispAll(rt.get(), 536870911.0);
    tavro_setRTDisplays(2, rt.get(), 1073741824.0);
    tavro_setRTDisplays(2, rt.get(), 2147483647.0);
    EXPECT_EQ(rt->extra[0], 0.0);
    EXPECT_EQ(rt->extra[1], 0.0);
}

class WriteTest : public testing::Test {
protected:
    void add(double key, std::unique_ptr<s_runtime> rt) {
        auto candidate = std::make_unique<hybTrajectory>();
        candidate->rt = std::move(rt);
        candidates.emplace(key, std::move(candidate));
    }
    // What is written of *rows* rows.
    std::string written(int rows) {
        std::FILE* stream = std::fopen("disp/day", "w");
        said = streamsOf([&] { writeDispAll(stream, candidates, rows); });
        std::fclose(stream);
        return WorkDirectory::read("disp/day");
    }

    ConsoleFiles files;
    HybMap candidates;
    Streams said;
};

std::unique_ptr<s_runtime> filled(int displays, int rows, double first) {
    auto rt = runtimeOf(displays);
    initDispAll(rt.get(), rows);
    for (int i = 0; i < rt->extra.size(); ++i)
        rt->extra.set(i, first + i);
    return rt;
}

TEST_F(WriteTest, ALineIsARow) {
    add(1.0, filled(2, 2, 1.0));
    EXPECT_EQ(written(2), "1 2 3 4 \n5 6 7 8 \n");
    EXPECT_EQ(said.out, "writing 1 trajectories\n");
    EXPECT_EQ(said.err, "");
}

TEST_F(WriteTest, CandidatesStandSideBySideInTheOrderOfTheMap) {
    add(0.25, filled(1, 2, 30.0));
    add(0.5, filled(1, 2, 10.0));
    add(0.25, filled(1, 2, 50.0));
    EXPECT_EQ(written(2), "10 11 30 31 50 51 \n12 13 32 33 52 53 \n");
    EXPECT_EQ(said.out, "writing 3 trajectories\n");
}

TEST_F(WriteTest, RowsThatWereNotReachedAreNotWritten) {
    add(1.0, filled(1, 4, 1.0));
    EXPECT_EQ(written(3), "1 2 \n3 4 \n5 6 \n");
}

TEST_F(WriteTest, TheTableOfTheFirstLimitsAll) {
    add(1.0, filled(1, 1, 1.0));
    add(0.5, filled(1, 3, 10.0));
    EXPECT_EQ(written(3), "1 2 10 11 \n");
}

TEST_F(WriteTest, AShorterTableBehindTheFirstReadsAsZeros) {
    add(1.0, filled(1, 2, 1.0));
    add(0.5, filled(1, 1, 10.0));
    EXPECT_EQ(written(2), "1 2 10 11 \n3 4 0 0 \n");
}

TEST_F(WriteTest, ARowThatIsNotWholeIsLeftOut) {
    auto rt = runtimeOf(2);
    initDispAll(rt.get(), 1.9);
    add(1.0, std::move(rt));
    EXPECT_EQ(written(2), "0 0 0 0 \n") << "7 values are one row of four";
}

TEST_F(WriteTest, NoCandidateAndNoDisplayWriteNothing) {
    EXPECT_EQ(written(2), "");
    EXPECT_EQ(said.out, "writing 0 trajectories\n");
    add(1.0, runtimeOf(0));
    EXPECT_EQ(written(2), "");
    EXPECT_EQ(said.out, "writing 1 trajectories\n");
}

TEST_F(WriteTest, WithoutAStreamOnlyTheNumberIsTold) {
    add(1.0, filled(1, 1, 1.0));
    EXPECT_EQ(streamsOf([&] { writeDispAll(nullptr, candidates, 1); }).out,
              "writing 1 trajectories\n");
}

}  // namespace
