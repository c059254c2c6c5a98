// What is told of atoms, variables and components whose invariants do not hold.
#include "model/Comprt.h"
#include "model_fixture.h"

using model_fixture::Valued;

namespace {

class AtomInvariants : public testing::Test {
protected:
    Valued<> mode{"c.mode", {"off", "on"}};
};

TEST_F(AtomInvariants, HoldOfNewOnesAndOfThoseThatWereSet) {
    EXPECT_EQ(mode["on"]->brokenInvariant(), nullptr);
    mode["on"]->set();
    EXPECT_EQ(mode["on"]->brokenInvariant(), nullptr);
    EXPECT_EQ(mode["off"]->brokenInvariant(), nullptr);
    EXPECT_EQ(mode.variable.brokenInvariant(), nullptr);
}

TEST_F(AtomInvariants, HoldOfARefusedValue) {
    Atom refused(&mode.variable, "warm", "c.mode=warm");
    EXPECT_EQ(refused.brokenInvariant(), nullptr);
    refused.linkIndex = 0;
    EXPECT_STREQ(refused.brokenInvariant(), "a refused value has a place");
}

TEST_F(AtomInvariants, ALabelIsOneOfThree) {
    mode["on"]->label = "True";
    EXPECT_STREQ(mode["on"]->brokenInvariant(), "the label is none of the three");
}

TEST_F(AtomInvariants, AnAtomStandsAtItsPlace) {
    char const* const astray = "the variable does not hold the atom at its place";
    for (int const place : {-1, 0, 2}) {
        mode["on"]->linkIndex = place;
        EXPECT_STREQ(mode["on"]->brokenInvariant(), astray) << place;
    }
    EXPECT_STREQ(mode.variable.brokenInvariant(),
                 "an atom of the variable does not stand at its place");
}

TEST_F(AtomInvariants, AValueIsInTheDomain) {
    mode["on"]->value = "warm";
    EXPECT_EQ(mode.variable.brokenInvariant(), nullptr);
    EXPECT_STREQ(mode["off"]->getSiblings()[1]->brokenInvariant(),
                 "the value is outside the domain");
}

TEST_F(AtomInvariants, ADefaultIsAValueOfTheVariable) {
    for (char const* wrong : {"c.mode=warm", "c.mode", "d.mode=off", "c.mode=of"}) {
        mode.variable.defaultValue = wrong;
        EXPECT_STREQ(mode.variable.brokenInvariant(), "the default is no value of the variable")
            << wrong;
    }
    mode.variable.defaultValue = "";
    EXPECT_EQ(mode.variable.brokenInvariant(), nullptr) << "there need not be one";
}

// A component as start-up leaves it.
class CompInvariants : public testing::Test {
protected:
    CompInvariants() {
        mode = comp.addStateVar(
            std::make_unique<ModeVar>("c.mode", std::set<std::string>{"off", "on"}, "off", &comp));
        for (char const* value : {"off", "on"}) {
            Atom* atom = comp.newAtom(value, mode, value);
            atom->comps[comp.getName()] = &comp;
        }
        on = mode->getAtomLinks()[1];
        comp.atoms.clear();
        for (Atom* atom : mode->getAtomLinks())
            comp.atoms[atom->getId()] = atom;
    }

    Comp comp{"c"};
    Comp other{"d"};
    ModeVar* mode;
    Atom* on;
};

TEST_F(CompInvariants, Hold) {
    EXPECT_EQ(comp.brokenInvariant(), nullptr);
    EXPECT_EQ(comp.brokenLinks(), nullptr);
}

TEST_F(CompInvariants, AVariableKnowsItsComponent) {
    mode->setComp(&other);
    EXPECT_STREQ(comp.brokenInvariant(), "a variable knows another component");
}

TEST_F(CompInvariants, AVariablesOwnInvariantsHold) {
    on->linkIndex = 0;
    EXPECT_STREQ(comp.brokenInvariant(), "an atom of the variable does not stand at its place");
}

TEST_F(CompInvariants, NoListHoldsANull) {
    comp.neighbours = {&other, nullptr};
    EXPECT_STREQ(comp.brokenInvariant(), "a list of the component holds a null");
    comp.neighbours.clear();
    comp.transitions.push_back(nullptr);
    EXPECT_STREQ(comp.brokenInvariant(), "a list of the component holds a null");
}

TEST_F(CompInvariants, NamesOfVariablesBeginWithTheComponents) {
    for (char const* wrong : {"mode", "cmode", "c", "d.mode"}) {
        mode->setName(wrong);
        EXPECT_STREQ(comp.brokenLinks(),
                     "the name of a variable does not begin with that of the component")
            << wrong;
    }
}

TEST_F(CompInvariants, EveryAtomStandsInTheTable) {
    comp.atoms.erase("c.mode=on");
    EXPECT_STREQ(comp.brokenLinks(), "an atom is missing from the table of the component");
    comp.atoms["c.mode=on"] = mode->getAtomLinks()[0];
    EXPECT_STREQ(comp.brokenLinks(), "an atom is missing from the table of the component");
}

TEST_F(CompInvariants, NothingElseStandsInTheTable) {
    comp.atoms["mode_on"] = on;
    EXPECT_STREQ(comp.brokenLinks(), "the table holds what is no atom of a variable");
}

TEST_F(CompInvariants, AnAtomListsItsComponent) {
    on->comps["c"] = &other;
    EXPECT_STREQ(comp.brokenLinks(), "an atom does not list the component that holds it");
    on->comps.clear();
    EXPECT_STREQ(comp.brokenLinks(), "an atom does not list the component that holds it");
}

}  // namespace
