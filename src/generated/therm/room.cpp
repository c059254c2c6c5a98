// The room, in the order in which a compiled component is built.
#include "generated/therm/room.h"

#include <cfloat>

#include "continuous/model_parts.h"
#include "generated/therm/window.h"
#include "model/labels.h"
#include "model/transitionParts.h"

namespace {

s_Objet const belowZero = makeRange(-DBL_MAX, 0.0, 1, 0);
s_Objet const fromZero = makeRange(0.0, DBL_MAX, 1, 1);

}  // namespace

room::room(std::string name, std::vector<CommandVar*> importedCommands,
           std::vector<CommandVar*> commands, therm* peer, s_runtime& rt)
    : Comp(std::move(name)), peer(peer) {
    this->importedCommands = std::move(importedCommands);
    this->commands = std::move(commands);
    init(rt);
}

void room::init(s_runtime& rt) {
    initVariables(rt);
    initConstraints(rt);
    initDiscrete();
    initConditions(rt);
    initInfluences(rt);
    initGraph(rt);
    initTransitions();
    rt.init.push_back({x, makeReal(4.0)});
}

void room::initVariables(s_runtime& rt) {
    xd = mkVariable(rt, name + ".xd", thermWindow);
    x = mkVariable(rt, name + ".x", thermWindow + 1);  // a cycle more, for the delay of i6
    xdq = mkVariable(rt, name + ".xdq", thermWindow);
    xext = mkParameter(rt, name + ".xext", 4.0, thermWindow);
    Qc = mkParameter(rt, name + ".Qc", 0.05, thermWindow);
    Qo = mkParameter(rt, name + ".Qo", 0.0002, thermWindow);
    m = mkParameter(rt, name + ".m", 10.0, thermWindow);
    M = mkParameter(rt, name + ".M", 17.0, thermWindow);
    un = mkParameter(rt, name + ".un", 1.0, thermWindow);
    x->varConds = {6, 9, 10};
}

void room::initConstraints(s_runtime& rt) {
    gv_x = mkConstraintVar(rt, x, makeReal(0.0));
    gv_x->acIdx = {4, 0, 1, 2, 3};
    below_m = mkSpace(rt, gv_x, 10.0, belowZero);
    from_m = mkSpace(rt, gv_x, 10.0, fromZero);
    below_M = mkSpace(rt, gv_x, 17.0, belowZero);
    from_M = mkSpace(rt, gv_x, 17.0, fromZero);
}

void room::initDiscrete() {
    cmdin = addStateVar(std::make_unique<CommandVar>(
        name + ".cmdin", std::set<std::string>{"none", "open", "close"}, "none", this));
    cmdin_none = newAtom("room_cmdin_none", cmdin, "none");
    cmdin_open = newAtom("room_cmdin_open", cmdin, "open");
    cmdin_close = newAtom("room_cmdin_close", cmdin, "close");

    c1 = addStateVar(std::make_unique<CondVar>(
        name + ".c1", std::set<std::string>{"c12", "c11", "c10"}, "c10", this));
    c1_c12 = newAtom("room_c1_c12", c1, "c12");
    c1_c11 = newAtom("room_c1_c11", c1, "c11");
    c1_c10 = newAtom("room_c1_c10", c1, "c10");

    mode = addStateVar(std::make_unique<ModeVar>(
        name + ".mode", std::set<std::string>{"closed", "open", "unknown"}, "closed", this));
    mode_closed = newAtom("room_mode_closed", mode, "closed");
    mode_open = newAtom("room_mode_open", mode, "open");
    mode_unknown = newAtom("room_mode_unknown", mode, "unknown");

    commands = {cmdin};
}

void room::initConditions(s_runtime& rt) {
    cond_c12 = mkExprCond(rt, x, REL_GE, from_M, 3, c1_c12, 5);
    cond_from_m = mkExprCond(rt, x, REL_GE, from_m, 1, nullptr, 2);
    cond_below_M = mkExprCond(rt, x, REL_LT, below_M, 2, nullptr, 3);
    cond_c11 = mkBinaryCond(rt, COND_AND, cond_from_m, cond_below_M, 4);
    cond_c11->atom = c1_c11;
    cond_c10 = mkExprCond(rt, x, REL_LT, below_m, 0, c1_c10, 1);
    cond_closed = mkAtomCond(rt, mode_closed, 0);
    cond_open = mkAtomCond(rt, mode_open, 0);
    cond_unknown = mkAtomCond(rt, mode_unknown, 0);
    cond_not_heating = mkBinaryCond(rt, COND_OR, nullptr, nullptr, 9);
    cond_known =
        mkBinaryCond(rt, COND_OR, mkAtomCond(rt, mode_closed, 0), mkAtomCond(rt, mode_open, 0), 10);
    linkAtom(c1, c1_c12, 6);
    linkAtom(c1, c1_c11, 9);
    linkAtom(c1, c1_c10, 10);
    linkAtom(mode, mode_closed, 11);
    linkAtom(mode, mode_open, 12);
    linkAtom(mode, mode_unknown, 13);
}

// The gains of i4 and i5 repeat the values of Qc and Qo; they are no links to them.
void room::initInfluences(s_runtime& rt) {
    i1 =
        mkInfluence(rt, "R1.i1", INF_COUPLING, xext, xdq, cond_not_heating, 1, makeReal(1.0), 0, 0);
    i2 = mkInfluence(rt, "R1.i2", INF_INTEGRAL, xd, x, cond_known, 2, makeRange(0.95, 1.05, 1, 1),
                     0, 1);
    i3 = mkInfluence(rt, "R1.i3", INF_STATIC, un, xd, cond_known, 1, makeRange(0.0, 0.3, 1, 1), 0,
                     1);
    i4 = mkInfluence(rt, "R1.i4", INF_STATIC, xdq, xd, cond_closed, 1, makeReal(0.05), 0, 1);
    i5 = mkInfluence(rt, "R1.i5", INF_STATIC, xdq, xd, cond_open, 1, makeReal(0.0002), 0, 1);
    i6 = mkInfluence(rt, "R1.i6", INF_STATIC, x, xdq, cond_known, 1, makeReal(-1.0), 1, 1);
    for (s_Influence* influence : {i1, i2, i3, i4, i5, i6})
        addInfluence(influence);
}

// The first cause of xdq is the thermostat's: set by the top level.
void room::initGraph(s_runtime& rt) {
    graph_xd = mkGraph(rt, xd, INF_STATIC, {i5, i4, i3}, {i2});
    graph_x = mkGraph(rt, x, INF_INTEGRAL, {i2}, {i6});
    graph_xdq = mkGraph(rt, xdq, INF_STATIC, {nullptr, i6, i1}, {i5, i4});
    graph_xext = mkGraph(rt, xext, INF_STATIC, {}, {i1});
    graph_un = mkGraph(rt, un, INF_STATIC, {}, {i3});
}

void room::initTransitions() {
    auto const add = [this](std::vector<std::pair<Atom*, bool>> const& guard, char const* operat,
                            Atom* to, double proba, bool idle) {
        transitions_.push_back(
            addTransitionToC(mkTransition(guard, operat, to, transNominal, proba, idle)));
    };
    add({{mode_unknown, true}}, "", mode_unknown, 1.0, true);
    add({{mode_open, true}}, "", mode_open, 0.99, true);
    add({{mode_closed, true}}, "", mode_closed, 0.99, true);
    add({{cmdin_close, true}, {mode_open, true}}, "and", mode_closed, 0.99, false);
    add({{cmdin_open, true}, {mode_closed, true}}, "and", mode_open, 0.99, false);
}
