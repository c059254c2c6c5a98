// The rule `suspects`: influences that rest are accused of acting, and every mode of a condition is
// put in doubt. A tank of mode a loses water by a leak in mode c alone.
#include "continuous/bridge.h"
#include "isolation_fixture.h"

using namespace isolation_test;

namespace {

std::unique_ptr<StateFormula> that(Atom* atom) {
    auto formula = std::make_unique<StateFormula>();
    formula->addAtom(atom);
    return formula;
}

class DoubtedModes : public IsolationTest {
protected:
    explicit DoubtedModes(char const* rules = "suspects") {
        newPlant("", withRules(rules));
        graph.rt.engine = &theRun().engine;
        a->val = 1;
        on->val = 1;
        enter(mode["a"], mode["c"]);
        enter(mode["b"], mode["b"], true);
        enter(other["on"], other["off"]);
        enter(mode["a"], mode["unknown"]);
    }
    ~DoubtedModes() override { endPlant(); }

    void enter(Atom* from, Atom* to, bool idle = false) {
        entered.push_back(
            std::make_unique<Transition>(that(from), that(to), transFail, 0.1, 0.0, idle));
    }
    // One that has rested for as long as is known.
    s_Influence* rests(std::string const& name, s_Condition* condition) {
        s_Influence* made = graph.link(name, u, y, 0, condition);
        std::fill(made->condHisto.begin(), made->condHisto.end(), 0);
        return made;
    }
    // The diagnosis, and behind it the sets that go to the discrete side.
    std::string found() {
        graph.ready();
        std::string result = diagnosis(&graph.rt, 1) + " ->";
        for (auto const& set : *graph.rt.bridgeConflicts) {
            result += " [";
            for (Atom const* atom : set)
                result += atom->value;
            result += "]";
        }
        return result;
    }

    model_fixture::Valued<> mode{"mode", {"a", "b", "c", "unknown"}}, other{"other", {"on", "off"}};
    std::vector<std::unique_ptr<Transition>> entered;
    CausalGraph graph;
    s_Variable* y = graph.measure("y", 1);
    s_Variable* u = graph.input("u");
    s_Condition *a = graph.on(mode["a"]), *b = graph.on(mode["b"]), *c = graph.on(mode["c"]),
                *lost = graph.on(mode["unknown"]), *on = graph.on(other["on"]),
                *off = graph.on(other["off"]);
};

class WithoutTheRule : public DoubtedModes {
protected:
    WithoutTheRule() : DoubtedModes("classic") {}
};

}  // namespace

TEST_F(WithoutTheRule, WhatRestsIsNoSuspect) {
    graph.link("drain", u, y);
    rests("leak", c);
    EXPECT_EQ(found(), "[{drain,0,()}] ->");
}

// Every mode but c is taken to be false: then c holds.
TEST_F(DoubtedModes, WhatRestsIsAccusedOfActing) {
    graph.link("drain", u, y);
    rests("leak", c);
    EXPECT_EQ(found(), "[{drain,0,()}][{leak,0,(! ((mode=c)))}] -> [abunknown]");
    EXPECT_EQ(a->val, 1) << "what was supposed is taken back";
    EXPECT_EQ(c->val, 0);
}

// The drain that acts in mode a puts all other modes in doubt already.
TEST_F(DoubtedModes, NotWhenASuspectBringsTheModeAlong) {
    graph.link("drain", u, y, 0, a);
    rests("leak", c);
    EXPECT_EQ(found(), "[{drain,0,((mode=a))}] -> [a]");
}

// One that acts in a and c says nothing of the leak, which begins in c.
TEST_F(DoubtedModes, ASuspectThatActsInBothModesDoesNot) {
    graph.link("drain", u, y, 0, graph.either(a, c));
    rests("leak", c);
    EXPECT_EQ(found(),
              "[{drain,0,(((mode=a)) | ((mode=c)))}][{leak,0,(! ((mode=c)))}] -> [ac] [abunknown]");
}

// Into b there is no way but from b itself.
TEST_F(DoubtedModes, NotWithoutAWayIntoTheMode) {
    rests("leak", b);
    EXPECT_TRUE(diagnosis(&graph.rt, 1).empty());
}

// Off alone would not make the conjunction hold, nor c alone: c does while on holds.
TEST_F(DoubtedModes, OneModeAtATime) {
    rests("one", graph.both(c, on));
    rests("two", graph.both(c, off));
    EXPECT_EQ(found(), "[{one,0,(! (((mode=c)) & ((other=on))))}] -> [abunknown]");
}

// Of a conjunction that holds each mode may be wrong. The classic way doubts none.
TEST_F(DoubtedModes, EachModeOfAConjunctionThatHolds) {
    graph.link("drain", u, y, 0, graph.both(a, on));
    EXPECT_EQ(found(), "[{drain,0,(((mode=a)) & ((other=on)))}] -> [a] [on]");
}

TEST_F(WithoutTheRule, NoModeOfAConjunction) {
    graph.link("drain", u, y, 0, graph.both(a, on));
    EXPECT_EQ(found(), "[{drain,0,(((mode=a)) & ((other=on)))}] ->");
}

// What rested when the measure was made, but acts by now, is not accused.
TEST_F(DoubtedModes, NotWhatActsByNow) {
    rests("leak", a);
    EXPECT_TRUE(diagnosis(&graph.rt, 1).empty());
}

namespace {

class WithUnknown : public DoubtedModes {
protected:
    WithUnknown() : DoubtedModes("suspects,unknown") {}
};

}  // namespace

// In an unknown mode the leak may act: it is left as an explanation.
TEST_F(WithUnknown, AnUnknownModeIsLeft) {
    rests("leak", c);
    EXPECT_EQ(found(), "[{leak,0,(! ((mode=c)))}] -> [ab]");
}
