// One element: its construction and copy, its transitions, and its text.
#include "fixtures/the_run.h"
#include "model/Clause.h"
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::printed;
using trajectory_fixture::PumpAndTank;

namespace {

TrajEl::Transitions const none;

class TrajElTest : public testing::Test, protected PumpAndTank {
protected:
    TrajEl off{theRun().scheduler.book, pump["mode=off"], nullptr, nullptr, labelTrue};
};

TEST(TrajElStart, IsEmptyFreeAndUnbound) {
    TrajEl const element{theRun().scheduler.book};
    EXPECT_EQ(element.atom, nullptr);
    EXPECT_EQ(element.prevTime, 0);
    EXPECT_EQ(element.prevTrans, nullptr);
    EXPECT_EQ(element.index, -1);
    EXPECT_TRUE(element.nextTrans.empty());
    EXPECT_TRUE(element.nextTransNeg.empty());
    EXPECT_EQ(element.label, "");
    EXPECT_EQ(element.support, nullptr);
    EXPECT_TRUE(element.consequences.empty());
    EXPECT_EQ(element.propagationNumber, 0);
    EXPECT_EQ(element.lock, 2);
    EXPECT_EQ(element.proba, 1.0);
}

TEST_F(TrajElTest, TakesAtomTransitionLabelAndTheNextTransitionsThatAreThere) {
    TrajEl::Transitions const next{{0, nullptr}, {2, start}, {7, nullptr}};
    TrajEl const element(theRun().scheduler.book, pump["mode=off"], stayOff, &next, labelUnknown);
    EXPECT_EQ(element.atom, pump["mode=off"]);
    EXPECT_EQ(element.prevTrans, stayOff);
    EXPECT_EQ(element.nextTrans, (TrajEl::Transitions{{2, start}}));
    EXPECT_EQ(element.label, "unknown");
    EXPECT_TRUE(element.nextTransNeg.empty());
    EXPECT_EQ(element.prevTime, 0);
    EXPECT_EQ(element.index, -1);
    EXPECT_EQ(element.lock, 2);
    EXPECT_EQ(element.proba, 1.0);
    EXPECT_EQ(element.support, nullptr);
    EXPECT_EQ(element.propagationNumber, 0);
}

TEST_F(TrajElTest, CopyTakesEverythingButTheConsequences) {
    Clause clause(&pump.comp);
    TrajEl other{theRun().scheduler.book};
    off.prevTime = 3;
    off.prevTrans = stayOff;
    off.index = 8;
    off.nextTrans = {{1, nullptr}, {2, start}};
    off.nextTransNeg = {{0, stayOff}, {5, nullptr}};
    off.setLabel(labelFalse);
    off.support = &clause;
    off.propagationNumber = 6;
    off.lock = LOCK_FALSE_PERM;
    off.proba = 0.5;
    off.consequences.push_back(&other);
    TrajEl const copy(&off);
    EXPECT_EQ(copy.atom, off.atom);
    EXPECT_EQ(copy.prevTime, 3);
    EXPECT_EQ(copy.prevTrans, stayOff);
    EXPECT_EQ(copy.index, 8);
    EXPECT_EQ(copy.nextTrans, (TrajEl::Transitions{{2, start}})) << "null entries stay behind";
    EXPECT_EQ(copy.nextTransNeg, (TrajEl::Transitions{{0, stayOff}}));
    EXPECT_EQ(copy.label, "false");
    EXPECT_EQ(copy.support, &clause);
    EXPECT_EQ(copy.propagationNumber, 6);
    EXPECT_EQ(copy.lock, 4);
    EXPECT_EQ(copy.proba, 0.5);
    EXPECT_TRUE(copy.consequences.empty());
}

TEST_F(TrajElTest, EveryConstructionAndDestructionIsCounted) {
    unsigned const created = theRun().scheduler.book.trajel_created;
    unsigned const deleted = theRun().scheduler.book.trajel_del;
    {
        TrajEl const empty{theRun().scheduler.book};
        EXPECT_EQ(theRun().scheduler.book.trajel_created, created + 1);
        TrajEl const copy(&off);
        EXPECT_EQ(theRun().scheduler.book.trajel_created, created + 2);
        TrajEl const made(theRun().scheduler.book, off.atom, nullptr, &none, labelTrue);
        EXPECT_EQ(theRun().scheduler.book.trajel_created, created + 3);
        EXPECT_EQ(theRun().scheduler.book.trajel_del, deleted);
    }
    EXPECT_EQ(theRun().scheduler.book.trajel_created, created + 3);
    EXPECT_EQ(theRun().scheduler.book.trajel_del, deleted + 3);
}

TEST_F(TrajElTest, AnswersThroughItsAtom) {
    EXPECT_EQ(off.getId(), pump["mode=off"]->getId());
    EXPECT_EQ(off.getVarType(), "Mode");
    EXPECT_EQ(off.getStateVar(), pump["mode=off"]->var);
    EXPECT_EQ(off.getAtomLink("p.mode=on"), pump["mode=on"]);
    EXPECT_EQ(off.getAtomLink("t.mode=low"), nullptr) << "an atom of another variable";
    off.setAtom(tank["mode=low"]);
    EXPECT_STREQ(off.getId(), "t.mode=low");
}

TEST_F(TrajElTest, IsEqualByAtomAlone) {
    TrajEl const same(theRun().scheduler.book, pump["mode=off"], stayOff, nullptr, labelFalse);
    TrajEl const sibling(theRun().scheduler.book, pump["mode=on"], nullptr, nullptr, labelTrue);
    EXPECT_TRUE(off.eq(same));
    EXPECT_FALSE(off.eq(sibling));
}

TEST_F(TrajElTest, HoldsOnlyWithTheLabelTrue) {
    EXPECT_TRUE(off.evalTrajEl());
    off.setLabel(labelUnknown);
    EXPECT_EQ(off.getLabel(), "unknown");
    EXPECT_FALSE(off.evalTrajEl());
    off.setLabel(labelFalse);
    EXPECT_FALSE(off.evalTrajEl());
    EXPECT_FALSE(TrajEl(theRun().scheduler.book).evalTrajEl());
}

TEST_F(TrajElTest, LocksHoldAtTrueOrAtFalse) {
    struct Case {
        int lock;
        bool heldTrue;
        bool heldFalse;
    };
    for (Case const& expected : {Case{0, true, false}, Case{1, false, true}, Case{2, false, false},
                                 Case{3, true, false}, Case{4, false, true}}) {
        off.lock = expected.lock;
        EXPECT_EQ(off.isHeldTrue(), expected.heldTrue) << "lock " << expected.lock;
        EXPECT_EQ(off.isHeldFalse(), expected.heldFalse) << "lock " << expected.lock;
    }
}

TEST_F(TrajElTest, ProbabilityIsMultiplied) {
    off.updateProba(0.5);
    off.updateProba(0.25);
    EXPECT_EQ(off.proba, 0.125);
}

// ---- What leaves the element ----

TEST_F(TrajElTest, ASuccessorReplacesTheOneOfTheSameModeVariable) {
    off.addToNextTrans(stayOff);
    off.addToNextTrans(stayLow);
    off.addToNextTrans(start);
    EXPECT_EQ(off.nextTrans, (TrajEl::Transitions{{2, start}, {4, stayLow}}))
        << "that of the tank stays";
    off.addToNextTrans(start);
    EXPECT_EQ(off.nextTrans, (TrajEl::Transitions{{2, start}, {4, stayLow}}));
}

TEST_F(TrajElTest, ANullEntryIsNoSuccessorOfTheVariable) {
    off.nextTrans = {{0, nullptr}, {1, stayOn}};
    off.addToNextTrans(start);
    EXPECT_EQ(off.nextTrans, (TrajEl::Transitions{{0, nullptr}, {2, start}}));
}

TEST_F(TrajElTest, NegativeSuccessorsOfOneVariableAllStay) {
    off.addToNextTransNeg(stayOff);
    off.addToNextTransNeg(start);
    EXPECT_EQ(off.nextTransNeg, (TrajEl::Transitions{{0, stayOff}, {2, start}}));
    EXPECT_TRUE(off.nextTrans.empty());
}

// Transition 0 stands on both sides; a further negative one of the pump drops it from the true
// side.
TEST_F(TrajElTest, ANegativeSuccessorDropsAPositiveOneThatIsNegativeToo) {
    off.addToNextTrans(stayOff);
    off.addToNextTrans(stayLow);
    off.addToNextTransNeg(stayOff);
    EXPECT_EQ(off.nextTrans.count(0), 1u) << "nothing of the pump was on the false side yet";
    off.addToNextTransNeg(start);
    EXPECT_EQ(off.nextTrans, (TrajEl::Transitions{{4, stayLow}}));
    EXPECT_EQ(off.nextTransNeg, (TrajEl::Transitions{{0, stayOff}, {2, start}}));
}

TEST_F(TrajElTest, ANegativeSuccessorOfAnotherVariableDropsNothing) {
    off.addToNextTrans(stayOff);
    off.addToNextTransNeg(stayOff);
    off.addToNextTransNeg(stayLow);
    EXPECT_EQ(off.nextTrans, (TrajEl::Transitions{{0, stayOff}}));
}

// ---- Text ----

// The pump's mode is off at the start, so only the atom of off evaluates to 1.
TEST_F(TrajElTest, ShowsTheIdOrTheWholeAtomOfThisStep) {
    off.propagationNumber = 12;
    off.lock = LOCK_TRUE_PERM;
    EXPECT_EQ(printed([&] { off.showAtom(std::cout, false); }), "p.mode=off");
    EXPECT_EQ(printed([&] { off.showAtom(std::cout, true); }),
              "--- Atom n\xb0# ---\n"
              "p.mode=off --> [1]\n"
              "label : true\n"
              "propagation number : 12\n"
              "lock : 3\n");
    TrajEl const on(theRun().scheduler.book, pump["mode=on"], nullptr, nullptr, labelUnknown);
    EXPECT_EQ(printed([&] { on.showAtom(std::cout, true); }),
              "--- Atom n\xb0# ---\n"
              "p.mode=on --> [0]\n"
              "label : unknown\n"
              "propagation number : 0\n"
              "lock : 2\n");
}

TEST_F(TrajElTest, ShowsItselfWithoutTransitionsAndSupport) {
    EXPECT_EQ(printed([&] { off.showTrajEl(std::cout, false); }),
              "p.mode=offprevTrans(0) :\n"
              "support: 0\n");
}

TEST_F(TrajElTest, ShowsItsTransitionsInAndOutAndItsSupport) {
    Clause clause(&pump.comp);
    clause.addAtom(pump["mode=on"], true);
    off.prevTime = 7;
    off.prevTrans = stayOff;
    off.nextTrans = {{0, nullptr}, {2, start}, {4, stayLow}};
    off.nextTransNeg = {{1, stayOn}};
    off.support = &clause;
    std::string const address = printed([&] { std::cout << &clause; });
    EXPECT_EQ(printed([&] { off.showTrajEl(std::cout, true); }),
              printed([&] { off.showAtom(std::cout, true); }) +
                  "prevTrans(7) :\n"
                  "Nominal (0.5) (idle) : (p.mode=off  ) =>O  and (p.mode=off  ) -- 0\n"
                  "Nominal (0.5) : (p.mode=off  ) =>O  and (p.mode=on  ) -- 2\n"
                  "Nominal (0.75) (idle) : (t.mode=low  ) =>O  and (t.mode=low  ) -- 4\n"
                  "support: " +
                  address +
                  "\n"
                  "cl size: 1\nnon - p.mode=on\n");
}

}  // namespace
