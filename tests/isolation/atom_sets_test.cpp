// The sets of atoms that a diagnosis accuses: what each kind of condition gives, and how long the
// sets and the atoms in them live.
#include "continuous/bridge.h"
#include "isolation_fixture.h"

using namespace isolation_test;

namespace {

class AtomSets : public testing::Test {
protected:
    // The sets of one condition, each in brackets.
    std::string of(s_Condition const* condition) {
        graph.rt.bridgeConflicts.emplace();
        std::vector<s_Condition const*> existing;
        addBridgeConflict(&graph.rt, condition, existing);
        return sets();
    }
    // The sets that the runtime has; "none" when there never were any.
    std::string sets(s_runtime const* rt) const {
        if (!rt->bridgeConflicts)
            return "none";
        std::string result;
        for (auto const& set : *rt->bridgeConflicts) {
            result += "[";
            for (Atom const* atom : set)
                result += atom != nullptr ? atom->value : "null";
            result += "]";
        }
        return result;
    }
    std::string sets() const { return sets(&graph.rt); }

    CausalGraph graph;
    s_Variable* x = graph.variable("x");
    model_fixture::Valued<> mode{"mode", {"a", "b", "c", "d"}};
    s_Condition *a = graph.on(mode["a"]), *b = graph.on(mode["b"]), *c = graph.on(mode["c"]),
                *d = graph.on(mode["d"]);
};

// ---- Kinds ----

TEST_F(AtomSets, AnAtomIsASetOfItsOwn) {
    EXPECT_EQ(of(a), "[a]");
}

TEST_F(AtomSets, AnExpressionIsTheAtomThatItStandsFor) {
    EXPECT_EQ(of(graph.expression(x, REL_IN, nullptr, mode["b"])), "[b]");
}

TEST_F(AtomSets, ALeafWithoutAnAtomTakesNoneIntoTheSet) {
    EXPECT_EQ(of(graph.expression(x, REL_IN, nullptr)), "[null]");
    EXPECT_EQ(of(graph.either(graph.expression(x, REL_IN, nullptr), a)), "[nulla]");
}

TEST_F(AtomSets, ConstantsAndRelationsAccuseNoAtom) {
    EXPECT_EQ(of(graph.constant(1)), "");
    EXPECT_EQ(of(graph.relation(x, REL_LT, makeReal(1))), "");
    EXPECT_EQ(of(graph.relation(x, REL_LT, x)), "");
}

TEST_F(AtomSets, AnOrIsOneSetOfItsOperands) {
    EXPECT_EQ(of(graph.either(a, b)), "[ab]");
    EXPECT_EQ(of(graph.either(b, a)), "[ba]");
    EXPECT_EQ(of(graph.either(a, graph.constant(1))), "[a]");
    EXPECT_EQ(of(graph.either(graph.constant(1), graph.constant(0))), "[]");
}

TEST_F(AtomSets, AnAndOfAtomsIsNoSet) {
    EXPECT_EQ(of(graph.both(a, b)), "");
}

// The sign is not inverted.
TEST_F(AtomSets, ANegationIsItsOperand) {
    EXPECT_EQ(of(graph.negation(a)), "[a]");
    EXPECT_EQ(of(graph.negation(graph.negation(b))), "[b]");
    EXPECT_EQ(of(graph.negation(graph.either(a, b))), "[ab]");
    EXPECT_EQ(of(graph.negation(graph.both(a, b))), "");
    EXPECT_EQ(of(graph.either(graph.negation(a), b)), "[ab]");
}

TEST_F(AtomSets, OnlyAnOrUnderAnAndIsASet) {
    EXPECT_EQ(of(graph.both(a, graph.either(b, c))), "[bc]");
    EXPECT_EQ(of(graph.both(graph.either(b, c), a)), "[bc]");
    EXPECT_EQ(of(graph.both(a, graph.negation(graph.either(b, c)))), "[bc]");
}

TEST_F(AtomSets, AnAndUnderAnOrAddsNothing) {
    EXPECT_EQ(of(graph.either(a, graph.both(b, c))), "[a]");
    EXPECT_EQ(of(graph.either(graph.both(b, c), a)), "[a]");
}

// An or under an and under an or works on a copy of what was gathered.
TEST_F(AtomSets, AnAndHandsDownACopy) {
    EXPECT_EQ(of(graph.either(a, graph.both(b, graph.either(c, d)))), "[acd][a]");
    // The inner and copies [ab], and its or fills the copy: the first set stays.
    EXPECT_EQ(of(graph.both(graph.either(a, b), graph.both(c, graph.either(d, a)))), "[ab][abda]");
}

// An inner or fills the set of the outer one and hands in the same set: each stands for all atoms.
TEST_F(AtomSets, NestedOrsHandInTheSameSet) {
    EXPECT_EQ(of(graph.either(a, graph.either(b, c))), "[abc][abc]");
    EXPECT_EQ(of(graph.either(graph.either(a, b), c)), "[abc][abc]");
    EXPECT_EQ(of(graph.both(graph.either(a, b), graph.either(c, d))), "[abcd][abcd]");
}

// ---- Which conditions are taken ----

TEST_F(AtomSets, NoConditionAddsNoSet) {
    EXPECT_EQ(of(nullptr), "");
}

TEST_F(AtomSets, AConditionIsTakenOnceUntilTheListIsANewOne) {
    std::vector<s_Condition const*> existing;
    graph.rt.bridgeConflicts.emplace();
    for (s_Condition const* condition : {a, b, a, a, b})
        addBridgeConflict(&graph.rt, condition, existing);
    EXPECT_EQ(sets(), "[a][b]");
    existing.clear();
    addBridgeConflict(&graph.rt, a, existing);
    EXPECT_EQ(sets(), "[a][b][a]");
}

// By the condition itself: another one on the same atom is another accusation.
TEST_F(AtomSets, AnotherConditionOnTheAtomIsTakenAsWell) {
    std::vector<s_Condition const*> existing;
    graph.rt.bridgeConflicts.emplace();
    for (s_Condition const* condition : {a, graph.on(mode["a"])})
        addBridgeConflict(&graph.rt, condition, existing);
    EXPECT_EQ(sets(), "[a][a]");
}

// ---- In a diagnosis ----

class AccusedAtoms : public AtomSets {
protected:
    // A measure with an influence for each condition, all of which misbehave.
    s_Influence* cause(std::string const& name, s_Condition* cond) {
        return graph.link(name, input, measure, 0, cond);
    }
    s_Variable* measure = graph.measure("y", 1);
    s_Variable* input = graph.input("u");
};

TEST_F(AccusedAtoms, AreThoseOfEachSuspectInTheOrderOfTheText) {
    cause("i1", b);
    cause("i2", nullptr);
    cause("i3", graph.either(c, d));
    cause("i4", graph.both(a, b));
    EXPECT_EQ(diagnosis(&graph.rt, 1),
              "[{i1,0,((mode=b))}][{i2,0,()}][{i3,0,(((mode=c)) | ((mode=d)))}]"
              "[{i4,0,(((mode=a)) & ((mode=b)))}]");
    EXPECT_EQ(sets(), "[b][cd]");
}

TEST_F(AccusedAtoms, TwoSuspectsOnOneConditionGiveOneSet) {
    cause("i1", a);
    cause("i2", a);
    diagnosis(&graph.rt, 1);
    EXPECT_EQ(sets(), "[a]");
}

// The suspect stands in two leaves: [i1 i2] and [i1 i3].
TEST_F(AccusedAtoms, ASuspectOfTwoLeavesGivesOneSet) {
    cause("i1", a);
    s_Variable* other = graph.measure("z", 1);
    graph.link("i2", input, other, 0, b);
    graph.link("i3", input, other, 0, c);
    diagnosis(&graph.rt, 1);
    EXPECT_EQ(sets(), "[a][b][c]");
}

TEST_F(AccusedAtoms, WithoutConditionsThereIsNone) {
    cause("i1", nullptr);
    diagnosis(&graph.rt, 1);
    EXPECT_EQ(sets(), "");
}

// What is not accused in the end gives no set: the behaving measure exonerates i1.
TEST_F(AccusedAtoms, AnExoneratedSuspectGivesNoSet) {
    cause("i1", a);
    cause("i2", b);
    graph.link("i1", input, graph.measure("z"), 0, a);
    diagnosis(&graph.rt, 3);
    EXPECT_EQ(sets(), "[b]");
}

// At the second level those of soft suspects are given as well: z shows that i1 is made up for.
TEST_F(AccusedAtoms, ASoftSuspectGivesItsSet) {
    cause("i1", a);
    s_Variable* other = graph.measure("z");
    graph.link("i1", input, other, 0, a);
    graph.link("i2", input, other, 0, b);
    EXPECT_EQ(diagnosis(&graph.rt, 2), "[{i1,0,((mode=a))}{i2,0,((mode=b))}]");
    EXPECT_EQ(sets(), "[a][b]");
}

// The atoms belong to the model: the second isolation finds them as they were.
TEST_F(AccusedAtoms, TheNextDiagnosisGivesNewSetsOfTheSameAtoms) {
    s_Influence* first = cause("i1", a);
    cause("i2", b);
    diagnosis(&graph.rt, 1);
    EXPECT_EQ(sets(), "[a][b]");
    diagnosis(&graph.rt, 1);
    EXPECT_EQ(sets(), "[a][b]");
    EXPECT_EQ(graph.rt.bridgeConflicts->front().front(), mode["a"]);
    first->condHisto[0] = 0;
    diagnosis(&graph.rt, 1);
    EXPECT_EQ(sets(), "[b]");
    EXPECT_STREQ(mode["a"]->getId(), "mode=a");
}

TEST_F(AccusedAtoms, ACopyHasTheSetsUntilItsOwnDiagnosis) {
    EXPECT_EQ(sets(sn_copyRuntime(&graph.rt).get()), "none");
    cause("i1", a);
    cause("i2", b);
    diagnosis(&graph.rt, 1);
    auto const copy = sn_copyRuntime(&graph.rt);
    EXPECT_EQ(sets(copy.get()), "[a][b]");
    copy->influ[0]->condHisto[0] = 0;
    diagnosis(copy.get(), 1);
    EXPECT_EQ(sets(copy.get()), "[b]");
    EXPECT_EQ(sets(), "[a][b]");
}

}  // namespace
