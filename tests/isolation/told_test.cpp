// What an isolation hands to its host as data, beside the text of it.
#include <algorithm>

#include "isolation_fixture.h"

using namespace isolation_test;

namespace {

class Told : public IsolationTest {
protected:
    Told() {
        runHost().onIsolated = [this](Isolation const& found) {
            levels.push_back(found.level);
            for (Leaf const& leaf : found.leaves) {
                auto& set = sets.emplace_back();
                for (auto const& suspect : leaf.conflictSet)
                    set.push_back(suspect->name + " " + std::to_string(suspect->delay) + " " +
                                  conditionText(*suspect));
            }
        };
    }
    ~Told() override { runHost().onIsolated = nullptr; }

    using Sets = std::vector<std::vector<std::string>>;
    CausalGraph graph;
    std::vector<int> levels;
    Sets sets;
};

}  // namespace

TEST_F(Told, NothingWithoutAMisbehaviour) {
    graph.measureOf("y", {"a"});
    diagnosis(&graph.rt, 1);
    EXPECT_TRUE(levels.empty());
}

// Two sensors read what an input fills, the first of them two cycles late. The filling alone
// explains both, two cycles before it shows in the first; without it each sensor's own link must be
// wrong, in the cycle in which it is read.
TEST_F(Told, SetsWithNamesDelaysAndConditions) {
    s_Variable* level = graph.variable("level");
    s_Condition* under3 = graph.relation(level, REL_LT, makeReal(3));
    graph.link("s1", level, graph.measure("y1", 1), 2);
    graph.link("s2", level, graph.measure("y2", 1), 0);
    graph.link("fill", graph.input("u"), level, 0, under3);
    diagnosis(&graph.rt, 1);
    EXPECT_EQ(levels, std::vector<int>{1});
    std::sort(sets.begin(), sets.end());
    EXPECT_EQ(sets, (Sets{{"fill 2 (level < )"}, {"s1 0 ()", "s2 0 ()"}}));
}

// A measure that behaves exonerates, and with none the level is the plain one.
TEST_F(Told, TheLevelThatWasWorkedAt) {
    graph.measureOf("y", {"a"}, 1);
    s_Variable* other = graph.measureOf("z", {"b"});
    for (int const level : {1, 2, 3})
        diagnosis(&graph.rt, level);
    other->mesmisb = 1;
    for (int const level : {1, 2, 3})
        diagnosis(&graph.rt, level);
    EXPECT_EQ(levels, (std::vector<int>{1, 2, 3, 1, 1, 1}));
}

// A text would not tell where such a name ends.
TEST_F(Told, ANameHoldsAnySign) {
    graph.measureOf("y", {"a,1,()}]["}, 1);
    diagnosis(&graph.rt, 1);
    EXPECT_EQ(sets, (Sets{{"a,1,()}][ 0 ()"}}));
}
