// Variables: domain, default, state, observation and printing of the base class and its kinds.
#include "model/model_fixture.h"

using model_fixture::printed;

namespace {

std::set<std::string> const onOff = {"on", "off"};

TEST(StateVar, WithoutArgumentsHasNothing) {
    StateVar const variable;
    EXPECT_TRUE(variable.getValues().empty());
    EXPECT_EQ(variable.getName(), "");
    EXPECT_EQ(variable.getType(), "");
    EXPECT_EQ(variable.getSymbName(), "");
    EXPECT_EQ(variable.getCurrentState(), "");
    EXPECT_EQ(variable.getDefault(), "");
    EXPECT_EQ(variable.getComp(), nullptr);
    EXPECT_TRUE(variable.getAtomLinks().empty());
    EXPECT_TRUE(variable.clauses.empty());
    EXPECT_EQ(variable.guards, 0);
    EXPECT_FALSE(variable.observable);
    EXPECT_EQ(variable.observation, "");
}

TEST(StateVar, WithANameHasNoDomainAndNoObservation) {
    StateVar const variable("room.mode");
    EXPECT_EQ(variable.getName(), "room.mode");
    EXPECT_STREQ(variable.getCharName(), "room.mode");
    EXPECT_TRUE(variable.getValues().empty());
    EXPECT_EQ(variable.getDefault(), "");
    EXPECT_FALSE(variable.observable);
    EXPECT_EQ(variable.observation, "");
}

TEST(StateVar, WithADomainHasNoDefault) {
    StateVar const variable("room.mode", onOff);
    EXPECT_EQ(variable.getValues(), onOff);
    EXPECT_EQ(variable.getDefault(), "");
    EXPECT_FALSE(variable.observable);
}

TEST(StateVar, DefaultCarriesTheAtomIdAndTheStateTheBareValue) {
    StateVar const variable("thermostat.mode", onOff, "off");
    EXPECT_EQ(variable.getDefault(), "thermostat.mode=off");
    EXPECT_EQ(variable.getCurrentState(), "off");
}

TEST(StateVar, TakesComponentAndObservable) {
    Comp comp("room");
    StateVar const plain("room.mode", onOff, "on", &comp);
    EXPECT_EQ(plain.getComp(), &comp);
    EXPECT_EQ(plain.getType(), "");
    EXPECT_FALSE(plain.observable);
    StateVar const observed("room.mode", onOff, "on", &comp, true);
    EXPECT_EQ(observed.getComp(), &comp);
    EXPECT_TRUE(observed.observable);
    StateVar const unobserved("room.mode", onOff, "on", &comp, false);
    EXPECT_FALSE(unobserved.observable);
}

TEST(StateVar, AccessorsGiveBackWhatWasSet) {
    Comp comp("room");
    StateVar variable;
    variable.setName("room.door");
    variable.setSymbName("door");
    variable.setComp(&comp);
    variable.setCurrentState("ajar");
    EXPECT_EQ(variable.getName(), "room.door");
    EXPECT_EQ(variable.getSymbName(), "door");
    EXPECT_EQ(variable.getComp(), &comp);
    EXPECT_EQ(variable.getCurrentState(), "ajar");
}

TEST(StateVar, DomainIsHandedOutAsACopy) {
    StateVar variable("v", onOff);
    variable.getValues().insert("broken");
    EXPECT_FALSE(variable.inValues("broken"));
    variable.addValue("broken");
    EXPECT_TRUE(variable.inValues("broken"));
    variable.setValues({"x"});
    EXPECT_EQ(variable.getValues(), std::set<std::string>{"x"});
}

TEST(StateVar, MembershipOfTheDomain) {
    StateVar const variable("v", onOff);
    EXPECT_TRUE(variable.inValues("on"));
    EXPECT_TRUE(variable.inValues("off"));
    EXPECT_FALSE(variable.inValues("of"));
    EXPECT_FALSE(variable.inValues(""));
    EXPECT_EQ(variable.getValues(), onOff) << "asking for a value must not add it";
}

TEST(StateVar, EmptyDomainHoldsNoValueNotEvenTheEmptyOne) {
    StateVar const variable;
    EXPECT_FALSE(variable.inValues(""));
    EXPECT_FALSE(variable.inValues("on"));
}

TEST(StateVar, EmptyStringIsAMemberWhenTheDomainHoldsIt) {
    StateVar const variable("v", {""});
    EXPECT_TRUE(variable.inValues(""));
}

TEST(StateVar, WrongDefaultIsToldWithoutLineEndAndKeepsTheOldOne) {
    StateVar variable("v", onOff, "off");
    variable.setDefault("broken");
    EXPECT_EQ(variable.complaints, "StateVar --> Wrong default value");
    EXPECT_EQ(variable.getDefault(), "v=off");
    variable.setDefault("on");
    EXPECT_EQ(variable.complaints, "StateVar --> Wrong default value");
    EXPECT_EQ(variable.getDefault(), "v=on");
    EXPECT_EQ(variable.getCurrentState(), "off") << "the default does not move the state";
}

TEST(StateVar, ConstructorStoresAWrongDefaultAsTheStateAllTheSame) {
    std::unique_ptr<StateVar> variable;
    variable = std::make_unique<StateVar>("v", onOff, "broken");
    EXPECT_EQ(variable->complaints, "StateVar --> Wrong default value");
    EXPECT_EQ(variable->getDefault(), "");
    EXPECT_EQ(variable->getCurrentState(), "broken");
}

TEST(StateVar, AtomsAreLinkedInOrderAndNumberedFromZero) {
    StateVar owner("v", onOff);
    Atom on(&owner, "on", "v=on");
    Atom off(&owner, "off", "v=off");
    StateVar other;
    EXPECT_EQ(other.addAtomToLinks(&off), 0);
    EXPECT_EQ(other.addAtomToLinks(&on), 1);
    EXPECT_EQ(other.getAtomLinks(), (std::vector<Atom*>{&off, &on}));
}

// All cases of: observable or not, with no observation, an agreeing one, a contradicting one.
TEST(StateVar, MatchesUnlessAnObservationContradictsTheState) {
    StateVar variable("v", onOff, "on");
    for (bool const observable : {false, true})
        for (std::string const observation : {"", "on", "off"}) {
            variable.observable = observable;
            variable.observation = observation;
            bool const contradicted = observable && observation == "off";
            EXPECT_EQ(variable.matchObs(), !contradicted) << observable << " " << observation;
        }
}

TEST(StateVar, ShowsValuesInStringOrder) {
    ModeVar const variable("room.mode", {"open", "closed", "unknown"}, "open", nullptr);
    EXPECT_EQ(printed([&] { variable.showValues(std::cout); }),
              "\t\troom.mode\n"
              "\t\tType: Mode\n"
              "\t\tValues: \n"
              "\t\t{ closed  open  unknown  }\n"
              "\n");
}

TEST(StateVar, ShowsAnEmptyDomain) {
    StateVar const variable("v");
    EXPECT_EQ(printed([&] { variable.showValues(std::cout); }),
              "\t\tv\n\t\tType: \n\t\tValues: \n\t\t{ }\n\n");
}

TEST(StateVar, ShowsTheCurrentState) {
    StateVar const variable("room.mode", onOff, "off");
    EXPECT_EQ(printed([&] { variable.showCurrentState(std::cout); }), "room.mode --->\t\t off\n");
}

TEST(ModeVar, TellsItsKindInEveryForm) {
    Comp comp("c");
    ModeVar const empty;
    ModeVar const plain("c.m", onOff, "on", &comp);
    ModeVar const observed("c.m", onOff, "on", &comp, true);
    for (ModeVar const* variable : {&empty, &plain, &observed}) {
        EXPECT_EQ(variable->getType(), "Mode");
        EXPECT_EQ(variable->guards, 0);
        EXPECT_TRUE(variable->condMap.empty());
    }
    EXPECT_EQ(plain.getDefault(), "c.m=on");
    EXPECT_EQ(plain.getCurrentState(), "on");
    EXPECT_EQ(plain.getComp(), &comp);
    EXPECT_FALSE(plain.observable);
    EXPECT_EQ(observed.getComp(), &comp);
    EXPECT_TRUE(observed.observable);
}

TEST(CondVar, TellsItsKindInEveryForm) {
    Comp comp("c");
    CondVar const empty;
    CondVar const plain("c.x", onOff, "on", &comp);
    CondVar const observed("c.x", onOff, "on", &comp, true);
    for (CondVar const* variable : {&empty, &plain, &observed}) {
        EXPECT_EQ(variable->getType(), "Cond");
        EXPECT_EQ(variable->guards, 0);
        EXPECT_TRUE(variable->condMap.empty());
    }
    EXPECT_EQ(plain.getDefault(), "c.x=on");
    EXPECT_EQ(plain.getComp(), &comp);
    EXPECT_EQ(observed.getCurrentState(), "on");
    EXPECT_EQ(observed.getComp(), &comp);
}

TEST(CondVar, IsNeverObservableWhateverItWasBuiltWith) {
    CondVar variable("c.x", onOff, "on", nullptr, true);
    EXPECT_FALSE(variable.observable);
    variable.observation = "off";
    EXPECT_TRUE(variable.matchObs());
    variable.setCurrentState("off");
    EXPECT_TRUE(variable.matchObs());
}

TEST(CommandVar, TellsItsKindInEveryForm) {
    Comp comp("c");
    CommandVar const empty;
    CommandVar const loose("c.cmd", onOff, "on");
    CommandVar const plain("c.cmd", onOff, "on", &comp);
    CommandVar const observed("c.cmd", onOff, "on", &comp, true);
    for (CommandVar const* variable : {&empty, &loose, &plain, &observed}) {
        EXPECT_EQ(variable->getType(), "Command");
        EXPECT_EQ(variable->guards, 0);
        EXPECT_FALSE(variable->forbidden);
    }
    EXPECT_EQ(loose.getComp(), nullptr);
    EXPECT_EQ(loose.getDefault(), "c.cmd=on");
    EXPECT_EQ(loose.getCurrentState(), "on");
    EXPECT_EQ(plain.getComp(), &comp);
    EXPECT_FALSE(plain.observable);
    EXPECT_EQ(observed.getComp(), &comp);
    EXPECT_TRUE(observed.observable);
}

TEST(CondMap, KeysOfEqualTextButDifferentPointersAreDifferent) {
    char const first[] = "c.m=on";
    char const second[] = "c.m=on";
    CondMap map;
    map.insert({first, 3});
    map.insert({second, 4});
    map.insert({first, 5});
    EXPECT_EQ(map.count(first), 2u);
    ASSERT_EQ(map.count(second), 1u);
    EXPECT_EQ(map.find(second)->second, 4);
}

TEST(CondMap, IsLookedUpThroughTheAtomsOwnId) {
    model_fixture::Valued<> mode("c.m", {"on", "off"});
    mode.variable.condMap.insert({mode["on"]->getId(), 7});
    ASSERT_EQ(mode.variable.condMap.count(mode["on"]->getId()), 1u);
    EXPECT_EQ(mode.variable.condMap.find(mode["on"]->getId())->second, 7);
    EXPECT_EQ(mode.variable.condMap.count(mode["off"]->getId()), 0u);
}

}  // namespace
