// Slips in the continuous side of the room: lists, values, influences, the graph, the order of
// updates, first values.
#include <cfloat>
#include <cmath>

#include "continuous/model_parts.h"
#include "plant/slip_table.h"

using plant_fixture::Room;
using plant_fixture::Slip;
using plant_fixture::Texts;

namespace {

using RoomSlips = std::vector<Slip<Room>>;

// ---- References ----

TEST(ContinuousSlips, References) {
    static s_Variable foreign;
    static s_Influence foreignInfluence;
    plant_fixture::expectTold(RoomSlips{
        {"an empty place in a pool",
         [](Room& r) { r.rt().dico[9].reset(); },
         {"Entry 9 of dico is null: put the record in, or leave it out."}},
        {"a pool in another order than its slots",
         [](Room& r) { std::swap(r.rt().influ[3], r.rt().influ[4]); },
         {"Entry 3 of influ has the slot 4: arrange the pool.",
          "Entry 4 of influ has the slot 3: arrange the pool."}},
        {"a null in a list",
         [](Room& r) { r.rt().display[1] = nullptr; },
         {"Entry 1 of display is null: name a record of this one."}},
        {"a variable of another runtime",
         [](Room& r) { r.rt().measure[0] = &foreign; },
         {"Entry 0 of measure is of another runtime: name a record of this one."}},
        {"an initial value of no variable",
         [](Room& r) { r.rt().init[0].var = nullptr; },
         {"Entry 0 of init names no variable of this runtime: name the one that it is for."}},
        {"a cause of another runtime",
         [](Room& r) { r.influence("R1.i1")->cause = &foreign; },
         {"Influence R1.i1 refers to a record of another runtime: use those of its own."}},
        {"an influence of another runtime in a node",
         [](Room& r) { r.rt().cG[2]->effects[0] = &foreignInfluence; },
         {"Entry 2 of cG refers to an influence of another runtime: use those of its own."}},
        {"a condition on an atom of another plant",
         [](Room& r) {
             static StateVar other("o.v", {"a"}, "a");
             static Atom atom(&other, "a", "o.v=a");
             r.rt().condPool[9]->atom = &atom;
         },
         {"Entry 9 of condPool names an atom of no component: use the plant's own atoms."}},
        {"a condition that is its own operand",
         [](Room& r) { r.rt().condi[9]->left = r.rt().condi[9]; },
         {"Entry 3 of condPool is an operand of itself: give it other operands."}},
        {"an expression that is its own operand",
         [](Room& r) { r.rt().aC[0]->right = r.rt().aC[0]; },
         {"Entry 2 of exprPool is an operand of itself: give it other operands."}},
    });
}

// ---- Names, lists, arrays ----

TEST(ContinuousSlips, NamesOfRecords) {
    plant_fixture::expectTold(RoomSlips{
        {"a name twice",
         [](Room& r) { r.variable("room.m")->nom = "room.M"; },
         {"Two continuous variables are named room.M: rename one."}},
        {"no name",
         [](Room& r) { r.variable("room.m")->nom = ""; },
         {"Variable 7 of dico has no name: give it one."}},
        {"an influence twice",
         [](Room& r) { r.influence("R1.i4")->nom = "R1.i5"; },
         {"Two influences are named R1.i5: rename one."}},
        {"influences without names",
         [](Room& r) { r.influence("R1.i4")->nom = r.influence("R1.i5")->nom = ""; },
         {}},
    });
}

TEST(ContinuousSlips, Lists) {
    plant_fixture::expectTold(RoomSlips{
        {"displayed twice",
         [](Room& r) {
             r.rt().display.push_back(r.variable("room.x"));
             sizeArrays(r.rt());
         },
         {"warning: Variable room.x stands twice in display: name it once."}},
        {"measured twice",
         [](Room& r) {
             r.rt().measure.push_back(r.variable("room.xd"));
             sizeArrays(r.rt());
         },
         {"Variable room.xd stands twice in measure: name it once."}},
        {"updated in both lists",
         [](Room& r) { r.rt().untemporal.push_back(r.variable("room.x")); },
         {"Variable room.x stands in temporal and in untemporal: name it in one."}},
        {"a parameter is updated",
         [](Room& r) { r.rt().untemporal.push_back(r.variable("room.un")); },
         {"Parameter room.un is among the variables that are updated: take it out."}},
        {"a parameter is an input",
         [](Room& r) { r.rt().input.push_back(r.variable("room.un")); },
         {"Parameter room.un is an input: make it a variable."}},
        {"an input is updated",
         [](Room& r) { r.rt().input.push_back(r.variable("room.xdq")); },
         {"Variable room.xdq is an input and is updated as well: take it out of one list."}},
        {"an array is too short",
         [](Room& r) { r.rt().dsupval.clear(); },
         {"Array dsupval has 0 entries for the 2 of display: call sizeArrays when all lists are "
          "set."}},
        {"no sample period",
         [](Room& r) { r.rt().Ts = std::nan(""); },
         {"The sample period is not above 0: give it in seconds."}},
        {"no window",
         [](Room& r) { r.rt().twc = 0; },
         {"The window is shorter than a cycle: give the number of cycles."}},
        {"no name",
         [](Room& r) { r.rt().name = ""; },
         {"warning: The runtime has no name: give it that of the model."}},
    });
}

// ---- Values ----

TEST(ContinuousSlips, ValuesAndHistories) {
    plant_fixture::expectTold(RoomSlips{
        {"a parameter without a value",
         [](Room& r) { r.variable("room.m")->old = s_Objet{}; },
         {"Parameter room.m has no value: give it one."}},
        {"a parameter that is no number",
         [](Room& r) { r.variable("room.m")->old = makeReal(std::nan("")); },
         {"Parameter room.m has no value: give it one."}},
        {"a parameter outside its domain",
         [](Room& r) { r.variable("room.m")->domain = makeRange(10.0, 30.0, 0, 1); },
         {"The value 10 of parameter room.m is outside its domain ]10, 30]: move one of them."}},
        {"a parameter in its domain",
         [](Room& r) { r.variable("room.m")->domain = makeRange(10.0, 30.0, 1, 1); },
         {}},
        {"a parameter with a domain that is none",
         [](Room& r) { r.variable("room.m")->domain = makeRange(30.0, 10.0, 1, 1); },
         {"Parameter room.m has no domain: give it the bounds within which it can lie."}},
        {"a variable without a domain",
         [](Room& r) { r.variable("room.xd")->domain.reset(); },
         {"Variable room.xd has no domain: give it the bounds within which it can lie."}},
        {"an empty domain",
         [](Room& r) { r.variable("room.xd")->domain = makeRange(1.0, 1.0, 1, 0); },
         {"Variable room.xd has no domain: give it the bounds within which it can lie."}},
        {"a short history of the measures",
         [](Room& r) { r.variable("room.xd")->mesHisto = History<s_Objet>(2); },
         {"Variable room.xd has histories of different lengths: make all four as long."}},
        {"no cycle more for the delay",
         [](Room& r) {
             s_Variable* x = r.variable("room.x");
             x->histo = x->mesHisto = History<s_Objet>(300);
             x->lowHisto = x->highHisto = History<int>(300);
         },
         {"warning: Variable room.x has a history of 300 cycles, where the window and the longest "
          "delay take 301: make it as long."}},
    });
}

TEST(ContinuousSlips, InitialValues) {
    plant_fixture::expectTold(RoomSlips{
        {"taken away",
         [](Room& r) { r.rt().init.clear(); },
         {"Variable room.x is integrated and has no initial value: give it one."}},
        {"taken away where the integral is measured",
         [](Room& r) {
             r.rt().init.clear();
             r.rt().measure.push_back(r.variable("room.x"));
             sizeArrays(r.rt());
         },
         {}},
        {"two of them",
         [](Room& r) { r.rt().init.push_back(r.rt().init[0]); },
         {"Variable room.x has two initial values: keep one."}},
        {"of a parameter",
         [](Room& r) {
             r.rt().init.push_back({r.variable("room.un"), makeReal(2.0)});
         },
         {"Parameter room.un has an initial value beside its own: take one of them out."}},
        {"no value",
         [](Room& r) { r.rt().init[0].value = makeReal(std::nan("")); },
         {"The initial value of room.x is no value: give a number or an interval."}},
        {"outside the domain",
         [](Room& r) {
             r.rt().init[0].value = makeReal(-1.5);
             r.variable("room.x")->domain = makeRange(0.0, 30.0, 1, 1);
         },
         {"The initial value -1.5 of room.x is outside its domain [0, 30]: move one of them."}},
        {"of a loop of static variables",
         [](Room& r) {
             // The measured rate breaks the loop through the integral; here it is not measured, and
             // the temperature follows it at once.
             r.rt().measure.clear();
             r.rt().init.clear();
             r.influence("R1.i2")->type = INF_STATIC;
             r.influence("R1.i2")->delayMin = r.influence("R1.i2")->delayMax = 1;
             r.variable("room.x")->graph->kind = INF_STATIC;
             sizeArrays(r.rt());
             s_Variable* xd = r.variable("room.xd");
             xd->histo = xd->mesHisto = History<s_Objet>(301);
             xd->lowHisto = xd->highHisto = History<int>(301);
         },
         {"The first value of room.xd depends on itself: give it an initial value.",
          "The first value of room.x depends on itself: give it an initial value.",
          "The first value of room.xdq depends on itself: give it an initial value."}},
    });
}

// ---- Influences ----

TEST(ContinuousSlips, EndsOfInfluences) {
    plant_fixture::expectTold(RoomSlips{
        {"no cause",
         [](Room& r) { r.influence("R1.i3")->cause = nullptr; },
         {"Influence R1.i3 has no cause: name the variable that it starts in.",
          "Influence R1.i3 stands among the effects of room.un, where it does not belong: take it "
          "out."}},
        {"no effect",
         [](Room& r) { r.influence("R1.i3")->effect = nullptr; },
         {"Influence R1.i3 has no effect: name the variable that it ends in.",
          "Influence R1.i3 stands among the causes of room.xd, where it does not belong: take it "
          "out."}},
        {"a parameter as effect",
         [](Room& r) { r.influence("R1.i3")->effect = r.variable("room.xext"); },
         {"Influence R1.i3 ends in the parameter room.xext: let it end in a variable.",
          "Influence R1.i3 stands among the causes of room.xd, where it does not belong: take it "
          "out.",
          "Influence R1.i3 is not among the causes of room.xext: enter it in the graph node."}},
        {"no gain",
         [](Room& r) { r.influence("R1.i3")->gain = s_Objet{}; },
         {"Influence R1.i3 has no gain: give it a number or an interval."}},
        {"no kind",
         [](Room& r) { r.influence("T1.i1")->type = static_cast<influType>(0); },
         {"Influence T1.i1 is of no kind: choose one.",
          "Variable room.xdq has causes of different kinds: give it causes of one, or static ones "
          "and couplings."}},
        {"too few past conditions",
         [](Room& r) { r.influence("R1.i2")->condHisto = {1}; },
         {"Influence R1.i2 keeps 1 past values of its condition and says 2: make both the same."}},
        {"a memory that ends before a fault shows",
         [](Room& r) {
             r.influence("R1.i2")->condHistoLn = 1;
             r.influence("R1.i2")->condHisto = {1};
         },
         {"Influence R1.i2 keeps 1 past values of its condition, where the isolation of faults "
          "asks "
          "for 2: keep as many."}},
        {"a memory of length 0, which holds one value",
         [](Room& r) { r.influence("R1.i3")->condHistoLn = 0; },
         {}},
        {"a gain that ends before it begins",
         [](Room& r) { r.influence("R1.i3")->gain = makeRange(2.0, 1.0, 1, 1); },
         {"Influence R1.i3 has no gain: give it a number or an interval."}},
        {"a gain without any value",
         [](Room& r) { r.influence("R1.i3")->gain = makeRange(1.0, 1.0, 1, 0); },
         {"Influence R1.i3 has no gain: give it a number or an interval."}},
        {"listed by no component",
         [](Room& r) { r.comp("thermostat").influences.clear(); },
         {"warning: Influence T1.i1 is listed by no component: add it to the one that it belongs "
          "to."}},
        {"listed and not in the runtime",
         [](Room& r) { r.comp("thermostat").influences.push_back(nullptr); },
         {"Component thermostat lists an influence that is not in the runtime: take it out."}},
    });
}

void setDelay(Room& r, char const* nom, int lo, int hi) {
    r.influence(nom)->delayMin = lo;
    r.influence(nom)->delayMax = hi;
}

// The history of room.xd spans the window of 300 and no more.
TEST(ContinuousSlips, Delays) {
    auto const longer = [](char const* nom, int cycles) {
        return "warning: Variable " + std::string(nom) +
               " has a history of 300 cycles, where the window and the longest delay take " +
               std::to_string(cycles) + ": make it as long.";
    };
    // What is upstream of a later cause is seen later.
    auto const forgets = [](char const* nom, int kept, int asked) {
        return "Influence " + std::string(nom) + " keeps " + std::to_string(kept) +
               " past values of its condition, where the isolation of faults asks for " +
               std::to_string(asked) + ": keep as many.";
    };
    plant_fixture::expectTold(RoomSlips{
        {"behind the history",
         [](Room& r) { setDelay(r, "R1.i2", 301, 301); },
         {longer("room.xd", 601),
          "Influence R1.i2 has a delay of 301 to 301 cycles, and the history of room.xd holds 300: "
          "lengthen the history or shorten the delay."}},
        {"at its last entry",
         [](Room& r) { setDelay(r, "R1.i2", 300, 300); },
         {longer("room.xd", 600)}},
        {"negative",
         [](Room& r) { setDelay(r, "R1.i2", -1, 0); },
         {"Influence R1.i2 has a delay of -1 to 0 cycles: begin at 0 or later, and end no "
          "earlier."}},
        {"ending before it begins",
         [](Room& r) { setDelay(r, "R1.i2", 3, 2); },
         {longer("room.xd", 302),
          "Influence R1.i2 has a delay of 3 to 2 cycles: begin at 0 or "
          "later, and end no earlier."}},
        {"a range from this cycle",
         [](Room& r) { setDelay(r, "R1.i2", 0, 2); },
         {longer("room.xd", 302),
          "Influence R1.i2 has a delay of 0 to 2 cycles, and only past values have a range: begin "
          "at 1 or later."}},
        {"a static range from the cycle before",
         [](Room& r) { setDelay(r, "R1.i4", 1, 2); },
         {longer("room.xdq", 302), forgets("T1.i1", 1, 3), forgets("R1.i1", 1, 3),
          forgets("R1.i2", 2, 4),
          "Influence R1.i4 has a delay of 1 to 2 cycles, and only past values have a range: begin "
          "at 2 or later.",
          forgets("R1.i6", 1, 3)}},
        {"of a parameter",
         [](Room& r) { setDelay(r, "T1.i1", 1, 1); },
         {"Influence T1.i1 has a delay of 1 to 1 cycles, and the parameter thermostat.h has no "
          "past: take the delay out."}},
        {"of a parameter, static",
         [](Room& r) { setDelay(r, "R1.i3", 2, 2); },
         {"Influence R1.i3 has a delay of 2 to 2 cycles, and the parameter room.un has no past: "
          "take the delay out."}},
    });
}

// The integral made a dynamic link of the other two kinds.
void makeKind(Room& r, influType kind) {
    r.influence("R1.i2")->type = kind;
    r.variable("room.x")->graph->kind = kind;
}

TEST(ContinuousSlips, CoefficientsOfDynamicInfluences) {
    Texts const noResponse = {
        "Influence R1.i2 is dynamic and has no response time above 0: give "
        "it one, in seconds."};
    Texts const incomplete = {
        "Influence R1.i2 is of second order and lacks coefficients: give it "
        "xi and w, or n1, n2, d0, d1 and d2."};
    plant_fixture::expectTold(RoomSlips{
        {"a response time of 0", [](Room& r) { makeKind(r, INF_DYNAMIC); }, noResponse},
        {"a response time that may be 0",
         [](Room& r) {
             makeKind(r, INF_DYNAMIC);
             r.influence("R1.i2")->respTime = makeRange(0.0, 2.0, 1, 1);
         },
         noResponse},
        {"a response time",
         [](Room& r) {
             makeKind(r, INF_DYNAMIC);
             r.influence("R1.i2")->respTime = makeReal(2.0);
         },
         {}},
        {"second order without any", [](Room& r) { makeKind(r, INF_DYNAMIC2); }, incomplete},
        {"second order with half of them",
         [](Room& r) {
             makeKind(r, INF_DYNAMIC2);
             r.influence("R1.i2")->n1 = makeReal(1.0);
             r.influence("R1.i2")->xi = r.influence("R1.i2")->w = makeReal(1.0);
         },
         incomplete},
        {"second order with damping and frequency",
         [](Room& r) {
             makeKind(r, INF_DYNAMIC2);
             r.influence("R1.i2")->xi = r.influence("R1.i2")->w = makeReal(1.0);
         },
         {}},
    });
}

// ---- Graph ----

TEST(ContinuousSlips, Graph) {
    plant_fixture::expectTold(RoomSlips{
        {"a cause left open",
         [](Room& r) { r.rt().cG[3]->causes[0] = nullptr; },
         {"Variable room.xdq has an open place among its causes: name the influence.",
          "Influence T1.i1 is not among the causes of room.xdq: enter it in the graph node."}},
        {"an effect left out",
         [](Room& r) { r.rt().cG[2]->effects.clear(); },
         {"Influence R1.i6 is not among the effects of room.x: enter it in the graph node."}},
        {"a cause entered twice",
         [](Room& r) { r.rt().cG[2]->causes.push_back(r.influence("R1.i2")); },
         {"Influence R1.i2 stands 2 times among the causes of room.x: enter it once."}},
        {"a cause of another variable",
         [](Room& r) { r.rt().cG[1]->causes.push_back(r.influence("R1.i6")); },
         {"Influence R1.i6 stands among the causes of room.xd, where it does not belong: take it "
          "out."}},
        {"causes of two kinds", [](Room& r) { r.influence("R1.i4")->type = INF_COUPLING; }, {}},
        {"causes of two kinds that do not go together",
         [](Room& r) { r.influence("R1.i4")->type = INF_INTEGRAL; },
         {"Variable room.xd has causes of different kinds: give it causes of one, or static ones "
          "and couplings."}},
        {"a node of another kind",
         [](Room& r) { r.rt().cG[1]->kind = INF_COUPLING; },
         {"Variable room.xd is not worked out by the kind of its causes: give its graph node "
          "theirs."}},
        {"a node of no variable",
         [](Room& r) {
             s_Variable loose;
             mkGraph(r.rt(), &loose, INF_STATIC, {}, {});
         },
         {"Entry 6 of cG is the node of no variable: give it to one."}},
        {"a node of two variables",
         [](Room& r) { r.variable("room.Qc")->graph = r.variable("room.un")->graph; },
         {"Influence R1.i3 stands among the effects of room.Qc, where it does not belong: take it "
          "out.",
          "Parameter room.un shares its graph node with another variable: give it its own."}},
    });
}

// ---- Order of updates ----

TEST(ContinuousSlips, Updates) {
    plant_fixture::expectTold(RoomSlips{
        {"an effect before its cause",
         [](Room& r) { std::swap(r.rt().untemporal[0], r.rt().untemporal[1]); },
         {"Influence R1.i4 reads room.xdq before it is updated: update room.xdq before room.xd.",
          "Influence R1.i5 reads room.xdq before it is updated: update room.xdq before room.xd."}},
        {"a variable that is never updated",
         [](Room& r) { r.rt().temporal.clear(); },
         {"Variable room.x has causes and is never updated: name it in temporal or in "
          "untemporal."}},
        {"an integral after the measures",
         [](Room& r) {
             r.rt().temporal.clear();
             r.rt().untemporal.push_back(r.variable("room.x"));
         },
         {"warning: Variable room.x follows from the cycle before and is updated after the "
          "measures "
          "of this one came in: name it in temporal."}},
        {"a loop without delay",
         [](Room& r) {
             s_Influence* back =
                 mkInfluence(r.rt(), "R1.i7", INF_STATIC, r.variable("room.xd"),
                             r.variable("room.xdq"), nullptr, 1, makeReal(0.5), 0, 0);
             r.comp("room").addInfluence(back);
             r.variable("room.xd")->graph->effects.push_back(back);
             r.variable("room.xdq")->graph->causes.push_back(back);
             sizeArrays(r.rt());
         },
         {"Influence R1.i7 closes a loop without delay from room.xdq to itself: give one of its "
          "influences a delay."}},
        {"an update without causes",
         [](Room& r) {
             s_Variable* idle = mkVariable(r.rt(), "room.idle", 300);
             r.rt().untemporal.push_back(idle);
         },
         {"warning: Variable room.idle has no causes, is no input and is not measured, so that it "
          "has no value: make it a parameter, or give it a cause.",
          "warning: Variable room.idle is among the variables that are updated and has no causes: "
          "take it out."}},
        {"a display without causes",
         [](Room& r) {
             r.rt().display.push_back(mkVariable(r.rt(), "room.idle", 300));
             sizeArrays(r.rt());
         },
         {"Variable room.idle has no causes, is no input and is not measured, so that it has no "
          "value: make it a parameter, or give it a cause."}},
        {"an input without causes",
         [](Room& r) { r.rt().input.push_back(mkVariable(r.rt(), "room.idle", 300)); },
         {}},
    });
}

}  // namespace
