// Suspects: when two of them are the same, and the walk upstream that finds them.
#include "isolation_fixture.h"

using namespace isolation_test;

namespace {

// ---- Conditions ----

class Conditions : public testing::Test {
protected:
    CausalGraph graph;
    s_Variable* x = graph.variable("x");
    s_Variable* y = graph.variable("y");
    s_Condition* yes = graph.constant(1);
    s_Condition* no = graph.constant(0);
};

TEST_F(Conditions, TheSameOneIsEqualToItself) {
    EXPECT_TRUE(compareConditions(yes, yes));
    EXPECT_TRUE(compareConditions(nullptr, nullptr));
}

TEST_F(Conditions, NoConditionEqualsNoOther) {
    EXPECT_FALSE(compareConditions(nullptr, yes));
    EXPECT_FALSE(compareConditions(yes, nullptr));
}

TEST_F(Conditions, OfDifferentKindsAreDifferent) {
    s_Condition* const kinds[] = {yes,
                                  graph.relation(x, REL_EQ, makeReal(1)),
                                  graph.either(yes, yes),
                                  graph.both(yes, yes),
                                  graph.negation(yes),
                                  graph.on(nullptr),
                                  graph.expression(x, REL_EQ, nullptr)};
    for (s_Condition* a : kinds)
        for (s_Condition* b : kinds)
            EXPECT_EQ(compareConditions(a, b), a == b) << a->kind << " and " << b->kind;
}

TEST_F(Conditions, ConstantsAreComparedByTheirTruth) {
    EXPECT_TRUE(compareConditions(yes, graph.constant(1)));
    EXPECT_FALSE(compareConditions(yes, no));
}

TEST_F(Conditions, RelationsAreComparedByVariableOperatorAndValue) {
    s_Condition* a = graph.relation(x, REL_LT, makeReal(3));
    EXPECT_TRUE(compareConditions(a, graph.relation(x, REL_LT, makeReal(3))));
    EXPECT_FALSE(compareConditions(a, graph.relation(y, REL_LT, makeReal(3))));
    EXPECT_FALSE(compareConditions(a, graph.relation(x, REL_GE, makeReal(3))));
    EXPECT_FALSE(compareConditions(a, graph.relation(x, REL_LT, makeReal(4))));
}

// Intervals are equal when their bounds and their brackets are.
TEST_F(Conditions, RelationsWithAnIntervalAreComparedByItsBounds) {
    s_Condition* a = graph.relation(x, REL_IN, makeRange(1, 2, 1, 1));
    EXPECT_TRUE(compareConditions(a, graph.relation(x, REL_IN, makeRange(1, 2, 1, 1))));
    EXPECT_FALSE(compareConditions(a, graph.relation(x, REL_IN, makeRange(1, 3, 1, 1))));
    EXPECT_FALSE(compareConditions(a, graph.relation(x, REL_IN, makeReal(1))));
}

TEST_F(Conditions, RelationsBetweenVariablesAreComparedByBothVariables) {
    s_Condition* a = graph.relation(x, REL_LT, y);
    s_Condition* same = graph.relation(x, REL_LT, y);
    EXPECT_TRUE(compareConditions(a, same));
    EXPECT_FALSE(compareConditions(a, graph.relation(x, REL_LT, x)));
    EXPECT_FALSE(compareConditions(a, graph.relation(x, REL_LT, makeReal(0))));
    EXPECT_FALSE(compareConditions(graph.relation(x, REL_LT, makeReal(0)), a));
    // A value has no meaning beside a second variable.
    a->value = makeReal(1);
    same->value = makeReal(2);
    EXPECT_TRUE(compareConditions(a, same));
}

TEST_F(Conditions, OrAndAndAreComparedOperandByOperand) {
    auto const check = [&](auto make) {
        s_Condition* a = make(yes, no);
        EXPECT_TRUE(compareConditions(a, make(graph.constant(1), graph.constant(0))));
        EXPECT_FALSE(compareConditions(a, make(yes, yes)));
        EXPECT_FALSE(compareConditions(a, make(no, no)));
        EXPECT_FALSE(compareConditions(a, make(no, yes))) << "the order counts";
        EXPECT_FALSE(compareConditions(a, make(yes, nullptr)));
    };
    check([&](s_Condition* left, s_Condition* right) { return graph.either(left, right); });
    check([&](s_Condition* left, s_Condition* right) { return graph.both(left, right); });
}

TEST_F(Conditions, ANegationIsComparedByItsOperand) {
    s_Condition* a = graph.negation(yes);
    EXPECT_TRUE(compareConditions(a, graph.negation(graph.constant(1))));
    EXPECT_FALSE(compareConditions(a, graph.negation(no)));
    // What stands at the right of a negation has no meaning.
    s_Condition* same = graph.negation(yes);
    same->right = no;
    EXPECT_TRUE(compareConditions(a, same));
}

// Atoms and expressions are not looked into: the names of the influences tell these apart.
TEST_F(Conditions, AtomsAndExpressionsAreAllEqual) {
    model_fixture::Valued<> mode("mode", {"on", "off"});
    EXPECT_TRUE(compareConditions(graph.on(mode["on"]), graph.on(mode["off"])));
    EXPECT_TRUE(compareConditions(graph.expression(x, REL_EQ, graph.number(makeReal(1))),
                                  graph.expression(y, REL_IN, graph.number(makeReal(2)))));
    EXPECT_TRUE(compareConditions(graph.either(graph.on(mode["on"]), yes),
                                  graph.either(graph.on(mode["off"]), graph.constant(1))));
}

// ---- Suspects ----

class EqualSuspects : public testing::Test {
protected:
    Conflict conflict(std::string const& name, s_Condition* cond, int delay) {
        s_Influence* influence = graph.link("", x, y, 0, cond);
        return Conflict{name, influence, delay};
    }
    CausalGraph graph;
    s_Variable* x = graph.variable("x");
    s_Variable* y = graph.variable("y");
};

TEST_F(EqualSuspects, HaveTheSameNameAndTheSameCondition) {
    Conflict const a = conflict("a", graph.constant(1), 0);
    EXPECT_TRUE(compareConflicts(a, conflict("a", graph.constant(1), 0)));
    EXPECT_FALSE(compareConflicts(a, conflict("A", graph.constant(1), 0)));
    EXPECT_FALSE(compareConflicts(a, conflict("a", graph.constant(0), 0)));
    EXPECT_FALSE(compareConflicts(a, conflict("a", nullptr, 0)));
}

TEST_F(EqualSuspects, MayHaveDifferentDelays) {
    Conflict const a = conflict("a", nullptr, 1), b = conflict("a", nullptr, 5);
    EXPECT_TRUE(compareConflicts(a, b));
    EXPECT_EQ(a.delay, 1);
    EXPECT_EQ(b.delay, 5);
}

TEST_F(EqualSuspects, TakeTheHigherDelayWhenTheyAreUpdated) {
    Conflict a = conflict("a", nullptr, 1), b = conflict("a", nullptr, 5);
    EXPECT_TRUE(compareAndUpdateConflicts(a, b));
    EXPECT_EQ(a.delay, 5);
    EXPECT_EQ(b.delay, 5);
    a.delay = 7;
    EXPECT_TRUE(compareAndUpdateConflicts(a, b));
    EXPECT_EQ(a.delay, 7);
    EXPECT_EQ(b.delay, 7);
}

TEST_F(EqualSuspects, DifferentOnesKeepTheirDelays) {
    Conflict a = conflict("a", nullptr, 1), b = conflict("b", nullptr, 5);
    EXPECT_FALSE(compareAndUpdateConflicts(a, b));
    EXPECT_EQ(a.delay, 1);
    EXPECT_EQ(b.delay, 5);
}

TEST_F(EqualSuspects, AreFoundInAList) {
    Suspects const list = suspects("a b@2 c");
    EXPECT_EQ(findConflict(list, *suspects("b@7")[0]), list[1].get());
    EXPECT_EQ(list[1]->delay, 2) << "looking changes nothing";
    EXPECT_EQ(findConflict(list, *suspects("d")[0]), nullptr);
    EXPECT_EQ(findConflict({}, *suspects("a")[0]), nullptr);
}

TEST_F(EqualSuspects, StandOnceInASetInTheOrderOfTheirFinding) {
    Suspects set;
    s_Influence* first = graph.link("b", x, y);
    makeUpConflict(first, 2, set);
    makeUpConflict(graph.link("a", x, y), 0, set);
    makeUpConflict(graph.link("b", x, y), 1, set);
    EXPECT_EQ(text(set), "b@2 a") << "a lower delay changes nothing";
    makeUpConflict(graph.link("b", x, y), 4, set);
    EXPECT_EQ(text(set), "b@4 a");
    EXPECT_EQ(set[0]->influence, first) << "the first one found stands";
    makeUpConflict(graph.link("b", x, y, 0, graph.constant(1)), 0, set);
    EXPECT_EQ(text(set), "b@4 a b") << "another condition makes another suspect";
}

TEST_F(EqualSuspects, AnAnonymousInfluenceStandsWithAnEmptyName) {
    Suspects set;
    makeUpConflict(graph.link("", x, y), 1, set);
    makeUpConflict(graph.link("", y, x), 3, set);
    ASSERT_EQ(set.size(), 1u) << "nothing tells anonymous ones apart";
    EXPECT_EQ(set[0]->name, "");
    EXPECT_EQ(set[0]->delay, 3);
}

// ---- The walk ----

class Upstream : public testing::Test {
protected:
    std::string from(s_Variable* variable, int delay = 0) {
        return text(upstreamOf(&graph.rt, variable, delay));
    }
    CausalGraph graph;
    s_Variable* y = graph.measure("y");
    s_Variable* u = graph.input("u");
    s_Variable* x = graph.variable("x");
    s_Variable* w = graph.variable("w");
};

TEST_F(Upstream, AVariableWithoutAGraphNodeHasNoSuspects) {
    Suspects found;
    std::vector<s_Variable const*> visited;
    findConflictsAux(&graph.rt, y, found, visited, 0);
    EXPECT_TRUE(found.empty());
    EXPECT_TRUE(visited.empty());
}

TEST_F(Upstream, AMeasureCausedByInputsHasOneLevel) {
    graph.link("a", u, y, 3);
    graph.link("b", graph.input("v"), y);
    // The delay of a link counts for what lies behind it.
    EXPECT_EQ(from(y), "a b");
}

TEST_F(Upstream, GoesAsDeepAsACauseLeadsBeforeTheNextCause) {
    graph.link("y<x", x, y);
    graph.link("y<w", w, y);
    graph.link("x<u", u, x);
    graph.link("w<u", u, w);
    EXPECT_EQ(from(y), "y<x x<u y<w w<u");
}

TEST_F(Upstream, DelaysAddUpAlongThePath) {
    graph.link("y<x", x, y, 2);
    graph.link("x<w", w, x, 3);
    graph.link("w<u", u, w, 9);
    EXPECT_EQ(from(y), "y<x x<w@2 w<u@5");
    EXPECT_EQ(from(y, 1), "y<x@1 x<w@3 w<u@6") << "from a delay given";
}

TEST_F(Upstream, TheUpperDelayCounts) {
    s_Influence* link = graph.link("y<x", x, y);
    link->delayMin = 1;
    link->delayMax = 3;
    graph.link("x<u", u, x);
    EXPECT_EQ(from(y), "y<x x<u@3");
}

// What responds in time is one cycle behind. A range is zero only when both its bounds are.
TEST_F(Upstream, AResponseTimeAddsOneCycle) {
    s_Influence* link = graph.link("y<x", x, y, 2);
    graph.link("x<u", u, x);
    struct Case {
        s_Objet respTime;
        char const* expected;
    };
    Case const cases[] = {
        {makeReal(0.0), "y<x x<u@2"},          {makeReal(0.5), "y<x x<u@3"},
        {makeReal(40.0), "y<x x<u@3"},         {makeReal(-1.0), "y<x x<u@3"},
        {makeRange(0, 0, 1, 1), "y<x x<u@2"},  {makeRange(0, 0, 0, 0), "y<x x<u@2"},
        {makeRange(0, 2, 1, 1), "y<x x<u@3"},  {makeRange(-2, 0, 1, 1), "y<x x<u@3"},
        {makeRange(-1, 1, 1, 1), "y<x x<u@3"},
    };
    for (Case const& one : cases) {
        link->respTime = one.respTime;
        EXPECT_EQ(from(y), one.expected);
    }
}

TEST_F(Upstream, StopsAtMeasuresAndInputs) {
    s_Variable* z = graph.measure("z");
    graph.link("y<z", z, y);
    graph.link("z<x", x, z);
    graph.link("y<u", u, y);
    graph.link("u<x", x, u);
    EXPECT_EQ(from(y), "y<z y<u");
    EXPECT_EQ(from(z), "z<x") << "unless it begins there";
}

TEST_F(Upstream, GoesThroughAParameterLikeThroughAnyOther) {
    s_Variable* p = mkParameter(graph.rt, "p", 3.0, 0);
    graph.link("y<p", p, y);
    graph.link("y<x", x, y);
    EXPECT_EQ(from(y), "y<p y<x") << "it has no causes";
}

TEST_F(Upstream, ALoopIsWalkedOnce) {
    graph.link("y<x", x, y);
    graph.link("x<x", x, x, 1);
    graph.link("x<w", w, x);
    graph.link("w<x", x, w, 1);
    EXPECT_EQ(from(y), "y<x x<x x<w w<x");
}

// x is reached through v first, at delay 1; what lies behind it keeps the delay of that path.
TEST_F(Upstream, AVariableIsVisitedWithTheDelayOfTheFirstPath) {
    s_Variable* v = graph.variable("v");
    graph.link("y<v", v, y, 1);
    graph.link("y<w", w, y, 5);
    graph.link("v<x", x, v);
    graph.link("w<x", x, w);
    graph.link("x<u", u, x);
    EXPECT_EQ(from(y), "y<v v<x@1 x<u@1 y<w w<x@5");
    std::swap(y->graph->causes[0], y->graph->causes[1]);
    EXPECT_EQ(from(y), "y<w w<x@5 x<u@5 y<v v<x@1");
}

// Two links of one valve, reached by two paths: one suspect, at the higher of the two delays,
// whichever is found first.
TEST_F(Upstream, AnInfluenceReachedByTwoPathsHasTheHigherDelay) {
    graph.link("y<x", x, y, 1);
    graph.link("y<w", w, y, 5);
    graph.link("valve", u, x);
    graph.link("valve", u, w);
    EXPECT_EQ(from(y), "y<x valve@5 y<w");
    std::swap(y->graph->causes[0], y->graph->causes[1]);
    EXPECT_EQ(from(y), "y<w valve@5 y<x");
}

TEST_F(Upstream, EachWalkVisitsAnew) {
    s_Variable* z = graph.measure("z");
    graph.link("y<x", x, y, 1);
    graph.link("z<x", x, z, 2);
    graph.link("x<u", u, x);
    EXPECT_EQ(from(y), "y<x x<u@1");
    EXPECT_EQ(from(z), "z<x x<u@2");
}

// ---- Activity ----

class Activity : public Upstream {
protected:
    Activity() {
        near = graph.link("y<x", x, y, 2);
        far = graph.link("x<u", u, x);
    }
    s_Influence *near, *far;
};

TEST_F(Activity, WhatWasInactiveIsNoSuspectAndIsNotWalkedThrough) {
    near->condHisto[0] = 0;
    EXPECT_EQ(from(y), "");
}

// The far link acts two cycles before the measure, so its state of then counts, and no other.
TEST_F(Activity, TheCycleOfTheDelayCounts) {
    for (int cycle = 0; cycle < CausalGraph::past; ++cycle) {
        far->condHisto.assign(CausalGraph::past, 1);
        far->condHisto[static_cast<std::size_t>(cycle)] = 0;
        EXPECT_EQ(from(y), cycle == 2 ? "y<x" : "y<x x<u@2") << cycle;
    }
}

TEST_F(Activity, AConditionThatIsFalseNowDoesNotCountForThePast) {
    far->cond = graph.constant(0);
    EXPECT_EQ(from(y), "y<x x<u@2");
}

TEST_F(Activity, BehindItsHistoryAnInfluenceWasInactive) {
    far->condHistoLn = 3;
    far->condHisto = {1, 1, 1};
    EXPECT_EQ(from(y), "y<x x<u@2") << "the last entry";
    far->condHistoLn = 2;
    far->condHisto = {1, 1};
    EXPECT_EQ(from(y), "y<x");
}

// Entry 0 is there, and is written, even when the length is 0.
TEST_F(Activity, TheNewestEntryIsThereWithoutAHistory) {
    near->condHistoLn = far->condHistoLn = 0;
    near->condHisto = far->condHisto = {1};
    EXPECT_EQ(from(y), "y<x");
    near->delayMax = 0;
    EXPECT_EQ(from(y), "y<x x<u");
    near->condHisto = {0};
    EXPECT_EQ(from(y), "");
}

// One path is closed at its time, the other open: what lies behind both is reached by the second.
TEST_F(Activity, AClosedPathDoesNotCountAsVisited) {
    far->condHisto[2] = 0;
    s_Variable* v = graph.variable("v");
    s_Influence* behind = graph.link("x<v", v, x);
    graph.link("v<u", u, v);
    behind->condHisto[2] = 0;
    graph.link("y<w", w, y, 4);
    graph.link("w<v", v, w);
    EXPECT_EQ(from(y), "y<x y<w w<v@4 v<u@4");
}

}  // namespace
