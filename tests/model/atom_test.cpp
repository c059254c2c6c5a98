// Atoms: construction, truth, labels, links, and printing.
#include "fixtures/the_run.h"
#include "model/model_fixture.h"

using model_fixture::printed;
using model_fixture::Valued;

namespace {

TEST(Atom, StartsUnknownAndWithoutLinks) {
    Comp comp("room");
    ModeVar mode("room.mode", {"open", "closed"}, "open", &comp);
    Atom const atom(&mode, "closed", "room.mode=closed");
    EXPECT_EQ(atom.getStateVar(), &mode);
    EXPECT_EQ(atom.getVarComp(), &comp);
    EXPECT_EQ(atom.getVarType(), "Mode");
    EXPECT_EQ(atom.value, "closed");
    EXPECT_STREQ(atom.getId(), "room.mode=closed");
    EXPECT_EQ(atom.getLabel(), "unknown");
    EXPECT_FALSE(atom.failure);
    EXPECT_TRUE(atom.getRefTransPre().empty());
    EXPECT_TRUE(atom.getRefTransPost().empty());
    EXPECT_EQ(atom.support, nullptr);
    EXPECT_TRUE(atom.consequences.empty());
    EXPECT_TRUE(atom.clauses.empty());
    EXPECT_TRUE(atom.comps.empty());
    EXPECT_EQ(atom.propagationNumber, 0);
    EXPECT_EQ(atom.compiledProb, 0.0);
    EXPECT_FALSE(atom.bridged);
    EXPECT_EQ(atom.idleTrans, nullptr);
    EXPECT_EQ(atom.guards, 0u);
    EXPECT_FALSE(atom.deadEnd);
    EXPECT_EQ(atom.getTopoNumber(), 0);
}

TEST(Atom, IdIsTakenAsGivenAndPointsIntoTheAtom) {
    ModeVar mode("m", {"on"}, "on", nullptr);
    Atom const atom(&mode, "on", "anything");
    EXPECT_STREQ(atom.getId(), "anything");
    EXPECT_EQ(atom.getId(), atom.id.c_str()) << "tables are keyed by this very pointer";
}

TEST(Atom, EntersItselfAmongTheLinksOfItsVariable) {
    Valued<> const mode("m", {"b", "a", "c"});
    ASSERT_EQ(mode.variable.getAtomLinks().size(), 3u);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(mode.variable.getAtomLinks()[i], mode.atoms[i].get());
        EXPECT_EQ(mode.atoms[i]->linkIndex, i);
    }
}

TEST(Atom, IsNotEnteredInTheRegistry) {
    std::size_t const before = thePlant().active_atoms.size();
    Valued<> const mode("m", {"on"});
    EXPECT_EQ(thePlant().active_atoms.size(), before);
}

TEST(Atom, ValueOutsideTheDomainIsToldAndLeavesNoVariable) {
    ModeVar mode("m", {"on"}, "on", nullptr);
    std::unique_ptr<Atom> atom;
    atom = std::make_unique<Atom>(&mode, "broken", "m=broken");
    EXPECT_EQ(mode.complaints,
              "Atom --> Cannot create the atom : value not in the variable domain\n");
    EXPECT_EQ(atom->getStateVar(), nullptr);
    EXPECT_EQ(atom->value, "");
    EXPECT_STREQ(atom->getId(), "m=broken");
    EXPECT_EQ(atom->getLabel(), "unknown");
    EXPECT_TRUE(mode.getAtomLinks().empty());
}

// A faulty model must not bring the program down: each operation finds no variable and goes on.
TEST(Atom, WithoutVariableIsHarmless) {
    ModeVar mode("m", {"on"}, "on", nullptr);
    std::unique_ptr<Atom> atom;
    atom = std::make_unique<Atom>(&mode, "broken", "m=broken");
    EXPECT_FALSE(atom->evalAtom());
    atom->set();
    EXPECT_EQ(atom->getLabel(), "unknown");
    EXPECT_EQ(mode.getCurrentState(), "on");
    atom->setLabel("true", true);
    EXPECT_EQ(atom->getLabel(), "true");
    EXPECT_EQ(atom->getVarComp(), nullptr);
    EXPECT_EQ(atom->getVarType(), "");
    EXPECT_TRUE(atom->getSiblings().empty());
    EXPECT_EQ(atom->getAtomLink("m=broken"), nullptr);
    EXPECT_EQ(printed([&] { atom->showAtom(std::cout, true); }),
              "--- Atom n\260# ---\nm=broken --> [0]\nlabel : true\npropagation number : 0\n");
}

TEST(Atom, IsTrueWhenTheVariableHasItsValue) {
    Valued<> mode("m", {"on", "off"});
    EXPECT_TRUE(mode["on"]->evalAtom());
    EXPECT_FALSE(mode["off"]->evalAtom());
    mode.variable.setCurrentState("off");
    EXPECT_FALSE(mode["on"]->evalAtom());
    EXPECT_TRUE(mode["off"]->evalAtom());
    EXPECT_EQ(mode["off"]->getLabel(), "unknown") << "the label is a separate thing";
}

TEST(Atom, SetMovesTheVariableAndLabelsAllSiblings) {
    Valued<> const mode("m", {"on", "off", "broken"});
    mode["on"]->setLabel("true");
    mode["off"]->set();
    EXPECT_EQ(mode.variable.getCurrentState(), "off");
    EXPECT_EQ(mode["off"]->getLabel(), "true");
    EXPECT_EQ(mode["on"]->getLabel(), "false");
    EXPECT_EQ(mode["broken"]->getLabel(), "false");
}

TEST(Atom, SetOfAnOnlyAtomChangesItsLabelAndTheStateAlone) {
    Valued<> const mode("m", {"on"});
    Valued<> const bystander("n", {"on"});
    mode.atoms[0]->var->setCurrentState("");
    mode["on"]->set();
    EXPECT_EQ(mode.variable.getCurrentState(), "on");
    EXPECT_EQ(mode["on"]->getLabel(), "true");
    EXPECT_EQ(bystander["on"]->getLabel(), "unknown");
}

// Comparison with the siblings is by pointer: a second atom of the same value is a sibling.
TEST(Atom, SetLabelsATwinOfTheSameValueFalse) {
    Valued<> mode("m", {"on"});
    Atom twin(&mode.variable, "on", "m=on");
    twin.set();
    EXPECT_EQ(twin.getLabel(), "true");
    EXPECT_EQ(mode["on"]->getLabel(), "false");
}

TEST(Atom, PlainLabelTouchesOnlyTheAtom) {
    Valued<> const mode("m", {"on", "off"});
    mode["on"]->setLabel("true");
    EXPECT_EQ(mode["on"]->getLabel(), "true");
    EXPECT_EQ(mode["off"]->getLabel(), "unknown");
    mode["on"]->setLabel("false");
    EXPECT_EQ(mode["on"]->getLabel(), "false");
    mode["on"]->setLabel("unknown");
    EXPECT_EQ(mode["on"]->getLabel(), "unknown");
}

TEST(Atom, ExclusiveTrueMakesSiblingsFalseAndKeepsTheState) {
    Valued<> const mode("m", {"on", "off", "broken"});
    mode["off"]->setLabel("true", true);
    EXPECT_EQ(mode["off"]->getLabel(), "true");
    EXPECT_EQ(mode["on"]->getLabel(), "false");
    EXPECT_EQ(mode["broken"]->getLabel(), "false");
    EXPECT_EQ(mode.variable.getCurrentState(), "on");
}

TEST(Atom, ExclusiveLabelOtherThanTrueTouchesOnlyTheAtom) {
    Valued<> const mode("m", {"on", "off"});
    for (std::string const label : {"false", "unknown"}) {
        mode["on"]->setLabel(label, true);
        EXPECT_EQ(mode["on"]->getLabel(), label);
        EXPECT_EQ(mode["off"]->getLabel(), "unknown");
    }
}

TEST(Atom, NotExclusiveTrueTouchesOnlyTheAtom) {
    Valued<> const mode("m", {"on", "off"});
    mode["on"]->setLabel("true", false);
    EXPECT_EQ(mode["on"]->getLabel(), "true");
    EXPECT_EQ(mode["off"]->getLabel(), "unknown");
}

TEST(Atom, FindsALinkedAtomById) {
    Valued<> mode("m", {"on", "off"});
    EXPECT_EQ(mode["on"]->getAtomLink("m=off"), mode["off"]);
    EXPECT_EQ(mode["on"]->getAtomLink("m=on"), mode["on"]);
    EXPECT_EQ(mode["on"]->getAtomLink("off"), nullptr);
    Atom const twin(&mode.variable, "off", "m=off");
    EXPECT_EQ(twin.getAtomLink("m=off"), mode["off"]) << "the first match";
}

TEST(Atom, ReferencesAreAppended) {
    Valued<> const mode("m", {"on", "off"});
    Valued<> const other("n", {"on"});
    auto const first = model_fixture::move(mode["on"], mode["off"], transNominal, 0.5);
    auto const second = model_fixture::move(mode["off"], mode["on"], transNominal, 0.5);
    for (Transition* transition : {second.get(), first.get(), second.get()}) {
        other["on"]->addRefTransPre(transition);
        other["on"]->addRefTransPost(transition);
    }
    std::vector<Transition*> const expected = {second.get(), first.get(), second.get()};
    EXPECT_EQ(other["on"]->getRefTransPre(), expected);
    EXPECT_EQ(other["on"]->getRefTransPost(), expected);
}

TEST(Atom, TopologicalNumberGoesUpAndDown) {
    Valued<> const mode("m", {"on"});
    mode["on"]->incTopoNumber();
    mode["on"]->incTopoNumber();
    EXPECT_EQ(mode["on"]->getTopoNumber(), 2);
    mode["on"]->decTopoNumber();
    mode["on"]->decTopoNumber();
    mode["on"]->decTopoNumber();
    EXPECT_EQ(mode["on"]->getTopoNumber(), -1);
}

TEST(Atom, ShowsItsIdAloneWithoutLineEnd) {
    Valued<> const mode("room.mode", {"open"});
    EXPECT_EQ(printed([&] { mode["open"]->showAtom(std::cout, false); }), "room.mode=open");
}

// The degree sign is the single byte 0xB0, 260 in octal.
TEST(Atom, ShowsEverythingInFull) {
    Valued<> const mode("room.mode", {"open", "closed"});
    mode["open"]->setLabel("true");
    mode["open"]->propagationNumber = 12;
    EXPECT_EQ(printed([&] { mode["open"]->showAtom(std::cout, true); }),
              "--- Atom n\260# ---\n"
              "room.mode=open --> [1]\n"
              "label : true\n"
              "propagation number : 12\n");
    EXPECT_EQ(printed([&] { mode["closed"]->showAtom(std::cout, true); }),
              "--- Atom n\260# ---\n"
              "room.mode=closed --> [0]\n"
              "label : unknown\n"
              "propagation number : 0\n");
}

}  // namespace
