// The bounds of a second-order effect by search.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "search_fixture.h"

namespace dynamic_test {
namespace {

class SearchSecond : public testing::Test, protected SecondOrderPlant {
protected:
    SearchSecond() { *TMP1 = obj("]-100, 100]"); }

    void call() { call_nelder_second(influence, &plant.rt, &y->old, &prev2); }

    s_Objet prev2 = closed(0.5, 1);
};

TEST_F(SearchSecond, TheBoundsAreThoseOfTwoSearchesFromTheMiddle) {
    PlainSearch plain = plainSearch(*influence, y->old, prev2, u->old, u->histo[0], plant.rt.Ts);
    std::vector<double> const x1 = plain(opti_second_order, 0), x2 = plain(opti_second_order, 1);
    double const low = plain.costAt(opti_second_order, 0, x1);
    double const high = -plain.costAt(opti_second_order, 1, x2);
    call();
    EXPECT_EQ(text(*TMP1), text(makeRange(low, high, 0, 1)));
    s_Objet const* const narrowed[] = {&y->old, &prev2, TMP2, TMP5};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(text(*narrowed[i]),
                  text(closed(std::min(x1[5 + i], x2[5 + i]), std::max(x1[5 + i], x2[5 + i]))))
            << i;
}

// The output is linear in the values and the gain, so its extremes lie at their corners; over d0 a
// grid. The stop rule of the optimiser accepts costs 1e-6 apart, which leaves the place of the
// optimum open by about the root of that.
TEST_F(SearchSecond, TheBoundsAreNearlyTheTrueOnes) {
    double lo = 1e9, hi = -1e9;
    for (double d0 = 2; d0 <= 3; d0 += 1.0 / 64)
        for (int corner = 0; corner < 32; ++corner) {
            Recursion const r = stepInvariant(1, 0.5, d0, 1, 1, 0.5);
            double const gain = corner & 16 ? 1.5 : 1;
            double const value = r.a1 * (corner & 1 ? 2 : 1) + r.a2 * (corner & 2 ? 1 : 0.5) +
                                 gain * r.b1 * (corner & 4 ? 1 : 0) +
                                 gain * r.b2 * (corner & 8 ? 0.5 : 0);
            lo = std::min(lo, value);
            hi = std::max(hi, value);
        }
    call();
    EXPECT_NEAR(TMP1->rng.inf, lo, 1e-3);
    EXPECT_NEAR(TMP1->rng.sup, hi, 1e-3);
    // From the least output at u = 0 to the greatest at u = 1, y(k-1) from 1 to 2.
    EXPECT_NEAR(y->old.rng.inf, 1, 1e-2);
    EXPECT_NEAR(y->old.rng.sup, 2, 1e-2);
    EXPECT_NEAR(TMP2->rng.inf, 0, 1e-2);
    EXPECT_NEAR(TMP2->rng.sup, 1, 1e-2);
}

TEST_F(SearchSecond, NumbersAreNotNarrowed) {
    y->old = obj("1");
    prev2 = obj("0.5");
    u->old = obj("0.25");
    u->histo.set(0, obj("0.125"));
    call();
    EXPECT_EQ(text(y->old), "1");
    EXPECT_EQ(text(prev2), "0.5");
    EXPECT_EQ(text(*TMP2), "0.25");
    EXPECT_EQ(text(*TMP5), "0.125");
    EXPECT_EQ(TMP1->type, OBJ_RANGE);  // over d0 and the gain
    EXPECT_LT(TMP1->rng.inf, TMP1->rng.sup);
}

TEST_F(SearchSecond, ANumberTakesTheLowValue) {
    PlainSearch plain = plainSearch(*influence, y->old, prev2, u->old, u->histo[0], plant.rt.Ts);
    double const low = plain.costAt(opti_second_order, 0, plain(opti_second_order, 0));
    *TMP1 = obj("3");
    call();
    EXPECT_EQ(text(*TMP1), text(makeReal(low)));
}

// The closed form is replaced, also where it was narrower.
TEST_F(SearchSecond, TheClosedFormIsNotComparedWith) {
    *TMP1 = closed(1, 1.0625);
    call();
    EXPECT_LT(TMP1->rng.inf, 0.5);
    EXPECT_GT(TMP1->rng.sup, 2.5);
}

TEST_F(SearchSecond, AnotherFormThanTheRationalIsNotSearched) {
    influence->n1.reset();
    call();
    EXPECT_EQ(text(*TMP1), "]-100, 100]");
    EXPECT_EQ(text(y->old), "[1, 2]");
}

// ---- From the recursion ----

TEST_F(SearchSecond, TheRecursionNarrowsTheStateOfTheEffect) {
    s_Objet const histo0 = y->histo[0];
    PlainSearch plain = plainSearch(*influence, y->old, histo0, u->old, u->histo[0], plant.rt.Ts);
    std::vector<double> const x1 = plain(opti_second_order, 0), x2 = plain(opti_second_order, 1);
    History<s_Objet> const copy = y->histo;
    sn_evalDynInfl(&plant.rt, influence);
    EXPECT_EQ(text(y->old), text(closed(std::min(x1[5], x2[5]), std::max(x1[5], x2[5]))));
    EXPECT_EQ(text(y->histo[0]), text(closed(std::min(x1[6], x2[6]), std::max(x1[6], x2[6]))));
    EXPECT_NE(text(y->histo[0]), text(histo0));
    EXPECT_EQ(text(copy[0]), text(histo0));  // another candidate's history stays
    EXPECT_EQ(text(y->histo[1]), "[1, 2]");
}

TEST_F(SearchSecond, WithoutAHistoryTheRecursionNarrowsTheValueAlone) {
    y->histo = History<s_Objet>(0);
    sn_evalDynInfl(&plant.rt, influence);
    EXPECT_EQ(y->histo.size(), 0);
    EXPECT_LT(TMP1->rng.inf, TMP1->rng.sup);
}

// ---- Options ----

// Puts the process into an empty directory, and back again.
class EmptyDirectory {
public:
    EmptyDirectory() : before(std::filesystem::current_path()) {
        std::string name = testing::TempDir() + "search_testXXXXXX";
        directory = mkdtemp(name.data());
        std::filesystem::current_path(directory);
    }
    ~EmptyDirectory() {
        std::filesystem::current_path(before);
        std::filesystem::remove_all(directory);
    }

private:
    std::filesystem::path before, directory;
};

// Line 44 of the file is the limit on evaluations, as a multiple of the dimension.
TEST_F(SearchSecond, TheOptionsFileRulesTheSearch) {
    EmptyDirectory const here;
    call();
    double const width = TMP1->rng.sup - TMP1->rng.inf;
    std::ofstream("nelder.dat") << std::string(43, '\n') << "0\n";
    y->old = closed(1, 2);
    prev2 = closed(0.5, 1);
    call();
    EXPECT_LT(TMP1->rng.sup - TMP1->rng.inf, width / 2);
}

}  // namespace
}  // namespace dynamic_test
