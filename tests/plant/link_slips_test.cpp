// Slips in what ties both sides together: conditions, constraints, thresholds, links.
#include <cmath>

#include "continuous/model_parts.h"
#include "continuous/sorn-runt.h"
#include "plant/slip_table.h"
#include "run/compiled_model.h"

using plant_fixture::BuiltPlant;
using plant_fixture::condMapOf;
using plant_fixture::Room;
using plant_fixture::Slip;
using plant_fixture::Texts;

extern CompiledModel const gauge_model;

namespace {

using RoomSlips = std::vector<Slip<Room>>;

// ---- Conditions ----

// The condition of R1.i1 made another: of that kind, with nothing set but what *set* does.
void conditionOfI1(Room& r, int kind, std::function<void(s_Condition&)> const& set) {
    s_Condition& condition = *r.rt().condi[14];
    condition.kind = kind;
    condition.left = condition.right = nullptr;
    set(condition);
}

TEST(LinkSlips, OperandsOfConditions) {
    plant_fixture::expectTold(RoomSlips{
        {"no left operand",
         [](Room& r) { r.rt().condi[14]->left = nullptr; },
         {"Condition 14 has no left operand: set it."}},
        {"no right operand",
         [](Room& r) { r.rt().condi[14]->right = nullptr; },
         {"Condition 14 has no right operand: set it."}},
        {"no atom",
         [](Room& r) { r.rt().condi[5]->left->atom = nullptr; },
         {"The left operand of condition 5 is on no atom: name one."}},
        {"no variable",
         [](Room& r) { r.rt().condi[10]->var = nullptr; },
         {"Condition 10 (room.c1=c10) compares no variable: name one."}},
        {"no relation",
         [](Room& r) { r.rt().condi[10]->op = 9; },
         {"Condition 10 (room.c1=c10) compares by no relation: choose one."}},
        {"the other relation",
         [](Room& r) { r.rt().condi[7]->op = REL_LT; },
         {"warning: Condition 7 is written the other way round than its constraint, which alone is "
          "read: make both say the same."}},
        {"another variable than its constraint",
         [](Room& r) { r.rt().condi[10]->var = r.variable("room.xd"); },
         {"Condition 10 (room.c1=c10) compares room.xd by a constraint of room.x: make both the "
          "same."}},
        {"no constraint",
         [](Room& r) { r.rt().condi[7]->expr = nullptr; },
         {"Condition 7 compares by no constraint: name one."}},
        {"an expression that is no constraint of the runtime",
         [](Room& r) {
             // The same threshold as aC 3, which stays for condition 6.
             s_Condition* second =
                 mkExprCond(r.rt(), r.variable("room.x"), REL_GE,
                            mkSpace(r.rt(), r.rt().gV[0], 17.0, r.rt().aC[3]->right->gvar->value),
                            3, nullptr, 0);
             r.influence("R1.i1")->cond = second;
             r.rt().condi[14] = second;
             r.rt().condPool[8]->left = r.rt().condPool[8]->right = nullptr;
             r.rt().condPool[8]->kind = COND_CONST;
         },
         {"warning: Entry 8 of condPool is used by nothing: number it, or take it out.",
          "Condition 14 compares by an expression that is not in aC: add it."}},
        {"another constraint by number",
         [](Room& r) { r.rt().condi[10]->acIdx = {2}; },
         {"warning: Constraint 0 of room.x is behind no condition: name it in one, or take it out.",
          "Condition 10 (room.c1=c10) does not lead to its constraint, which is number 0 of aC: "
          "write it in acIdx."}},
        {"no kind",
         [](Room& r) { conditionOfI1(r, 0, [](s_Condition&) {}); },
         {"Condition 14 is of no kind, so that it never holds: choose one."}},
        {"a relation with nothing",
         [](Room& r) { conditionOfI1(r, COND_REL, [](s_Condition&) {}); },
         {"Condition 14 compares no variable: name one.",
          "Condition 14 compares by no relation: choose one.",
          "Condition 14 compares with nothing: give it a value or a variable."}},
        {"a relation between two variables",
         [](Room& r) {
             conditionOfI1(r, COND_REL, [&](s_Condition& c) {
                 c.var = r.variable("room.x");
                 c.var2 = r.variable("room.m");
                 c.op = REL_LT;
             });
         },
         {}},
        {"a negation",
         [](Room& r) {
             conditionOfI1(r, COND_NOT, [&](s_Condition& c) { c.left = r.rt().condi[5]; });
         },
         {}},
        {"a constant", [](Room& r) { conditionOfI1(r, COND_CONST, [](s_Condition&) {}); }, {}},
    });
}

TEST(LinkSlips, Numbering) {
    plant_fixture::expectTold(RoomSlips{
        {"the last condition has no number",
         [](Room& r) { r.rt().condi.pop_back(); },
         {"warning: The condition of influence R1.i2 has no number: add it to condi.",
          "warning: The condition of influence R1.i3 has no number: add it to condi.",
          "warning: The condition of influence R1.i6 has no number: add it to condi."}},
        {"a condition has two numbers",
         [](Room& r) { r.rt().condi.push_back(r.rt().condi[11]); },
         {"Condition 11 stands in condi again as 16: number it once."}},
        {"a condition is used by nothing",
         [](Room& r) { mkAtomCond(r.rt(), r.atom("room.mode=open"), 0); },
         {"warning: Entry 20 of condPool is used by nothing: number it, or take it out."}},
        {"a condition decides nothing",
         [](Room& r) { r.influence("R1.i1")->cond = r.rt().condi[3]; },
         {"warning: Condition 14 decides nothing: name it as the condition of an influence, or "
          "take it out."}},
    });
}

// ---- Constraints ----

TEST(LinkSlips, Constraints) {
    plant_fixture::expectTold(RoomSlips{
        {"no left operand",
         [](Room& r) { r.rt().aC[3]->left = nullptr; },
         {"Constraint 3 of room.x cannot be worked out, since it lacks its left operand: set it."}},
        {"no right operand",
         [](Room& r) { r.rt().aC[3]->right = nullptr; },
         {"Constraint 3 of room.x cannot be worked out, since it lacks its right operand: set "
          "it."}},
        {"no operator",
         [](Room& r) { r.rt().aC[3]->op = 8; },
         {"Constraint 3 of room.x cannot be worked out, since it lacks an operator: set it."}},
        {"a leaf without a value",
         [](Room& r) { r.rt().aC[3]->left->gvar = nullptr; },
         {"Constraint 3 of room.x cannot be worked out, since it lacks a value: set it."}},
        {"a threshold that is no number",
         [](Room& r) { r.rt().aC[3]->left->gvar->value = makeReal(std::nan("")); },
         {"Constraint 3 of room.x cannot be worked out, since it lacks a value that is a number: "
          "set it."}},
        {"behind no condition",
         [](Room& r) {
             r.rt().aC.push_back(mkSpace(r.rt(), r.rt().gV[0], 3.0, makeReal(0.0)));
             r.rt().gV[0]->acIdx = {5, 0, 1, 2, 3, 4};
             sizeArrays(r.rt());
         },
         {"warning: Constraint 4 of room.x is behind no condition: name it in one, or take it "
          "out."}},
    });
}

// aC 0 loses its variable, so that neither the variable nor the condition leads to it.
TEST(LinkSlips, AConstraintOnNoVariable) {
    Room room;
    room.rt().aC[0]->gvar = nullptr;
    EXPECT_EQ(room.findings(),
              (Texts{"Constraint 0 is on no variable: name the one that it constrains.",
                     "Entry 0 of gV (room.x) has in acIdx the numbers 4, 0, 1, 2 and 3, and its "
                     "constraints are, behind their count, 3, 1, 2 and 3: write these.",
                     "Variable room.x has 10 in varConds, a condition that does not compare it: "
                     "take it out."}));
}

TEST(LinkSlips, TheNetwork) {
    plant_fixture::expectTold(RoomSlips{
        {"a number missing",
         [](Room& r) {
             r.rt().gV[0]->acIdx = {3, 0, 1, 2};
         },
         {"Entry 0 of gV (room.x) has in acIdx the numbers 3, 0, 1 and 2, and its constraints are, "
          "behind their count, 4, 0, 1, 2 and 3: write these."}},
        {"a wrong count",
         [](Room& r) { r.rt().gV[0]->acIdx[0] = 3; },
         {"Entry 0 of gV (room.x) has in acIdx the numbers 3, 0, 1, 2 and 3, and its constraints "
          "are, behind their count, 4, 0, 1, 2 and 3: write these."}},
        {"another order",
         [](Room& r) {
             r.rt().gV[0]->acIdx = {4, 3, 2, 1, 0};
         },
         {}},
        {"not in gV",
         [](Room& r) { r.rt().gV.clear(); },
         {"Constraint 0 of room.x is on a variable that is not in gV: add it there.",
          "Constraint 1 of room.x is on a variable that is not in gV: add it there.",
          "Constraint 2 of room.x is on a variable that is not in gV: add it there.",
          "Constraint 3 of room.x is on a variable that is not in gV: add it there.",
          "Variable room.x is bounded by conditions and is not in gV: add it there."}},
        {"twice in gV",
         [](Room& r) { r.rt().gV.push_back(r.rt().gV[0]); },
         {"Entry 1 of gV (room.x) stands in gV twice: keep one entry."}},
        {"a second entry of one variable",
         [](Room& r) {
             r.rt().gV.push_back(mkConstraintVar(r.rt(), r.variable("room.x"), makeReal(0.0)));
         },
         {"Entry 1 of gV (room.x) stands in gV twice: keep one entry."}},
        {"an entry of no variable",
         [](Room& r) { r.rt().gV.push_back(mkConstraintVar(r.rt(), nullptr, makeReal(0.0))); },
         {"Entry 1 of gV stands for no variable: name one."}},
        {"an entry of no kind",
         [](Room& r) {
             r.rt().gV.push_back(mkConstraintVar(r.rt(), r.variable("room.xd"), makeReal(0.0)));
             r.rt().gV[1]->kind = 3;
         },
         {"Entry 1 of gV (room.xd) is of no kind: make it a variable or an intermediate."}},
    });
}

s_Expr* leaf(Room& r, s_GVar* gvar) {
    auto expr = std::make_unique<s_Expr>();
    expr->op = EXPR_VAR;
    expr->gvar = gvar;
    return adoptExpr(r.rt(), std::move(expr));
}

// xdq = x + xd, where xd is in gV or not.
void addGlobal(Room& r, bool reads, std::vector<int> const& numbers) {
    s_GVar* xdq = mkConstraintVar(r.rt(), r.variable("room.xdq"), makeReal(0.0));
    s_GVar* xd = mkConstraintVar(r.rt(), r.variable("room.xd"), makeReal(0.0));
    auto sum = std::make_unique<s_Expr>();
    sum->op = EXPR_ADD;
    sum->gvar = xdq;
    sum->left = leaf(r, r.rt().gV[0]);
    sum->right = leaf(r, xd);
    r.rt().gV.push_back(xdq);
    if (reads)
        r.rt().gV.push_back(xd);
    xd->gcIdx = r.rt().gV[0]->gcIdx = numbers;
    r.rt().gC.push_back(adoptExpr(r.rt(), std::move(sum)));
    sizeArrays(r.rt());
}

TEST(LinkSlips, GlobalConstraints) {
    plant_fixture::expectTold(RoomSlips{
        {"a right one",
         [](Room& r) {
             addGlobal(r, true, {1, 0});
         },
         {}},
        {"unknown to what it reads",
         [](Room& r) { addGlobal(r, true, {}); },
         {"Entry 0 of gV (room.x) has in gcIdx the numbers none, and its constraints are, behind "
          "their count, 1 and 0: write these.",
          "Entry 2 of gV (room.xd) has in gcIdx the numbers none, and its constraints are, behind "
          "their count, 1 and 0: write these."}},
        {"reading what is not in gV",
         [](Room& r) {
             addGlobal(r, false, {1, 0});
         },
         {"Global constraint 0 reads a variable that is not in gV: add it there."}},
        {"on no variable",
         [](Room& r) {
             addGlobal(r, true, {1, 0});
             r.rt().gC[0]->gvar = nullptr;
         },
         {"Global constraint 0 is on no variable: name the one that it constrains."}},
        {"without an operand",
         [](Room& r) {
             addGlobal(r, true, {1, 0});
             r.rt().gC[0]->right->gvar = nullptr;
             r.rt().gV[2]->gcIdx = {0};
         },
         {"Global constraint 0 cannot be worked out, since it lacks a value: set it."}},
    });
}

// ---- Thresholds ----

void setThreshold(Room& r, std::size_t i, double value) {
    r.rt().aC[i]->left->gvar->value = makeReal(value);
}

range& space(Room& r, std::size_t i) {
    return r.rt().aC[i]->right->gvar->value.rng;
}

// aC: x < 10, x >= 10, x < 17, x >= 17.
TEST(LinkSlips, Thresholds) {
    plant_fixture::expectTold(RoomSlips{
        {"a gap",
         [](Room& r) { setThreshold(r, 1, 12.0); },
         {"Variable room.c1 has no value while room.x lies in [10, 12[: let the thresholds meet."}},
        {"an overlap",
         [](Room& r) { setThreshold(r, 3, 15.5); },
         {"Variable room.c1 is c12 as well as c11 while room.x lies in [15.5, 17[: let the "
          "thresholds meet."}},
        {"a point left out",
         [](Room& r) { space(r, 3).infClosed = 0; },
         {"Variable room.c1 has no value while room.x is 17: let the thresholds meet."}},
        {"a point held twice",
         [](Room& r) { space(r, 0).supClosed = 1; },
         {"Variable room.c1 is c11 as well as c10 while room.x is 10: let the thresholds meet."}},
        {"thresholds in the wrong order",
         [](Room& r) {
             for (std::size_t i : {0, 1})
                 setThreshold(r, i, 20.0);
         },
         {"Variable room.c1 is c12 as well as c10 while room.x lies in [17, 20[: let the "
          "thresholds meet.",
          "Atom room.c1=c11 can never hold, since no value of room.x lies between its thresholds: "
          "put the lower one first."}},
        {"a space that ends",
         [](Room& r) { space(r, 3).sup = 100.0; },
         {"Variable room.c1 has no value while room.x lies in ]117, +oo]: let the thresholds "
          "meet."}},
        {"a space that ends outside the domain",
         [](Room& r) {
             space(r, 3).sup = 100.0;
             r.variable("room.x")->domain = makeRange(-50.0, 60.0, 1, 1);
         },
         {}},
        {"a range outside the domain",
         [](Room& r) { r.variable("room.x")->domain = makeRange(-50.0, 17.0, 1, 0); },
         {"Atom room.c1=c12 can never hold, since it asks for [17, +oo] of room.x, which has the "
          "domain [-50, 17[: move one of them."}},
        {"a range that touches the domain",
         [](Room& r) { r.variable("room.x")->domain = makeRange(-50.0, 17.0, 1, 1); },
         {}},
        {"open ends of the scale",
         [](Room& r) { space(r, 0).infClosed = space(r, 3).supClosed = 0; },
         {}},
        {"a threshold that moves",
         [](Room& r) {
             s_GVar* moving = mkConstraintVar(r.rt(), r.variable("room.M"), makeReal(17.0));
             r.rt().gV.push_back(moving);
             r.rt().aC[3]->left->gvar = moving;
         },
         {}},
    });
}

TEST(LinkSlips, ConditionsThatBoundAVariable) {
    plant_fixture::expectTold(RoomSlips{
        {"one left out",
         [](Room& r) {
             r.variable("room.x")->varConds = {6, 10};
         },
         {"Variable room.x is bounded by condition 9 too: write it in varConds."}},
        {"all left out",
         [](Room& r) { r.variable("room.x")->varConds = {}; },
         {"Variable room.x is bounded by condition 6, 9 and 10 too: write it in varConds."}},
        {"no condition",
         [](Room& r) {
             r.variable("room.x")->varConds = {6, 9, 10, 16};
         },
         {"Variable room.x has 16 in varConds, which is no condition: write the conditions that "
          "bound it."}},
        {"another condition",
         [](Room& r) {
             r.variable("room.x")->varConds = {6, 9, 10, 11};
         },
         {"Variable room.x has 11 in varConds, a condition that does not compare it: take it "
          "out."}},
        {"one twice",
         [](Room& r) {
             r.variable("room.x")->varConds = {6, 9, 9, 10};
         },
         {"Variable room.x has 9 twice in varConds: write it once."}},
        {"another variable",
         [](Room& r) { r.variable("room.xd")->varConds = {6}; },
         {"Variable room.xd has 6 in varConds, a condition that does not compare it: take it "
          "out."}},
    });
}

// xd is split at 1, and nothing says in which range it lies.
TEST(LinkSlips, AConstrainedVariableWithoutABoundingCondition) {
    Room room;
    s_runtime& rt = room.rt();
    s_GVar* rate = mkConstraintVar(rt, room.variable("room.xd"), makeReal(0.0));
    rate->acIdx = {1, 4};
    rt.gV.push_back(rate);
    rt.aC.push_back(mkSpace(rt, rate, 1.0, rt.aC[0]->right->gvar->value));
    s_Condition* slow = mkExprCond(rt, rate->var, REL_LT, rt.aC[4], 4, nullptr, 0);
    rt.condi.push_back(slow);
    room.influence("R1.i4")->cond = slow;
    sizeArrays(rt);
    EXPECT_EQ(room.findings(),
              (Texts{"Variable room.xd has constraints and no condition that bounds it: link its "
                     "conditions to atoms."}));
}

// ---- Links ----

void unlink(Room& r, char const* id) {
    condMapOf(r.atom(id)->getStateVar()).erase(r.atom(id)->getId());
}

void link(Room& r, char const* id, int number) {
    condMapOf(r.atom(id)->getStateVar()).insert({r.atom(id)->getId(), number});
}

TEST(LinkSlips, LinksOfAtoms) {
    plant_fixture::expectTold(RoomSlips{
        {"to a condition that is none",
         [](Room& r) {
             unlink(r, "room.c1=c12");
             link(r, "room.c1=c12", 16);
         },
         {"Atom room.c1=c12 leads to condition 16 of 16: link it to a numbered condition."}},
        {"to a negative one",
         [](Room& r) {
             unlink(r, "room.mode=open");
             link(r, "room.mode=open", -1);
         },
         {"Atom room.mode=open leads to condition -1 of 16: link it to a numbered condition."}},
        {"to another condition",
         [](Room& r) {
             unlink(r, "room.c1=c12");
             link(r, "room.c1=c12", 7);
         },
         {"Atom room.c1=c12 leads to condition 7, which is not its own: link it to the condition "
          "that holds with it."}},
        {"twice",
         [](Room& r) { link(r, "room.c1=c12", 6); },
         {"warning: Atom room.c1=c12 leads to condition 6 more than once: link them once."}},
        {"without the mark",
         [](Room& r) { r.atom("room.mode=open")->bridged = false; },
         {"Atom room.mode=open leads to a condition and is not marked as bridged: link them with "
          "linkAtom."}},
        {"the mark without a link",
         [](Room& r) { unlink(r, "room.mode=open"); },
         {"Atom room.mode=open is marked as bridged and leads to no condition: link it to the one "
          "that holds with it."}},
        {"a command that is marked",
         [](Room& r) { r.atom("room.cmdin=open")->bridged = true; },
         {"Atom room.cmdin=open is marked as bridged and leads to no condition: link it to the one "
          "that holds with it."}},
        {"the atom of another variable",
         [](Room& r) {
             condMapOf(r.stateVariable("room.c1")).insert({r.atom("room.mode=open")->getId(), 12});
         },
         {"Variable room.c1 links room.mode=open, which is none of its atoms: link atoms of its "
          "own."}},
    });
}

TEST(LinkSlips, LinksOfOneWay) {
    plant_fixture::expectTold(RoomSlips{
        {"a mode that is asked for and sets nothing",
         [](Room& r) {
             unlink(r, "thermostat.mode=on");
             r.atom("thermostat.mode=on")->bridged = false;
         },
         {"Atom thermostat.mode=on is asked for by a condition and sets none: link it to a "
          "numbered condition on it."}},
        {"a range that leads nowhere",
         [](Room& r) {
             unlink(r, "room.c1=c11");
             r.atom("room.c1=c11")->bridged = false;
         },
         {"Atom room.c1=c11 is a value of a condition variable and leads to no condition: link it "
          "to the one that it stands for."}},
        {"a range that follows itself",
         [](Room& r) {
             s_Condition* itself = mkAtomCond(r.rt(), r.atom("room.c1=c11"), 0);
             r.rt().condi.push_back(itself);
             r.rt().condi[9]->atom = nullptr;
             unlink(r, "room.c1=c11");
             link(r, "room.c1=c11", 16);
             r.variable("room.x")->varConds = {6, 10};
         },
         {"warning: Condition 7 decides nothing: name it as the condition of an influence, or take "
          "it out.",
          "warning: Condition 8 decides nothing: name it as the condition of an influence, or take "
          "it out.",
          "warning: Condition 9 decides nothing: name it as the condition of an influence, or take "
          "it out.",
          "Atom room.c1=c11 is a value of a condition variable and leads to a condition on itself "
          "alone: link it to a comparison."}},
        {"a second comparison that its atom does not lead back to",
         [](Room& r) {
             s_Condition* second = mkExprCond(r.rt(), r.variable("room.x"), REL_GE, r.rt().aC[3], 3,
                                              r.atom("room.c1=c12"), 0);
             r.rt().condi.push_back(second);
             r.variable("room.x")->varConds = {6, 9, 10, 16};
         },
         {"Atom room.c1=c12 does not lead back to its condition 16: link them with linkAtom."}},
        {"a condition on a command",
         [](Room& r) { r.rt().condi[15]->left->atom = r.atom("room.cmdin=open"); },
         {"Atom room.cmdin=open is asked for by a condition, and its variable is neither a mode "
          "nor a condition variable: ask for an atom of one of these."}},
    });
}

// The valve of the gauge stands open; its condition, a constant, says that it is shut.
TEST(LinkSlips, AConstantThatDoesNotAgreeWithItsMode) {
    BuiltPlant const gauge(gauge_model.startinit);
    gauge.influence("plant.i1")->cond->right->val = 0;
    EXPECT_EQ(gauge.findings(),
              (Texts{"warning: The right operand of the condition of influence plant.i1 is never "
                     "set and does not agree with how plant.valve begins: link its atom, or set "
                     "it."}));
}

}  // namespace
