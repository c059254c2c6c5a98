// What compiled models are made with: the exclusive choice, transitions in short, and bridged
// atoms.
#include "fixtures/the_run.h"
#include "model/exclusiveChoice.h"
#include "model/model_fixture.h"
#include "model/transitionParts.h"

using model_fixture::RegistryTest;
using model_fixture::Valued;
using model_fixture::walk;

namespace {

using ExclusiveChoice = RegistryTest;

// Not a1 or not a2; not a1 or not a3; not a2 or not a3; and one of the three. The later atom of a
// pair is inserted first, and the last atom first of all, so each walk is in the order of the
// atoms.
TEST_F(ExclusiveChoice, StatesEveryPairAndThenTheWhole) {
    Comp comp("c");
    Valued<> mode("m", {"x", "y", "z"});
    mode.variable.setComp(&comp);
    addExclusiveChoice(thePlant(), &mode.variable);
    ASSERT_EQ(thePlant().cls.size(), 4u);
    std::vector<std::string> walks;
    for (auto const& clause : thePlant().cls) {
        walks.push_back(walk(clause->atoms));
        EXPECT_TRUE(clause->getInternal());
        EXPECT_EQ(clause->comp, &comp);
    }
    EXPECT_EQ(walks, (std::vector<std::string>{"+x+y", "+x+z", "+y+z", "-x-y-z"}));
}

TEST_F(ExclusiveChoice, IsEnteredInTheVariableAndInTheAtoms) {
    Valued<> mode("m", {"x", "y", "z"});
    addExclusiveChoice(thePlant(), &mode.variable);
    std::vector<Clause*> all;
    for (auto const& clause : thePlant().cls)
        all.push_back(clause.get());
    EXPECT_EQ(mode.variable.clauses, all);
    EXPECT_EQ(mode["x"]->clauses, (std::vector<Clause*>{all[0], all[1], all[3]}));
    EXPECT_EQ(mode["y"]->clauses, (std::vector<Clause*>{all[0], all[2], all[3]}));
    EXPECT_EQ(mode["z"]->clauses, (std::vector<Clause*>{all[1], all[2], all[3]}));
}

TEST_F(ExclusiveChoice, OfASingleValueSaysThatItHolds) {
    Valued<> mode("m", {"x"});
    addExclusiveChoice(thePlant(), &mode.variable);
    ASSERT_EQ(thePlant().cls.size(), 1u);
    EXPECT_EQ(walk(thePlant().cls[0]->atoms), "-x");
}

TEST(MkTransition, PutsGuardAndEffectTogether) {
    Valued<> const mode("m", {"on", "off"});
    Valued<CommandVar> const command("c", {"go", "none"});
    auto const transition = mkTransition({{mode["on"], true}, {command["none"], false}}, "and",
                                         mode["off"], transFail, 0.25, true);
    EXPECT_EQ(walk(transition->pre->getAtoms()), "+on-none");
    EXPECT_EQ(transition->pre->getOperat(), "and");
    EXPECT_EQ(walk(transition->post->getAtoms()), "+off");
    EXPECT_EQ(transition->getType(), "Fail");
    EXPECT_EQ(transition->proba, 0.25);
    EXPECT_EQ(transition->proba2, 0.0);
    EXPECT_TRUE(transition->idle);
    EXPECT_EQ(transition->preMode, mode["on"]);
    EXPECT_EQ(command["go"]->getRefTransPre(), std::vector<Transition*>{transition.get()});
}

TEST(LinkAtom, TiesTheAtomToItsCondition) {
    Valued<> mode("m", {"on", "off"});
    linkAtom(&mode.variable, mode["off"], 9);
    EXPECT_TRUE(mode["off"]->bridged);
    EXPECT_FALSE(mode["on"]->bridged);
    ASSERT_EQ(mode.variable.condMap.size(), 1u);
    EXPECT_EQ(mode.variable.condMap.begin()->first, mode["off"]->getId());
    EXPECT_EQ(mode.variable.condMap.begin()->second, 9);
}

}  // namespace
