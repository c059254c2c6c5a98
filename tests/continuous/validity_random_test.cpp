// Splits of random values at random thresholds: whatever happens, nothing of a value is lost, the
// parts meet, and each part lies in its space.
#include <algorithm>

#include "validity_fixture.h"

namespace engine_test {
namespace {

class RandomSplit : public RegionsTest {
protected:
    // Runtimes of the last split that live on; the first runtime belongs to the test.
    std::vector<std::unique_ptr<s_runtime>> owned;

    static s_Objet randomValue(Dice& dice) {
        double const lo = dice(-10, 30) / 2.0;
        if (dice(0, 7) == 0)
            return makeReal(lo);
        double const hi = lo + dice(1, 40) / 2.0;
        return makeRange(lo, hi, static_cast<unsigned char>(dice(0, 1)),
                         static_cast<unsigned char>(dice(0, 1)));
    }
    static std::vector<double> randomThresholds(Dice& dice) {
        std::vector<double> thresholds;
        double at = dice(-6, 4);
        for (int count = dice(1, 4); count > 0; --count)
            thresholds.push_back(at += dice(1, 6));
        return thresholds;
    }

    // Splits every runtime, and returns those that came out of it.
    std::vector<s_runtime*> splitAll(std::vector<s_runtime*> const& runtimes) {
        for (s_runtime* runtime : runtimes)
            sn_splitValiditySpc(runtime);
        std::vector<s_runtime*> results;
        for (auto const& entry : nrt) {
            results.push_back(entry.second);
            if (std::find(runtimes.begin(), runtimes.end(), entry.second) == runtimes.end())
                owned.emplace_back(entry.second);
        }
        nrt.clear();
        return results;
    }

    static s_Objet valueOf(s_runtime const* runtime) { return runtime->dico[0]->old; }

    // The first and the last bound are those of *whole*, and the bounds between them meet.
    static std::string gaps(std::vector<s_runtime*> runtimes, s_Objet const& whole) {
        std::sort(runtimes.begin(), runtimes.end(), [](s_runtime const* a, s_runtime const* b) {
            return std::pair(sn_infOf(valueOf(a)), sn_supOf(valueOf(a))) <
                   std::pair(sn_infOf(valueOf(b)), sn_supOf(valueOf(b)));
        });
        double reached = sn_infOf(whole);
        for (s_runtime const* runtime : runtimes) {
            if (sn_infOf(valueOf(runtime)) != reached)
                return "gap at " + describe(*runtime);
            reached = sn_supOf(valueOf(runtime));
        }
        return reached == sn_supOf(whole) ? "" : "the end is missing";
    }

    // The region that the space and the event of a runtime name; -1 when they are not of one
    // region.
    int regionOf(s_runtime const* runtime, Regions const& regions) {
        for (std::size_t region = 0; region < regions.conditions.size(); ++region) {
            s_runtime expected;
            expected.valSpc.assign(rt.aC.size(), 0);
            expected.ccAgenda = expected.valSpc;
            sn_setInValSpc(&expected, regions.conditions[region]);
            Atom const* atom = regions.conditions[region]->atom;
            if (runtime->valSpc == expected.valSpc && runtime->bridgeEvents.size() == 1 &&
                runtime->bridgeEvents.begin()->second == atom)
                return static_cast<int>(region);
        }
        return -1;
    }
    static bool liesIn(s_Objet const& value, int region, std::vector<double> const& thresholds) {
        int const last = static_cast<int>(thresholds.size());
        return (region == 0 ||
                sn_infOf(value) >= thresholds[static_cast<std::size_t>(region - 1)]) &&
               (region == last || sn_supOf(value) <= thresholds[static_cast<std::size_t>(region)]);
    }
    // What is wrong with one runtime after a split, but for where its value lies.
    std::string fault(s_runtime const* runtime, Regions const& regions) {
        s_Variable const& x = *runtime->dico[0];
        if (text(x.old) != text(x.new_) || text(x.old) != text(runtime->gV[0]->value))
            return "values differ";
        if (std::count(runtime->ccAgenda.begin(), runtime->ccAgenda.end(), 0) !=
            static_cast<std::ptrdiff_t>(runtime->ccAgenda.size()))
            return "agenda left";
        return regionOf(runtime, regions) < 0 ? "no region: " + describe(*runtime) : "";
    }
    bool holdsItsValue(s_runtime const* runtime, Regions const& regions) {
        return liesIn(valueOf(runtime), regionOf(runtime, regions), regions.thresholds);
    }
};

class RandomSplits : public RandomSplit, public testing::WithParamInterface<int> {};

// A value that left its space altogether only changes sides in the first split: it may reach over
// the edge of its new space, which the second split then settles. Otherwise that one changes
// nothing.
TEST_P(RandomSplits, LoseNothing) {
    unsigned const seed = static_cast<unsigned>(GetParam());
    SCOPED_TRACE("seed " + std::to_string(seed));
    Dice dice(seed);
    Regions& regions = add("x", randomThresholds(dice));
    s_Objet const value = randomValue(dice);
    enter(regions, static_cast<std::size_t>(dice(0, int(regions.thresholds.size()))));
    regions.x->old = value;

    std::vector<s_runtime*> const first = splitAll({&rt});
    EXPECT_EQ(gaps(first, value), "");
    bool settled = true;
    for (s_runtime const* runtime : first) {
        EXPECT_EQ(fault(runtime, regions), "");
        settled = settled && holdsItsValue(runtime, regions);
    }
    EXPECT_TRUE(settled || first.size() == 1);

    std::vector<s_runtime*> const second = splitAll(first);
    EXPECT_EQ(gaps(second, value), "");
    for (s_runtime const* runtime : second) {
        EXPECT_EQ(fault(runtime, regions), "");
        EXPECT_TRUE(holdsItsValue(runtime, regions)) << describe(*runtime);
    }
    EXPECT_TRUE(!settled || second.size() == first.size());
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomSplits, testing::Range(1, 301));

}  // namespace
}  // namespace engine_test
