// Validity spaces: placing a runtime, covers, and splits worked out by hand.
#include <cmath>

#include "support/run_stopped.h"
#include "validity_fixture.h"

namespace engine_test {
namespace {

// x with thresholds 10 and 17: region 0 is {0}, region 1 is {1 2}, region 2 is {3}.
class Validity : public RegionsTest {
protected:
    Validity() : room(add("x", {10, 17})) {
        rt.display = {room.x};
        sizeArrays(rt);
    }

    std::string splitOf(char const* value) {
        room.x->old = obj(value);
        split();
        return result();
    }
    static std::string calls() {
        std::string line;
        for (std::string const& call : bridgeCalls)
            line += call + "; ";
        return line;
    }
    // What a split tells, and behind it how it ends: "#", and the status when the run stops.
    std::string tellingSplit(s_Objet const& value) {
        room.x->old = value;
        std::string end = "#";
        std::string const told = printed([&] {
            try {
                split();
            } catch (RunStopped const& stop) {
                EXPECT_EQ(stop.reason, RunStopped::noCover);
                end += std::to_string(stop.exitStatus());
            }
        });
        return told + end;
    }

    Regions& room;
};

// ---- Splits ----

TEST_F(Validity, AValueInsideItsSpaceStays) {
    enter(room, 0);
    EXPECT_EQ(splitOf("[5, 8]"), "#0 [5, 8] { 0 } +x=0\n");
    EXPECT_EQ(calls(), "");
    EXPECT_EQ(rt_num, 1);
}

TEST_F(Validity, ANumberInsideNeverSplits) {
    enter(room, 1);
    EXPECT_EQ(splitOf("12"), "#0 12 { 1 2 } +x=1\n");
}

// The kept part has the flags of the old value; the copy holds the rest and has changed sides.
TEST_F(Validity, AValueOverTheEdgeIsSplit) {
    enter(room, 0);
    EXPECT_EQ(splitOf("[5, 15]"),
              "#0 [5, 10] { 0 } +x=0\n"
              "#1 ]10, 15[ { 1 2 } +x=1\n");
    EXPECT_EQ(calls(), "remove x=1 #1; remove x=0 #1; add x=1 #1; ");
    s_runtime* copy = nrt.rbegin()->second;
    EXPECT_EQ(entries({room.conditions[0]->val, room.conditions[1]->val}), "1 0");
    EXPECT_EQ(entries({copy->condi[0]->val, copy->condi[1]->val}), "0 1");
}

TEST_F(Validity, TheFlagsOfTheValueStayWithTheKeptPart) {
    enter(room, 0);
    EXPECT_EQ(splitOf("]5, 15["),
              "#0 ]5, 10[ { 0 } +x=0\n"
              "#1 ]10, 15[ { 1 2 } +x=1\n");
}

TEST_F(Validity, AValueOverBothEdgesMakesTwoCopies) {
    enter(room, 1);
    EXPECT_EQ(splitOf("[5, 20]"),
              "#0 [10, 17] { 1 2 } +x=1\n"
              "#1 ]5, 10[ { 0 } +x=0\n"
              "#2 ]17, 20[ { 3 } +x=2\n");
}

// The first copy enters the highest region and leaves the middle one to a copy of its own.
TEST_F(Validity, ACopyIsSplitInItsTurn) {
    enter(room, 0);
    EXPECT_EQ(splitOf("[5, 40]"),
              "#0 [5, 10] { 0 } +x=0\n"
              "#1 ]17, 40[ { 3 } +x=2\n"
              "#2 ]10, 17[ { 1 2 } +x=1\n");
    EXPECT_EQ(calls(),
              "remove x=2 #1; remove x=1 #1; remove x=0 #1; add x=2 #1; "
              "remove x=2 #2; remove x=1 #2; add x=1 #2; ");
}

// Nothing of the space is left: it changes, and the value stays whole.
TEST_F(Validity, AValueThatLeftItsSpaceChangesItWithoutACopy) {
    enter(room, 0);
    EXPECT_EQ(splitOf("[12, 15]"), "#0 [12, 15] { 1 2 } +x=1\n");
    EXPECT_EQ(calls(), "remove x=0 #0; add x=1 #0; ");
    EXPECT_EQ(rt_num, 1);
}

TEST_F(Validity, ThresholdsBelongToTheUpperRegion) {
    enter(room, 0);
    EXPECT_EQ(splitOf("10"), "#0 10 { 1 2 } +x=1\n");
    dropSplit();
    EXPECT_EQ(splitOf("17"), "#0 17 { 3 } +x=2\n");
    dropSplit();
    EXPECT_EQ(splitOf("9.5"), "#0 9.5 { 0 } +x=0\n");
}

// Of the two regions that the value touches the first one found enters; it narrows in the next
// cycle.
TEST_F(Validity, OfSeveralConditionsOnOneVariableTheFirstEnters) {
    enter(room, 0);
    EXPECT_EQ(splitOf("[12, 40]"), "#0 [12, 40] { 3 } +x=2\n");
    EXPECT_EQ(calls(), "remove x=0 #0; add x=2 #0; ");
    dropSplit();
    EXPECT_EQ(splitOf("[12, 40]"),
              "#0 [17, 40] { 3 } +x=2\n"
              "#1 ]12, 17[ { 1 2 } +x=1\n");
}

// A closed end on the edge: the point stays, the open rest parts.
TEST_F(Validity, ASinglePointMayStay) {
    enter(room, 1);
    EXPECT_EQ(splitOf("[5, 10]"),
              "#0 10 { 1 2 } +x=1\n"
              "#1 ]5, 10[ { 0 } +x=0\n");
}

TEST_F(Validity, AnOpenEndOnTheEdgeHasLeft) {
    enter(room, 1);
    EXPECT_EQ(splitOf("[5, 10["), "#0 [5, 10[ { 0 } +x=0\n");
}

TEST_F(Validity, WithoutASpaceNothingSplits) {
    EXPECT_EQ(splitOf("[5, 40]"), "#0 [5, 40] { } \n");
}

TEST_F(Validity, WithoutConstraintVariablesTheRuntimeIsTheOnlyResult) {
    s_runtime empty;
    empty.engine = &theEngine;
    empty.num = 4;
    sn_splitValiditySpc(&empty);
    ASSERT_EQ(nrt.size(), 1u);
    EXPECT_EQ(nrt.begin()->first, 4);
    EXPECT_EQ(nrt.begin()->second, &empty);
    nrt.clear();
}

TEST_F(Validity, ResultsAreOldAndNewAndShown) {
    enter(room, 0);
    room.x->new_ = obj("99");
    splitOf("[5, 15]");
    for (auto const& entry : nrt) {
        s_Variable const& x = *entry.second->dico[0];
        EXPECT_EQ(text(x.old), text(x.new_));
        EXPECT_EQ(entry.second->dinfval[0], x.old.rng.inf);
        EXPECT_EQ(entry.second->dsupval[0], x.old.rng.sup);
        EXPECT_EQ(entries(entry.second->ccAgenda), "0 0 0 0");
    }
}

TEST_F(Validity, AMeasureDoesNotCount) {
    rt.measure = {room.x};
    room.x->mes = obj("20");
    enter(room, 0);
    EXPECT_EQ(splitOf("[5, 8]"), "#0 [5, 8] { 0 } +x=0\n");
}

// Events on other variables are left alone.
TEST_F(Validity, ACopyKeepsTheOtherEvents) {
    Choice other("mode", {"on"});
    enter(room, 0);
    rt.bridgeEvents.insert({false, other[0]});
    splitOf("[5, 15]");
    EXPECT_EQ(nrt.rbegin()->second->bridgeEvents.size(), 2u);
    EXPECT_EQ(rt.bridgeEvents.size(), 2u);
    rt.bridgeEvents.clear();
}

// Of a variable that no condition constrains the value is written, though it was not read.
TEST_F(Validity, AVariableWithoutConstraintsTakesTheValueOfItsRecord) {
    s_Variable* y = mkVariable(rt, "y", 2);
    s_GVar* free = mkConstraintVar(rt, y, obj("3"));
    rt.gV.push_back(free);
    y->old = obj("8");
    enter(room, 0);
    EXPECT_EQ(splitOf("[5, 8]"), "#0 [5, 8] 3 { 0 } +x=0\n");
}

// An intermediate starts without bounds, and nothing of the model bounds it.
TEST_F(Validity, AnIntermediateIsSplitWithoutConditions) {
    s_GVar* g = mkConstant(rt, obj("5"));
    g->kind = GV_INTERMEDIATE;
    g->acIdx = {1, 4};
    rt.gV = {g};
    rt.aC.push_back(mkSpace(rt, g, 0, obj("[-MAX, 3]")));
    sizeArrays(rt);
    rt.valSpc[4] = 1;
    split();
    EXPECT_EQ(text(g->value), "]-MAX, 3[");
    EXPECT_EQ(nrt.size(), 2u);
    EXPECT_EQ(text(nrt.rbegin()->second->gV[0]->value), "]3, MAX[");
}

// ---- Conditions without atoms, or on several discrete variables ----

TEST_F(Validity, ConditionsWithoutAtomsAllEnter) {
    Regions& y = add("y", {1, 2}, false);
    enter(y, 0);
    enter(room, 0);
    room.x->old = obj("1");
    y.x->old = obj("[1.5, 9]");
    split();
    EXPECT_EQ(result(), "#0 1 [1.5, 9] { 0 5 6 7 } +x=0\n");
    EXPECT_EQ(calls(), "remove - #0; add - #0; add - #0; ");
}

TEST_F(Validity, ConditionsOnDifferentDiscreteVariablesEnterTogether) {
    Choice second("second", {"any"});
    int const index = static_cast<int>(rt.aC.size());
    rt.aC.push_back(mkSpace(rt, room.g, 0, obj("[-MAX, MAX]")));
    rt.condi.push_back(mkExprCond(rt, room.x, REL_GE, rt.aC.back(), index, second[0], 0));
    room.x->varConds.push_back(static_cast<int>(rt.condi.size()) - 1);
    sizeArrays(rt);
    enter(room, 0);
    // A bag shows equal signs in the reverse order of their entering.
    EXPECT_EQ(splitOf("[12, 15]"), "#0 [12, 15] { 1 2 4 } +second=any +x=1\n");
    EXPECT_EQ(calls(), "remove x=0 #0; remove second=any #0; add x=1 #0; add second=any #0; ");
}

// Each of two variables lies on both sides of its threshold.
TEST_F(Validity, TwoVariablesSplitIntoFour) {
    Regions& y = add("y", {1});
    enter(room, 0);
    enter(y, 0);
    room.x->old = obj("[5, 15]");
    y.x->old = obj("[0, 2]");
    split();
    // Copies of the first round are numbered 1 and 2; 1 still has y to split.
    EXPECT_EQ(nrt.size(), 4u);
    std::vector<std::string> values;
    for (auto const& entry : nrt)
        values.push_back(text(entry.second->dico[0]->old) + " " + text(entry.second->dico[1]->old));
    EXPECT_EQ(values, (std::vector<std::string>{"[5, 10] [0, 1]", "]10, 15[ [0, 1]",
                                                "[5, 10] ]1, 2[", "]10, 15[ ]1, 2["}));
}

// ---- The space and the agenda ----

TEST_F(Validity, TheAgendaIsFilledFromTheSpace) {
    rt.valSpc = {0, 1, 0, 5};
    rt.ccAgenda = {1, 0, 0, 0};
    sn_fillCondAgenda(&rt);
    EXPECT_EQ(entries(rt.ccAgenda), "1 1 0 1");
}

TEST_F(Validity, ANarrowedVariablePutsItsSpaceOnTheAgenda) {
    EXPECT_EQ(sn_updateCondAgenda(&rt, room.g), 0);
    rt.valSpc = {0, 1, 0, 1};
    EXPECT_EQ(sn_updateCondAgenda(&rt, room.g), 1);
    EXPECT_EQ(entries(rt.ccAgenda), "0 1 0 1");
    rt.ccAgenda.assign(4, 0);
    room.g->acIdx = {3, 0, 2};  // entry 0 counts, it names none
    EXPECT_EQ(sn_updateCondAgenda(&rt, room.g), 0);
    room.g->acIdx = {};
    EXPECT_EQ(sn_updateCondAgenda(&rt, room.g), 0);
    EXPECT_EQ(entries(rt.ccAgenda), "0 0 0 0");
}

class Spaces : public Validity {
protected:
    s_Condition* leaf(int kind, std::vector<int> const& acIdx) {
        s_Condition* c = adoptCondition(rt, mkCond());
        c->kind = kind;
        c->acIdx = acIdx;
        return c;
    }
    // Space and agenda after the condition went in, and after it went out.
    std::string inAndOut(s_Condition* c) {
        rt.valSpc = {0, 0, 0, 0};
        rt.ccAgenda = {1, 1, 1, 1};
        sn_setInValSpc(&rt, c);
        std::string const in = entries(rt.valSpc) + " / " + entries(rt.ccAgenda);
        rt.valSpc = {1, 1, 1, 1};
        sn_setOutOfValSpc(&rt, c);
        return in + " | " + entries(rt.valSpc) + " / " + entries(rt.ccAgenda);
    }
};

TEST_F(Spaces, AnExpressionSetsItsConstraints) {
    EXPECT_EQ(inAndOut(leaf(COND_EXPR, {1, 3})), "0 1 0 1 / 1 1 1 1 | 1 0 1 0 / 1 0 1 0");
    EXPECT_EQ(inAndOut(leaf(COND_NOT, {2})), "0 0 1 0 / 1 1 1 1 | 1 1 0 1 / 1 1 0 1");
}

TEST_F(Spaces, AnOperatorSetsThoseOfItsOperands) {
    s_Condition* either = mkBinaryCond(rt, COND_OR, leaf(COND_EXPR, {0}), leaf(COND_EXPR, {1}), 0);
    EXPECT_EQ(inAndOut(either), "1 1 0 0 / 1 1 1 1 | 0 0 1 1 / 0 0 1 1");
    s_Condition* both = mkBinaryCond(rt, COND_AND, either, leaf(COND_NOT, {3}), 0);
    both->acIdx = {2};  // only leaves count
    EXPECT_EQ(inAndOut(both), "1 1 0 1 / 1 1 1 1 | 0 0 1 0 / 0 0 1 0");
}

TEST_F(Spaces, OtherKindsSetNothing) {
    for (int const kind : {0, COND_CONST + 0, COND_REL + 0, COND_ATOM + 0, 8})
        EXPECT_EQ(inAndOut(leaf(kind, {0, 1})), "0 0 0 0 / 1 1 1 1 | 1 1 1 1 / 1 1 1 1") << kind;
}

// What goes out and comes in at once is in.
TEST_F(Spaces, AnExchangeTakesOutBeforeItBringsIn) {
    rt.valSpc = {1, 1, 0, 0};
    rt.ccAgenda = {1, 1, 0, 0};
    sn_updateValSpc(&rt, leaf(COND_EXPR, {0, 1}), leaf(COND_EXPR, {1, 2}));
    EXPECT_EQ(entries(rt.valSpc), "0 1 1 0");
    EXPECT_EQ(entries(rt.ccAgenda), "0 0 0 0");
}

// ---- Covers ----

TEST_F(Validity, ACoverHoldsEveryRegionThatTheValueTouches) {
    std::vector<std::pair<char const*, std::vector<int>>> const cases = {
        {"5", {0}},           {"10", {1}},       {"[5, 12]", {1, 0}}, {"[5, 20]", {2, 1, 0}},
        {"[12, 17]", {2, 1}}, {"[12, 17[", {1}}, {"[20, 30]", {2}}};
    for (auto const& [value, regions] : cases) {
        room.g->value = obj(value);
        std::vector<s_Condition*> expected;
        for (int const region : regions)
            expected.push_back(room.conditions[static_cast<std::size_t>(region)]);
        EXPECT_EQ(sn_findCondCover(room.g, &rt), expected) << value;
    }
}

TEST_F(Validity, AnIntermediateHasNoCoverAndNeedsNone) {
    s_GVar intermediate;
    intermediate.kind = GV_INTERMEDIATE;
    EXPECT_TRUE(sn_findCondCover(&intermediate, &rt).empty());
}

TEST_F(Validity, AValueOutsideEveryCoverStopsTheRun) {
    room.x->varConds = {0};  // nothing covers 10 and above
    enter(room, 0);
    EXPECT_EQ(tellingSplit(obj("[5, 8]")), "#");
    EXPECT_EQ(tellingSplit(obj("12")), "[findCover -->] returning NULL\n#0");
}

// The copy for the part that nothing covers goes, and the parts settled before stay in the table:
// none here, as the runtime itself is the first to be settled.
TEST_F(Validity, AStopInTheMiddleOfASplitLeavesNothingBehind) {
    room.x->varConds = {0};
    enter(room, 0);
    EXPECT_EQ(tellingSplit(obj("[5, 15]")), "[findCover -->] returning NULL\n#0");
    EXPECT_TRUE(nrt.empty());
}

TEST_F(Validity, AValueThatIsNoNumberIsOutsideEveryCover) {
    enter(room, 0);
    EXPECT_EQ(tellingSplit(makeReal(std::nan(""))), "[findCover -->] returning NULL\n#0");
}

// ---- The first placing ----

class Placing : public Validity {
protected:
    std::string place(char const* value) {
        room.x->old = room.g->value = obj(value);
        EXPECT_EQ(sn_initValSpc(&rt), 1);
        return result();
    }
};

TEST_F(Placing, WithoutConstraintVariablesThereIsNothingToPlace) {
    rt.gV.clear();
    EXPECT_EQ(sn_initValSpc(&rt), 1);
    EXPECT_TRUE(nrt.empty());
}

TEST_F(Placing, TheCoverBecomesTheSpaceAndAnEvent) {
    EXPECT_EQ(place("4"), "#0 4 { 0 } +x=0\n");
    EXPECT_EQ(room.conditions[0]->val, 1);
    EXPECT_EQ(room.conditions[1]->val, 0);
}

// The constraints of a cover are its own, not those of its operands: in the middle there is an
// event and no space.
TEST_F(Placing, ARegionBetweenTwoThresholdsHasNoConstraintsOfItsOwn) {
    EXPECT_EQ(place("12"), "#0 12 { } +x=1\n");
}

// Both regions of the value were kept, the higher one first; a runtime without an event on their
// variable takes the first kept, wherever its own part lies.
TEST_F(Placing, AValueOnBothSidesIsSplitAtOnce) {
    EXPECT_EQ(place("[5, 15]"),
              "#0 [5, 10] { 0 } +x=1\n"
              "#1 ]10, 15[ { 1 2 } +x=1\n");
}

TEST_F(Placing, AnEventOnTheSameVariableKeepsOthersOut) {
    rt.bridgeEvents.insert({false, (*room.choice)[2]});
    EXPECT_EQ(place("4"), "#0 4 { 0 } -x=2\n");
    EXPECT_EQ(calls(), "");
    EXPECT_EQ(room.conditions[0]->val, 0);
}

// A condition without an atom never finds an event of its variable.
TEST_F(Placing, ConditionsWithoutAtomsAreAlwaysAdded) {
    Regions& y = add("y", {1}, false);
    y.x->old = y.g->value = obj("0");
    place("4");
    EXPECT_EQ(calls(), "add x=0 #0; add - #0; ");
    EXPECT_EQ(y.conditions[0]->val, 1);
}

TEST_F(Placing, VariablesWithoutConstraintsFindNoPlace) {
    room.g->acIdx.clear();
    EXPECT_EQ(sn_initValSpc(&rt), 0);
    EXPECT_EQ(nrt.size(), 1u);
    dropSplit();
    room.g->acIdx = {1, 0};
    room.g->var = nullptr;
    room.g->kind = GV_INTERMEDIATE;
    EXPECT_EQ(sn_initValSpc(&rt), 0);
    EXPECT_EQ(entries(rt.valSpc), "0 0 0 0");
}

TEST_F(Placing, OnePlacedVariableIsEnough) {
    Regions& y = add("y", {1});
    y.g->acIdx.clear();
    EXPECT_EQ(place("4"), "#0 4 0 { 0 } +x=0\n");
}

// ---- Traces ----

TEST_F(Validity, TheSpaceIsShownByItsConstraints) {
    rt.valSpc = {1, 0, 0, 1};
    EXPECT_EQ(printed([this] { viewValSpc(&rt); }),
              "rt 0 valSpc => 10+-1.79769e+308 0 17+0 1.79769e+308 ");
    rt.valSpc = {0, 0, 0, 0};
    EXPECT_EQ(printed([this] { viewValSpc(&rt); }), "rt 0 valSpc => ");
}

TEST_F(Validity, TheAgendaIsShownWithItsVariables) {
    rt.ccAgenda = {1, 0};
    rt.valSpc = {1, 0};
    rt.aC.resize(2);
    rt.aC[1] = rt.aC[0]->left;
    s_Expr anonymous = *rt.aC[0];
    anonymous.gvar = nullptr;
    rt.aC.push_back(&anonymous);
    rt.ccAgenda.push_back(1);
    EXPECT_EQ(printed([this] { viewCcAgenda(&rt); }),
              "Cc agenda:\n x\n10+-1.79769e+308 0 -- 1\n10\n10 -- 0\n"
              "10+-1.79769e+308 0 -- 1\n");
}

TEST_F(Validity, TheStateOfASplitIsShown) {
    s_Objet const current = obj("[1, 2]"), filtered = obj("3");
    EXPECT_EQ(printed([&] { viewSplitState(room.g, &current, &filtered); }),
              "\t\t|variable: x\n\n\t\t|current value: 1 2\n\t\t|filtered value: 3\n");
}

}  // namespace
}  // namespace engine_test
