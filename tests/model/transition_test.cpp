// Transitions: construction, the links into the atoms, equality, and printing.
//
// A guard is read through its signed atoms, which are the own literals put once more into a bag:
// for literals of one sign that turns the walk round twice, so they are met in the order of
// insertion.
#include "model/Transitionrt.h"

#include "model/model_fixture.h"

using model_fixture::complaint;
using model_fixture::formulaOf;
using model_fixture::Literal;
using model_fixture::printed;
using model_fixture::Valued;

namespace {

using Transitions = std::vector<Transition*>;

class TransitionTest : public testing::Test {
protected:
    std::unique_ptr<Transition> make(std::vector<Literal> const& pre,
                                     std::vector<Literal> const& post,
                                     std::string const& type = "Nominal", bool idle = false) {
        return std::make_unique<Transition>(formulaOf(pre), formulaOf(post), type, 0.5, 0.0, idle);
    }

    Valued<> mode{"m", {"on", "off", "broken", "unknown"}};
    Valued<> otherMode{"n", {"on", "off", "unknown"}};
    Valued<CommandVar> command{"c", {"none", "start", "stop"}};
    Valued<CondVar> condition{"x", {"low", "high"}};
};

TEST_F(TransitionTest, ConstructorsFillProbabilitiesAndIdle) {
    auto const pre = [&] { return formulaOf({{true, mode["on"]}}); };
    auto const post = [&] { return formulaOf({{true, mode["off"]}}); };
    Transition const three(pre(), post(), "Nominal");
    EXPECT_EQ(three.proba, 0.0);
    EXPECT_EQ(three.proba2, 0.0);
    EXPECT_FALSE(three.idle);
    Transition const four(pre(), post(), "Fail", 0.25);
    EXPECT_EQ(four.proba, 0.25);
    EXPECT_EQ(four.proba2, 0.0);
    EXPECT_FALSE(four.idle);
    Transition const five(pre(), post(), "Nominal", 0.25, true);
    EXPECT_EQ(five.proba, 0.25);
    EXPECT_EQ(five.proba2, 0.0);
    EXPECT_TRUE(five.idle);
    Transition const six(pre(), post(), "Nominal", 0.25, 0.75, true);
    EXPECT_EQ(six.proba, 0.25);
    EXPECT_EQ(six.proba2, 0.75);
    EXPECT_TRUE(six.idle);
    EXPECT_EQ(three.getType(), "Nominal");
    EXPECT_EQ(four.getType(), "Fail");
}

TEST_F(TransitionTest, StartsUnnumberedUnweightedAndUnconditional) {
    auto const transition = make({{true, mode["on"]}}, {{true, mode["off"]}});
    EXPECT_EQ(transition->id, 0);
    EXPECT_EQ(transition->weight, 0.0);
    EXPECT_EQ(transition->nbPosts, 1);
    EXPECT_EQ(transition->posts, nullptr);
    EXPECT_TRUE(transition->formulas.empty());
    EXPECT_TRUE(transition->unconditional);
    EXPECT_TRUE(transition->mapFuncs.empty());
}

TEST_F(TransitionTest, EveryConstructorEntersTheReferences) {
    auto const pre = [&] { return formulaOf({{true, mode["on"]}}); };
    auto const post = [&] { return formulaOf({{true, mode["off"]}}); };
    Transition three(pre(), post(), "Nominal");
    Transition four(pre(), post(), "Nominal", 0.5);
    Transition five(pre(), post(), "Nominal", 0.5, false);
    Transition six(pre(), post(), "Nominal", 0.5, 0.0, false);
    EXPECT_EQ(mode["on"]->getRefTransPre(), (Transitions{&three, &four, &five, &six}));
    EXPECT_EQ(mode["off"]->getRefTransPost(), (Transitions{&three, &four, &five, &six}));
    EXPECT_TRUE(mode["on"]->getRefTransPost().empty());
    EXPECT_TRUE(mode["off"]->getRefTransPre().empty());
}

TEST_F(TransitionTest, EqualityIsByNumberAlone) {
    auto const first = make({{true, mode["on"]}}, {{true, mode["off"]}});
    auto const second = make({{true, mode["off"]}}, {{true, mode["on"]}}, "Fail");
    EXPECT_TRUE(first->eq(second.get())) << "both are unnumbered";
    first->setID(4);
    EXPECT_FALSE(first->eq(second.get()));
    second->setID(4);
    EXPECT_TRUE(first->eq(second.get()));
}

TEST_F(TransitionTest, PositiveModeLiteralGivesTheMode) {
    auto const transition = make({{true, mode["on"]}}, {{true, mode["off"]}});
    EXPECT_EQ(transition->modeVar, &mode.variable);
    EXPECT_EQ(transition->preMode, mode["on"]);
    EXPECT_EQ(transition->postMode, mode["off"]);
}

TEST_F(TransitionTest, CommandAndConditionLiteralsAreSkippedInTheSearchForTheMode) {
    auto const before = make({{true, command["start"]}, {true, mode["on"]}}, {{true, mode["off"]}});
    auto const after = make({{true, mode["on"]}, {true, command["start"]}}, {{true, mode["off"]}});
    auto const conditioned =
        make({{true, condition["low"]}, {true, mode["on"]}}, {{true, mode["off"]}});
    for (Transition const* transition : {before.get(), after.get(), conditioned.get()}) {
        EXPECT_EQ(transition->modeVar, &mode.variable);
        EXPECT_EQ(transition->preMode, mode["on"]);
    }
    EXPECT_EQ(command["start"]->getRefTransPre(), (Transitions{before.get(), after.get()}));
    EXPECT_EQ(condition["low"]->getRefTransPre(), Transitions{conditioned.get()});
}

TEST_F(TransitionTest, FirstOfSeveralModeLiteralsGivesTheMode) {
    auto const transition =
        make({{true, otherMode["on"]}, {true, mode["off"]}}, {{true, mode["on"]}});
    EXPECT_EQ(transition->modeVar, &otherMode.variable);
    EXPECT_EQ(transition->preMode, otherMode["on"]);
    EXPECT_EQ(transition->postMode, nullptr) << "the effect names no atom of that variable";
    EXPECT_EQ(mode["off"]->getRefTransPre(), Transitions{transition.get()});
}

// A variable of n values: n-1 entries, none at the atom named.
TEST_F(TransitionTest, NegativeLiteralLeavesEverySibling) {
    auto const transition = make({{false, mode["off"]}}, {{true, otherMode["on"]}});
    Transitions const entered = {transition.get()};
    EXPECT_EQ(mode["on"]->getRefTransPre(), entered);
    EXPECT_EQ(mode["broken"]->getRefTransPre(), entered);
    EXPECT_EQ(mode["unknown"]->getRefTransPre(), entered);
    EXPECT_TRUE(mode["off"]->getRefTransPre().empty());
    EXPECT_EQ(transition->modeVar, nullptr) << "a negative literal names no mode";
    EXPECT_EQ(transition->preMode, nullptr);
}

TEST_F(TransitionTest, NestedLiteralsAreEnteredToo) {
    auto pre = formulaOf({{true, command["start"]}});
    pre->addStateFormula(formulaOf({{true, mode["on"]}}));
    auto post = formulaOf({});
    post->addStateFormula(formulaOf({{true, mode["off"]}}));
    Transition transition(std::move(pre), std::move(post), "Nominal", 0.5);
    EXPECT_EQ(mode["on"]->getRefTransPre(), Transitions{&transition});
    EXPECT_EQ(mode["off"]->getRefTransPost(), Transitions{&transition});
    EXPECT_EQ(transition.preMode, mode["on"]);
    EXPECT_EQ(transition.postMode, mode["off"]);
}

TEST_F(TransitionTest, WithoutGuardOrEffectEntersNothing) {
    Transition const transition(nullptr, std::unique_ptr<StateFormula>(), "Nominal");
    EXPECT_EQ(transition.modeVar, nullptr);
    EXPECT_EQ(transition.preMode, nullptr);
    EXPECT_EQ(transition.postMode, nullptr);
    EXPECT_FALSE(transition.unknownPost);
}

// The top level of a model adds a literal to a guard that exists already.
TEST_F(TransitionTest, GuardGrowsAfterConstruction) {
    auto const transition = make({{true, mode["on"]}}, {{true, mode["off"]}});
    transition->refAtomPre(true, otherMode["on"]);
    transition->refAtomPre(false, command["none"]);
    EXPECT_EQ(otherMode["on"]->getRefTransPre(), Transitions{transition.get()});
    EXPECT_EQ(command["start"]->getRefTransPre(), Transitions{transition.get()});
    EXPECT_EQ(command["stop"]->getRefTransPre(), Transitions{transition.get()});
    EXPECT_TRUE(command["none"]->getRefTransPre().empty());
    EXPECT_EQ(transition->modeVar, &mode.variable) << "the mode is found already";
    EXPECT_EQ(transition->preMode, mode["on"]);
}

TEST_F(TransitionTest, FailureMarksTheAtomsItReaches) {
    auto const nominal = make({{true, mode["on"]}}, {{true, mode["off"]}});
    EXPECT_FALSE(mode["off"]->failure);
    auto const fail = make({{true, mode["on"]}}, {{true, mode["broken"]}}, "Fail");
    EXPECT_TRUE(mode["broken"]->failure);
    EXPECT_FALSE(mode["on"]->failure);
    auto const later = make({{true, mode["on"]}}, {{true, mode["broken"]}});
    EXPECT_TRUE(mode["broken"]->failure) << "a nominal transition never clears the flag";
    EXPECT_EQ(mode["broken"]->getRefTransPost(), (Transitions{fail.get(), later.get()}));
}

TEST_F(TransitionTest, LaterIdleTransitionReplacesTheEarlierOne) {
    auto const first = make({{true, mode["on"]}}, {{true, mode["on"]}}, "Nominal", true);
    EXPECT_EQ(mode["on"]->idleTrans, first.get());
    auto const second = make({{true, mode["on"]}}, {{true, mode["on"]}}, "Nominal", true);
    EXPECT_EQ(mode["on"]->idleTrans, second.get());
    auto const moving = make({{true, mode["off"]}}, {{true, mode["on"]}});
    EXPECT_EQ(mode["on"]->idleTrans, second.get()) << "only idle transitions count";
    EXPECT_EQ(mode["on"]->getRefTransPost(),
              (Transitions{first.get(), second.get(), moving.get()}));
}

// Effects are walked as their own bag: of one sign, the last inserted first.
TEST_F(TransitionTest, LastEffectWalkedDecidesModeAndUnknown) {
    auto const offLast = make({{true, mode["on"]}}, {{true, mode["off"]}, {true, mode["unknown"]}});
    EXPECT_EQ(offLast->postMode, mode["off"]);
    EXPECT_FALSE(offLast->unknownPost);
    auto const unknownLast =
        make({{true, mode["on"]}}, {{true, mode["unknown"]}, {true, mode["off"]}});
    EXPECT_EQ(unknownLast->postMode, mode["unknown"]);
    EXPECT_TRUE(unknownLast->unknownPost);
    auto const elsewhere =
        make({{true, mode["on"]}}, {{true, otherMode["unknown"]}, {true, mode["off"]}});
    EXPECT_EQ(elsewhere->postMode, mode["off"]) << "an atom of another variable is no mode";
    EXPECT_TRUE(elsewhere->unknownPost);
}

TEST_F(TransitionTest, SignsOfTheEffectPlayNoPart) {
    auto const transition = make({{true, mode["on"]}}, {{false, mode["off"]}});
    EXPECT_EQ(mode["off"]->getRefTransPost(), Transitions{transition.get()});
    EXPECT_EQ(transition->postMode, mode["off"]);
}

// A faulty model: the value is outside the domain, so the atom has no variable.
TEST_F(TransitionTest, AtomWithoutVariableIsHarmless) {
    std::unique_ptr<Atom> stray;
    printed([&] { stray = std::make_unique<Atom>(&mode.variable, "molten", "m=molten"); });
    auto const transition =
        make({{true, stray.get()}, {false, stray.get()}}, {{true, stray.get()}});
    EXPECT_EQ(transition->modeVar, nullptr);
    EXPECT_EQ(transition->postMode, nullptr);
    EXPECT_EQ(stray->getRefTransPre(), Transitions{transition.get()});
    EXPECT_TRUE(mode["on"]->getRefTransPre().empty());
}

class MultiValuedTest : public TransitionTest {
protected:
    // Effects under the offsets 2 and 0: off, and broken with the other mode on.
    std::unique_ptr<Transition> makeMulti(std::string const& type) {
        auto posts = std::make_unique<Transition::Posts>();
        (*posts)[2] = formulaOf({{true, mode["off"]}}).release();
        (*posts)[0] = formulaOf({{true, mode["broken"]}, {true, otherMode["on"]}}).release();
        return std::make_unique<Transition>(formulaOf({{true, mode["on"]}}), std::move(posts), type,
                                            0.125);
    }
};

TEST_F(MultiValuedTest, HasItsEffectsInTheTable) {
    auto const transition = makeMulti("Nominal");
    EXPECT_EQ(transition->proba, 0.125);
    EXPECT_FALSE(transition->idle);
    EXPECT_EQ(transition->post, nullptr);
    ASSERT_NE(transition->posts, nullptr);
    EXPECT_EQ(transition->nbPosts, 2);
    EXPECT_EQ(transition->preMode, mode["on"]);
    EXPECT_EQ(mode["on"]->getRefTransPre(), Transitions{transition.get()});
}

TEST_F(MultiValuedTest, EntersEveryEffectButNoModeReached) {
    auto const transition = makeMulti("Nominal");
    for (Atom const* atom : {mode["off"], mode["broken"], otherMode["on"]})
        EXPECT_EQ(atom->getRefTransPost(), Transitions{transition.get()}) << atom->getId();
    EXPECT_EQ(transition->postMode, nullptr);
    EXPECT_EQ(mode["off"]->idleTrans, nullptr);
}

TEST_F(MultiValuedTest, AssignsTheFailureFlag) {
    mode["off"]->failure = true;
    auto const nominal = makeMulti("Nominal");
    EXPECT_FALSE(mode["off"]->failure) << "a nominal one clears it";
    auto const fail = makeMulti("Fail");
    for (Atom const* atom : {mode["off"], mode["broken"], otherMode["on"]})
        EXPECT_TRUE(atom->failure) << atom->getId();
}

TEST_F(TransitionTest, ShowsTheMove) {
    auto const transition = make({{true, mode["on"]}}, {{true, mode["off"]}});
    EXPECT_EQ(printed([&] { transition->showMove(std::cout, std::cerr); }),
              "m=on --------> m=off\n");
}

TEST_F(TransitionTest, IdleShowsNoMove) {
    auto const transition = make({{true, mode["on"]}}, {{true, mode["on"]}}, "Nominal", true);
    EXPECT_EQ(printed([&] { transition->showMove(std::cout, std::cerr); }), "");
}

TEST_F(TransitionTest, MoveWithoutModesIsToldOnTheErrorStream) {
    auto const noPre = make({{true, command["start"]}}, {{true, mode["off"]}});
    noPre->setID(7);
    std::string output;
    std::string const message =
        complaint([&] { output = printed([&] { noPre->showMove(std::cout, std::cerr); }); });
    EXPECT_EQ(message, "Transition 7 names no mode to leave or none to reach.\n");
    EXPECT_EQ(output, "");
    auto const noPost = make({{true, mode["on"]}}, {{true, otherMode["off"]}});
    EXPECT_NE(complaint([&] { noPost->showMove(std::cout, std::cerr); }), "");
}

TEST_F(TransitionTest, ShowsItself) {
    auto const transition =
        make({{true, command["start"]}, {true, mode["on"]}}, {{true, mode["off"]}}, "Fail");
    transition->setID(12);
    EXPECT_EQ(printed([&] { transition->showTransition(std::cout); }),
              "Fail (0.5) : (m=on  c=start  ) =>O  and (m=off  ) -- 12\n");
}

TEST_F(TransitionTest, ShowsThatItIsIdle) {
    Transition const transition(formulaOf({{true, mode["on"]}}), formulaOf({{true, mode["on"]}}),
                                "Nominal", 1.0, 0.0, true);
    EXPECT_EQ(printed([&] { transition.showTransition(std::cout); }),
              "Nominal (1) (idle) : (m=on  ) =>O  and (m=on  ) -- 0\n");
}

TEST_F(TransitionTest, ShowsWithoutGuardAndEffect) {
    Transition const transition(nullptr, std::unique_ptr<StateFormula>(), "Nominal");
    EXPECT_EQ(printed([&] { transition.showTransition(std::cout); }), "Nominal (0) :  =>O  -- 0\n");
}

TEST_F(TransitionTest, ShowsItsFormulas) {
    auto const transition = make({{true, mode["on"]}}, {{true, mode["off"]}});
    for (char const* value : {"low", "high"})
        transition->addFormulaToTrans(
            std::make_unique<Formula>(nullptr, formulaOf({{true, condition[value]}}), nullptr));
    EXPECT_EQ(transition->formulas.size(), 2u);
    EXPECT_EQ(printed([&] { transition->showTransition(std::cout); }),
              "Nominal (0.5) : (m=on  ) =>O  and ((x=low  )\n) and ((x=high  )\n)"
              " and (m=off  ) -- 0\n");
}

TEST_F(MultiValuedTest, ShowsEachEffectUnderItsKey) {
    auto const transition = makeMulti("Nominal");
    EXPECT_EQ(printed([&] { transition->showTransition(std::cout); }),
              "Nominal (0.125) : (m=on  ) =>O "
              "\n\t\t\t\t\t0 : (n=on  m=broken  )"
              "\n\t\t\t\t\t2 : (m=off  ) -- 0\n");
}

}  // namespace
