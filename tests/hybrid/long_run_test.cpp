// The display rows of a run of many steps, beside plain arrays that are merged value by value.
//
// The candidates are stepped without merging, and then merged in pairs by the test, in the order in
// which the run itself would. Before and after each merge the whole tables are read: a merge takes
// the lower of the lower bounds and the upper of the upper ones, of every row up to now. And what a
// step leaves of the rows before it must be what one of the candidates had.
#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

#include "hybrid/hybrid_fixture.h"

using namespace hybrid_fixture;

namespace {

constexpr int valuesPerRow = 4;  // two displays

using Rows = std::vector<double>;

Rows rowsOf(hybTrajectory const& candidate, int count) {
    Rows rows;
    for (int i = 0; i < count * valuesPerRow; ++i)
        rows.push_back(candidate.rt->extra[i]);
    return rows;
}

Rows covering(Rows a, Rows const& b) {
    for (std::size_t i = 0; i < a.size(); i += 2) {
        a[i] = std::min(a[i], b[i]);
        a[i + 1] = std::max(a[i + 1], b[i + 1]);
    }
    return a;
}

// A rate between those of a room that is heated and one that cools, on a day of 40 steps.
double rateAt(int time) {
    return 0.15 + 0.05 * std::sin(time) + 0.6 * std::cos(time * 3.14159265 / 20.0);
}

class LongRun : public testing::Test {
protected:
    ReferenceModel model;
    RoomRun run{0.95};

    // Merges what can be merged as sn_reduxTrajs would, and looks at each merge.
    void mergeAll(int time) {
        std::vector<std::unique_ptr<hybTrajectory>> left;
        for (auto& entry : theRun().tracked_trajs)
            left.push_back(std::move(entry.second));
        theRun().tracked_trajs.clear();
        for (std::size_t i = 0; i < left.size(); ++i)
            for (std::size_t j = i + 1; j < left.size();)
                if (!merge(left[i], left[j], time))
                    ++j;
                else
                    left.erase(left.begin() + static_cast<std::ptrdiff_t>(j));
        for (auto& candidate : left) {
            double const key = -static_cast<double>(candidate->rt->num);
            theRun().tracked_trajs.emplace(key, std::move(candidate));
        }
        theRun().hybNT = theRun().tracked_trajs.begin()->second.get();
    }

    bool merge(std::unique_ptr<hybTrajectory>& a, std::unique_ptr<hybTrajectory>& b, int time) {
        Rows const first = rowsOf(*a, time), second = rowsOf(*b, time);
        HybMap pair;
        pair.emplace(0.0, std::move(a));
        pair.emplace(0.0, std::move(b));
        sn_reduxTrajs(pair, time);
        a = std::move(pair.begin()->second);
        if (pair.size() == 2) {
            b = std::move(pair.rbegin()->second);
            return false;
        }
        ++merges;
        EXPECT_EQ(rowsOf(*a, time), covering(first, second)) << "time " << time;
        return true;
    }

    std::set<Rows> allRows(int count) const {
        std::set<Rows> all;
        for (auto const& entry : theRun().tracked_trajs)
            all.insert(rowsOf(*entry.second, count));
        return all;
    }

    int merges = 0;
};

TEST_F(LongRun, TheRowsAreThoseOfPlainTables) {
    int const steps = 240;
    for (int time = 1; time <= steps; ++time) {
        std::set<Rows> const before = allRows(time - 1);
        run.cycle(detection(1000, RUN_NOMERGE), time, rateAt(time));
        for (Rows const& rows : allRows(time - 1))
            ASSERT_EQ(before.count(rows), 1u) << "rows before time " << time << " have changed";
        mergeAll(time);
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(merges, steps / 2) << "the rows of few merges tell little";
}

}  // namespace
