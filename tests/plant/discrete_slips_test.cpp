// Slips in the discrete side: names, variables, atoms, clauses, transitions, links of a discrete
// plant.
#include <cmath>

#include "model/transitionParts.h"
#include "plant/slip_table.h"
#include "run/compiled_model.h"

using plant_fixture::BuiltPlant;
using plant_fixture::condMapOf;
using plant_fixture::Room;
using plant_fixture::Slip;
using plant_fixture::Texts;

extern CompiledModel const lamp_model;

namespace {

using RoomSlips = std::vector<Slip<Room>>;

struct Lamp : BuiltPlant {
    Lamp() : BuiltPlant(lamp_model.startinit) {}
};

// ---- Names ----

TEST(DiscreteSlips, NamesAndSymbols) {
    plant_fixture::expectTold(RoomSlips{
        {"two symbols are the same",
         [](Room& r) { r.comp("thermostat").symbol = "R1"; },
         {"Components room and thermostat have the same symbol R1: change one."}},
        {"a symbol is missing",
         [](Room& r) { r.comp("thermostat").symbol = ""; },
         {"warning: Component thermostat has no symbol while others have one: give it one."}},
        {"a variable is not named after its component",
         [](Room& r) {
             StateVar* cmdin = r.stateVariable("room.cmdin");
             cmdin->name = "window";
             cmdin->defaultValue = "window=none";
             for (Atom* atom : cmdin->atomLinks)
                 atom->id = "window=" + atom->value;
         },
         {"warning: Variable window belongs to room: begin its name with room and a dot."}},
        {"two variables have one name",
         [](Room& r) {
             StateVar* c1 = r.stateVariable("room.c1");
             c1->name = "room.mode";
             c1->defaultValue = "room.mode=c10";
             CondMap& links = condMapOf(c1);
             links.clear();
             for (Atom* atom : c1->atomLinks)
                 atom->id = "room.mode=" + atom->value;
             links = {{c1->atomLinks[0]->getId(), 6},
                      {c1->atomLinks[1]->getId(), 9},
                      {c1->atomLinks[2]->getId(), 10}};
         },
         {"Two discrete variables are named room.mode: rename one."}},
        {"a value holds a blank",
         [](Room& r) {
             StateVar* cmdin = r.stateVariable("room.cmdin");
             cmdin->values = {"none", "open", "close it"};
             cmdin->atomLinks[2]->value = "close it";
             cmdin->atomLinks[2]->id = "room.cmdin=close it";
         },
         {"warning: Variable room.cmdin cannot be written in a scenario: use no blanks and no = in "
          "its name and its values, and no empty value."}},
    });
}

TEST(DiscreteSlips, ComponentsUnderOtherNames) {
    Comp first("valve"), second("valve"), nameless("");
    string_map<Comp*> components;
    std::vector<std::unique_ptr<Clause>> const clauses;
    components["valve"] = &first;
    components["valve2"] = &second;
    components["x"] = &nameless;
    components["gone"] = nullptr;
    Texts told;
    for (Finding const& finding : checkPlant({components, clauses, nullptr}))
        told.push_back(finding.text);
    std::sort(told.begin(), told.end());
    EXPECT_EQ(told, (Texts{"A component has no name: give it one.",
                           "Two components are named valve: rename one."}));
    first.name = "tap";
    components.clear();
    components["valve"] = &first;
    EXPECT_EQ(checkPlant({components, clauses, nullptr}).at(0).text,
              "Component tap is registered under another name: name it before it is registered.");
}

// ---- Variables and atoms ----

TEST(DiscreteSlips, Defaults) {
    plant_fixture::expectTold(RoomSlips{
        {"the default is outside the domain",
         [](Room& r) { r.stateVariable("room.mode")->currentState = "shut"; },
         {"Variable room.mode begins as \"shut\", which is outside its domain: choose one of "
          "closed, open and unknown."}},
        {"the default was refused, and none is left",
         [](Room& r) { r.stateVariable("room.mode")->defaultValue = ""; },
         {"Variable room.mode begins as closed and has the default \"\": make both the same."}},
        {"the start is in another range than the default",
         [](Room& r) {
             r.stateVariable("room.c1")->defaultValue = "room.c1=c12";
             r.stateVariable("room.c1")->currentState = "c12";
         },
         {"warning: Variable room.c1 begins as c12, where room.x cannot be 4: begin both in one "
          "place."}},
    });
}

TEST(DiscreteSlips, Atoms) {
    plant_fixture::expectTold(RoomSlips{
        {"a value has no atom",
         [](Room& r) { r.stateVariable("room.cmdin")->values.insert("half"); },
         {"Variable room.cmdin has no atom for half: make one."}},
        {"a value was taken out of the domain",
         [](Room& r) { r.stateVariable("room.cmdin")->values.erase("open"); },
         {"Atom room.cmdin=open has a value outside the domain of room.cmdin: choose one of close "
          "and none."}},
        {"an atom has another name",
         [](Room& r) { r.atom("room.cmdin=open")->id = "room.cmdin=opened"; },
         {"Atom room.cmdin=opened is the value open of room.cmdin: name it room.cmdin=open."}},
        {"an atom is not entered in the component",
         [](Room& r) { r.comp("room").atoms.erase("room_cmdin_open"); },
         {"Atom room.cmdin=open is not in the table of room: give every atom a key of its own."}},
        {"an atom does not know its place",
         [](Room& r) { r.atom("room.cmdin=open")->linkIndex = 7; },
         {"Atom room.cmdin=open is listed by room.cmdin and does not know it: make it with the "
          "variable and once."}},
        {"a variable is held by another component",
         [](Room& r) { r.stateVariable("room.cmdin")->comp = &r.comp("thermostat"); },
         {"Variable room.cmdin is held by room and names another component: add it with "
          "addStateVar."}},
        {"a variable is of no kind",
         [](Room& r) { r.stateVariable("room.cmdin")->type = "Comand"; },
         {"warning: Variable room.cmdin has the kind \"Comand\", which is treated as none: make it "
          "a mode, a condition, a command or an observable."}},
        {"a command is not listed",
         [](Room& r) { r.comp("room").commands.clear(); },
         {"warning: Component room does not list room.cmdin among its commands: add it there."}},
        {"a neighbour is none",
         [](Room& r) { r.comp("room").neighbours.push_back(nullptr); },
         {"Component room has a neighbour that is no component of the plant: register it, or take "
          "it out."}},
        {"a component is its own neighbour",
         [](Room& r) { r.comp("room").neighbours.push_back(&r.comp("room")); },
         {"warning: Component room is its own neighbour: take it out."}},
    });
}

TEST(DiscreteSlips, AnAtomOfAValueOutsideTheDomain) {
    Lamp lamp;
    testing::internal::CaptureStdout();
    lamp.comp("lamp").newAtom("lamp_mode_dim", lamp.stateVariable("lamp.mode"), "dim");
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(lamp.findings(),
              (Texts{"Component lamp has under \"lamp_mode_dim\" an atom of no variable: give it a "
                     "value of its variable's domain."}));
}

TEST(DiscreteSlips, TwoAtomsOfOneValue) {
    Lamp lamp;
    lamp.comp("lamp").newAtom("lamp_mode_on2", lamp.stateVariable("lamp.mode"), "on");
    EXPECT_EQ(lamp.findings(), (Texts{"Variable lamp.mode has 2 atoms for on: keep one."}));
}

TEST(DiscreteSlips, ACommandWithoutNone) {
    Lamp lamp;
    lamp.stateVariable("lamp.button")->values = {"off", "press"};
    lamp.stateVariable("lamp.button")->currentState = "off";
    lamp.stateVariable("lamp.button")->defaultValue = "lamp.button=off";
    lamp.atom("lamp.button=none")->value = "off";
    lamp.stateVariable("lamp.button")->atomLinks[0]->id = "lamp.button=off";
    EXPECT_EQ(lamp.findings(), (Texts{"warning: Variable lamp.button is a command without a value "
                                      "none: a command of it can never be over."}));
}

TEST(DiscreteSlips, AVariableWithoutValues) {
    Lamp lamp;
    auto* variable = lamp.comp("lamp").addStateVar(std::make_unique<StateVar>("lamp.light"));
    variable->type = "Observable";
    EXPECT_EQ(lamp.findings(), (Texts{"Variable lamp.light has no values: give it a domain."}));
}

// ---- Clauses ----

TEST(DiscreteSlips, Clauses) {
    plant_fixture::expectTold(RoomSlips{
        {"the choice of a variable is left out",
         [](Room& r) { r.clauses().erase(r.clauses().begin() + 21); },
         {"Variable room.mode is not kept to one value by clauses: call addExclusiveChoice for "
          "it."}},
        {"a clause says nothing at all",
         [](Room& r) { r.clauses().push_back(std::make_unique<Clause>(&r.comp("room"))); },
         {"Clause 23 has no literals, so that it can never hold: add some."}},
        {"a clause is missing",
         [](Room& r) { r.clauses().push_back(nullptr); },
         {"Clause 23 is empty of content: take it out."}},
        {"a clause belongs to no component",
         [](Room& r) {
             r.clauses().push_back(std::make_unique<Clause>(static_cast<Comp*>(nullptr)));
             r.clauses().back()->addAtomRef(r.atom("room.mode=open"), false);
         },
         {"Clause 23 belongs to no component of the plant: name one."}},
        {"a literal without a reference from its atom",
         [](Room& r) {
             r.clauses().push_back(std::make_unique<Clause>(&r.comp("room")));
             r.clauses().back()->addAtom(r.atom("room.mode=open"), true);
         },
         {"Clause 23 names room.mode=open, which does not know it: add literals with "
          "addAtomRef."}},
        {"a clause that always holds",
         [](Room& r) {
             r.clauses().push_back(std::make_unique<Clause>(&r.comp("room")));
             r.clauses().back()->addAtomRef(r.atom("room.mode=open"), true);
             r.clauses().back()->addAtomRef(r.atom("room.mode=open"), false);
         },
         {"warning: Clause 23 says nothing, since it allows room.mode=open and its opposite: take "
          "it out."}},
        {"a literal of no component",
         [](Room& r) {
             r.clauses().push_back(std::make_unique<Clause>(&r.comp("room")));
             r.clauses().back()->addAtom(nullptr, true);
         },
         {"Clause 23 names an atom of no component: use the plant's own atoms."}},
    });
}

// ---- Transitions ----

void setProbability(Room& r, double proba) {
    r.transition("thermostat", 9).proba = proba;
}

TEST(DiscreteSlips, Probabilities) {
    auto const told = [](char const* what) {
        return Texts{"Transition 9 of thermostat has the probability " + std::string(what) +
                     ": give one from 0 to 1."};
    };
    plant_fixture::expectTold(RoomSlips{
        {"above 1", [](Room& r) { setProbability(r, 1.5); }, told("1.5")},
        {"negative", [](Room& r) { setProbability(r, -0.1); }, told("-0.1")},
        {"not a number", [](Room& r) { setProbability(r, std::nan("")); }, told("not a number")},
        {"zero",
         [](Room& r) { setProbability(r, 0.0); },
         {"warning: Transition 9 of thermostat has the probability 0 and can never fire: give it "
          "one."}},
        {"of no kind",
         [](Room& r) { r.transition("thermostat", 9).type = "nominal"; },
         {"Transition 9 of thermostat is of kind \"nominal\": make it Nominal or Fail."}},
    });
}

// A literal added to the guard of transition 9: thermostat on and room.c1=c12.
void demand(Room& r, char const* id, bool sign) {
    r.transition("thermostat", 9).pre->addAtom(r.atom(id), sign);
    r.transition("thermostat", 9).refAtomPre(sign, r.atom(id));
}

TEST(DiscreteSlips, GuardsThatCannotBeMet) {
    plant_fixture::expectTold(RoomSlips{
        {"two values at once",
         [](Room& r) { demand(r, "room.c1=c10", true); },
         {"Transition 9 of thermostat can never fire: its guard asks for room.c1=c10 and "
          "room.c1=c12 at once. Drop a literal."}},
        {"a value and not that value",
         [](Room& r) { demand(r, "room.c1=c12", false); },
         {"Transition 9 of thermostat can never fire: its guard asks for room.c1=c12 and forbids "
          "it. Drop a literal."}},
        {"no value",
         [](Room& r) {
             for (char const* id : {"room.mode=open", "room.mode=closed", "room.mode=unknown"})
                 demand(r, id, false);
         },
         {"Transition 9 of thermostat can never fire: its guard forbids every value of room.mode. "
          "Drop a literal."}},
        {"an unknown operator",
         [](Room& r) { r.transition("thermostat", 9).pre->operat = "xor"; },
         {"Transition 9 of thermostat can never fire: its guard joins literals by \"xor\". Write "
          "and or or."}},
        {"two values of which one will do",
         [](Room& r) {
             demand(r, "room.c1=c10", true);
             r.transition("thermostat", 9).pre->operat = "or";
         },
         {}},
        {"a literal twice",
         [](Room& r) { demand(r, "room.c1=c12", true); },
         {"warning: Transition 9 of thermostat names room.c1=c12 twice in its guard: name it "
          "once."}},
        {"a formula within the guard",
         [](Room& r) {
             r.transition("thermostat", 9).pre->addStateFormula(std::make_unique<StateFormula>());
         },
         {"warning: Transition 9 of thermostat has formulas within its guard, which are not read: "
          "write its literals at the top."}},
    });
}

// A clause added to the room: one of the atoms holds, or does not where a "!" stands before it.
void state(Room& r, std::vector<std::string> const& literals) {
    r.clauses().push_back(std::make_unique<Clause>(&r.comp("room")));
    for (std::string const& literal : literals) {
        bool const negated = literal[0] == '!';
        r.clauses().back()->addAtomRef(r.atom(literal.substr(negated ? 1 : 0)), negated);
    }
}

// Transition 3 of room asks for room.mode=open and room.cmdin=close, transition 9 of thermostat for
// thermostat.mode=on and room.c1=c12.
TEST(DiscreteSlips, GuardsThatClausesForbid) {
    plant_fixture::expectTold(RoomSlips{
        {"by a clause of both literals",
         [](Room& r) {
             state(r, {"!room.mode=open", "!room.cmdin=close"});
         },
         {"Transition 3 of room can never fire: what its guard asks for is forbidden by clause 23. "
          "Drop a literal or change a clause."}},
        // An open window lets the room be cold, and a cold room has no command to close.
        {"by a chain of clauses",
         [](Room& r) {
             state(r, {"!room.mode=open", "room.c1=c10"});
             state(r, {"!room.c1=c10", "room.cmdin=none"});
         },
         {"Transition 3 of room can never fire: what its guard asks for is forbidden by clauses 23 "
          "and 24. Drop a literal or change a clause."}},
        {"by a fact",
         [](Room& r) { state(r, {"!room.cmdin=close"}); },
         {"Transition 3 of room can never fire: what its guard asks for is forbidden by clause 23. "
          "Drop a literal or change a clause."}},
        {"not by a clause that one literal meets",
         [](Room& r) {
             state(r, {"!room.mode=open", "room.cmdin=close"});
         },
         {}},
        {"one of two that will do",
         [](Room& r) {
             state(r, {"!room.mode=open", "!room.mode=open"});
             r.transition("room", 1).pre->operat = "or";
             r.transition("room", 3).pre->operat = "or";
         },
         {"Transition 1 of room can never fire: what its guard asks for is forbidden by clause 23. "
          "Drop a literal or change a clause."}},
        {"both of two of which one would do",
         [](Room& r) {
             state(r, {"!room.cmdin=open"});
             state(r, {"!room.mode=closed"});
             r.transition("room", 2).pre->operat = "or";
             r.transition("room", 4).pre->operat = "or";
         },
         {"Transition 2 of room can never fire: what its guard asks for is forbidden by clause 24. "
          "Drop a literal or change a clause.",
          "Transition 4 of room can never fire: what its guard asks for is forbidden by clauses 23 "
          "and 24. Drop a literal or change a clause."}},
        {"clauses that leave no state",
         [](Room& r) {
             state(r, {"room.mode=open"});
             state(r, {"room.mode=closed"});
         },
         {"No state is possible: clauses 23 and 24 can never hold together. Drop one."}},
    });
}

TEST(DiscreteSlips, GuardsAndEffectsThatAreNotWhole) {
    plant_fixture::expectTold(RoomSlips{
        {"no guard",
         [](Room& r) { r.transition("room", 3).pre.reset(); },
         {"Transition 3 of room has no guard: name the mode that it leaves."}},
        {"no effect",
         [](Room& r) { r.transition("room", 3).post.reset(); },
         {"Transition 3 of room has no effect: name the mode that it leads to."}},
        {"an atom of no component",
         [](Room& r) { r.transition("room", 3).pre->addAtom(nullptr); },
         {"Transition 3 of room names an atom of no component: use the plant's own atoms."}},
        {"no mode in the guard",
         [](Room& r) {
             r.transition("room", 3).modeVar = nullptr;
             r.transition("room", 3).preMode = nullptr;
         },
         {"Transition 3 of room asks for no mode in its guard: begin it with the mode that it "
          "leaves."}},
        {"a mode of another component",
         [](Room& r) { r.stateVariable("thermostat.mode")->comp = &r.comp("room"); },
         []() {
             Texts told = {
                 "Variable thermostat.mode is held by thermostat and names another "
                 "component: add it with addStateVar."};
             for (int i = 0; i < 11; ++i)
                 told.push_back("Transition " + std::to_string(i) +
                                " of thermostat moves thermostat.mode: give it to the component of "
                                "that variable.");
             return told;
         }()},
        {"no mode in the effect",
         [](Room& r) { r.transition("room", 3).postMode = nullptr; },
         {"Transition 3 of room leads to no value of room.mode: name the mode that it leads to."}},
        {"two modes in the effect",
         [](Room& r) {
             r.transition("room", 3).post->addAtom(r.atom("room.mode=unknown"));
             r.transition("room", 3).refAtomPost(r.atom("room.mode=unknown"));
         },
         {"Transition 3 of room leads to room.mode=closed and room.mode=unknown at once: keep "
          "one."}},
        {"an idle transition that moves",
         [](Room& r) { r.transition("room", 3).idle = true; },
         {"warning: Transition 3 of room is idle and leads to room.mode=closed: let it stay, or do "
          "not call it idle."}},
        {"a stay that is not idle",
         [](Room& r) { r.transition("room", 1).idle = false; },
         {"warning: Transition 1 of room stays in room.mode=open and is not idle: call it so."}},
        {"a literal added without a reference",
         [](Room& r) { r.transition("room", 3).pre->addAtom(r.atom("room.c1=c10")); },
         {"Transition 3 of room has room.c1=c10 in its guard, and room.c1=c10 does not know it: "
          "call refAtomPre."}},
        {"a negative literal added without a reference",
         [](Room& r) { r.transition("room", 3).pre->addAtom(r.atom("room.c1=c10"), false); },
         {"Transition 3 of room has room.c1=c10 in its guard, and room.c1=c12 does not know it: "
          "call refAtomPre."}},
        {"an effect without a reference",
         [](Room& r) { r.atom("room.mode=closed")->refTransPost.clear(); },
         {"Transition 2 of room leads to room.mode=closed, which does not know it: call "
          "refAtomPost.",
          "Transition 3 of room leads to room.mode=closed, which does not know it: call "
          "refAtomPost."}},
    });
}

void addMapping(Room& r, char const* target, int expr, s_Condition* guard) {
    auto function = std::make_unique<MapFunc>();
    function->guard = guard;
    function->vars.push_back({target, expr});
    r.transition("room", 3).mapFuncs.push_back(std::move(function));
}

TEST(DiscreteSlips, MappingFunctions) {
    static s_Condition foreign;
    plant_fixture::expectTold(RoomSlips{
        {"a right one",
         [](Room& r) {
             r.rt().mapExprs = {r.rt().aC[0]};
             addMapping(r, "room.x", 0, r.rt().condi[10]);
         },
         {}},
        {"to no variable",
         [](Room& r) {
             r.rt().mapExprs = {r.rt().aC[0]};
             addMapping(r, "room.y", 0, nullptr);
         },
         {"Transition 3 of room maps room.y, which is no variable: name one of dico."}},
        {"by no expression",
         [](Room& r) { addMapping(r, "room.x", 0, nullptr); },
         {"Transition 3 of room maps room.x by expression 0 of 0: add it to mapExprs."}},
        {"under a condition of another plant",
         [](Room& r) {
             r.rt().mapExprs = {r.rt().aC[0]};
             addMapping(r, "room.x", 0, &foreign);
         },
         {"Transition 3 of room has a mapping whose guard is no condition of the plant: use one."}},
        {"by an expression without a value",
         [](Room& r) {
             r.rt().mapExprs = {r.rt().aC[0]->left};
             r.rt().aC[0]->left->gvar->value = s_Objet{};
         },
         {"Constraint 0 of room.x cannot be worked out, since it lacks a value that is a number: "
          "set it.",
          "Mapping expression 0 cannot be worked out, since it lacks a value that is a number: set "
          "it."}},
    });
}

// ---- Without a continuous side ----

TEST(DiscreteSlips, LinksOfADiscretePlant) {
    plant_fixture::expectTold(std::vector<Slip<Lamp>>{
        {"an atom is marked",
         [](Lamp& l) { l.atom("lamp.mode=on")->bridged = true; },
         {"Atom lamp.mode=on leads to a condition in a plant without a continuous side: take the "
          "link out."}},
        {"an atom is linked",
         [](Lamp& l) {
             condMapOf(l.stateVariable("lamp.mode")).insert({l.atom("lamp.mode=on")->getId(), 0});
         },
         {"Atom lamp.mode=on leads to a condition in a plant without a continuous side: take the "
          "link out."}},
        {"a mapping",
         [](Lamp& l) { l.transition("lamp", 0).mapFuncs.push_back(std::make_unique<MapFunc>()); },
         {"Transition 0 of lamp has mapping functions in a plant without a continuous side: drop "
          "them."}},
    });
}

TEST(DiscreteSlips, OnlyMistakesRefuse) {
    Room room;
    EXPECT_FALSE(isRefused(checkPlant(room.parts())));
    room.transition("room", 1).idle = false;
    EXPECT_FALSE(isRefused(checkPlant(room.parts()))) << "a warning alone";
    room.transition("room", 1).proba = 2.0;
    EXPECT_TRUE(isRefused(checkPlant(room.parts())));
}

}  // namespace
