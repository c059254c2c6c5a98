// The thermostat, in the order in which a compiled component is built.
#include "generated/therm/therm.h"

#include "continuous/model_parts.h"
#include "generated/therm/window.h"
#include "model/labels.h"
#include "model/transitionParts.h"

therm::therm(std::string name, std::vector<CommandVar*> importedCommands,
             std::vector<CommandVar*> commands, room* peer, s_runtime& rt)
    : Comp(std::move(name)), peer(peer) {
    this->importedCommands = std::move(importedCommands);
    this->commands = std::move(commands);
    init(rt);
}

void therm::init(s_runtime& rt) {
    initVariables(rt);
    initModes();
    initConditions(rt);
    i1 = mkInfluence(rt, "T1.i1", INF_COUPLING, h, nullptr, cond_heating, 1, makeReal(1.0), 0, 0);
    addInfluence(i1);
    graph_h = mkGraph(rt, h, INF_STATIC, {}, {i1});
    initTransitions();
}

void therm::initVariables(s_runtime& rt) {
    h = mkParameter(rt, name + ".h", 20.0, thermWindow);
}

void therm::initModes() {
    mode = addStateVar(std::make_unique<ModeVar>(
        name + ".mode", std::set<std::string>{"off", "on", "stuck_off", "stuck_on", "unknown"},
        "off", this));
    mode_off = newAtom("therm_mode_off", mode, "off");
    mode_on = newAtom("therm_mode_on", mode, "on");
    mode_stuck_on = newAtom("therm_mode_stuck_on", mode, "stuck_on");
    mode_stuck_off = newAtom("therm_mode_stuck_off", mode, "stuck_off");
    mode_unknown = newAtom("therm_mode_unknown", mode, "unknown");
}

void therm::initConditions(s_runtime& rt) {
    cond_off = mkAtomCond(rt, mode_off, 0);
    cond_on = mkAtomCond(rt, mode_on, 0);
    cond_stuck_on = mkAtomCond(rt, mode_stuck_on, 0);
    cond_stuck_off = mkAtomCond(rt, mode_stuck_off, 0);
    cond_unknown = mkAtomCond(rt, mode_unknown, 0);
    cond_heating =
        mkBinaryCond(rt, COND_OR, mkAtomCond(rt, mode_stuck_on, 0), mkAtomCond(rt, mode_on, 0), 6);
    linkAtom(mode, mode_off, 0);
    linkAtom(mode, mode_on, 1);
    linkAtom(mode, mode_stuck_on, 2);
    linkAtom(mode, mode_stuck_off, 3);
    linkAtom(mode, mode_unknown, 4);
}

// The guards marked "and" get their second literal, on the room, from the top level.
void therm::initTransitions() {
    auto const add = [this](Atom* from, char const* operat, Atom* to, char const* type,
                            double proba, bool idle) {
        transitions_.push_back(
            addTransitionToC(mkTransition({{from, true}}, operat, to, type, proba, idle)));
    };
    add(mode_on, "", mode_unknown, transFail, 0.001, false);
    add(mode_off, "", mode_unknown, transFail, 0.001, false);
    add(mode_on, "and", mode_stuck_on, transFail, 0.01, false);
    add(mode_off, "and", mode_stuck_off, transFail, 0.01, false);
    add(mode_stuck_on, "", mode_stuck_on, transNominal, 1.0, true);
    add(mode_stuck_off, "", mode_stuck_off, transNominal, 1.0, true);
    add(mode_unknown, "", mode_unknown, transNominal, 1.0, true);
    add(mode_off, "and", mode_off, transNominal, 0.999, true);
    add(mode_on, "and", mode_on, transNominal, 0.999, true);
    add(mode_on, "and", mode_off, transNominal, 0.99, false);
    add(mode_off, "and", mode_on, transNominal, 0.99, false);
}
