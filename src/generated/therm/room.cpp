// The room, in the order in which a compiled component is built.
#include "generated/therm/room.h"

#include "model/labels.h"
#include "plant/discrete_parts.h"

room::room(std::string name, std::vector<CommandVar*> importedCommands,
           std::vector<CommandVar*> commands, therm* peer, PlantBuilder& plant)
    : Comp(std::move(name)), peer(peer) {
    className = "room";
    this->importedCommands = std::move(importedCommands);
    this->commands = std::move(commands);
    PlantPart& part = plant.part(*this);
    initVariables(part);
    initDiscrete();
    initTemperatureRanges(plant, part);
    initConditions(plant, part);
    initInfluences(part);
    initTransitions();
    part.initial(x, makeReal(4.0));
}

void room::initVariables(PlantPart& part) {
    xd = part.variable("xd");
    x = part.variable("x");
    xdq = part.variable("xdq");
    xext = part.parameter("xext", 4.0);
    Qc = part.parameter("Qc", 0.05);
    Qo = part.parameter("Qo", 0.0002);
    m = part.parameter("m", 10.0);
    M = part.parameter("M", 17.0);
    un = part.parameter("un", 1.0);
}

void room::initDiscrete() {
    cmdin = addChoice<CommandVar>(
        *this, "cmdin", "none",
        {{"none", &cmdin_none}, {"open", &cmdin_open}, {"close", &cmdin_close}});
    c1 = addChoice<CondVar>(*this, "c1", "c10",
                            {{"c12", &c1_c12}, {"c11", &c1_c11}, {"c10", &c1_c10}});
    mode = addChoice<ModeVar>(
        *this, "mode", "closed",
        {{"closed", &mode_closed}, {"open", &mode_open}, {"unknown", &mode_unknown}});
    commands = {cmdin};
}

// Under m, between m and M, from M on: the thresholds repeat the values of m and M.
void room::initTemperatureRanges(PlantBuilder& plant, PlantPart& part) {
    s_GVar* temperature = part.constrained(x);
    s_Expr* below_m = part.below(temperature, 10.0);
    s_Expr* from_m = part.from(temperature, 10.0);
    s_Expr* below_M = part.below(temperature, 17.0);
    s_Expr* from_M = part.from(temperature, 17.0);
    plant.linkAtom(c1_c10, part.compare(REL_LT, below_m));
    s_Condition* atLeast_m = part.compare(REL_GE, from_m);
    s_Condition* lessThan_M = part.compare(REL_LT, below_M);
    plant.linkAtom(c1_c11, part.combine(COND_AND, atLeast_m, lessThan_M));
    plant.linkAtom(c1_c12, part.compare(REL_GE, from_M));
}

void room::initConditions(PlantBuilder& plant, PlantPart& part) {
    plant.linkAtom(mode_closed, cond_closed = part.onAtom(mode_closed));
    plant.linkAtom(mode_open, cond_open = part.onAtom(mode_open));
    plant.linkAtom(mode_unknown, part.onAtom(mode_unknown));
    cond_not_heating = part.openOr();
    cond_known = part.either(mode_closed, mode_open);
}

// The gains of i4 and i5 repeat the values of Qc and Qo; they are no links to them.
void room::initInfluences(PlantPart& part) {
    i1 = part.influence("R1.i1", INF_COUPLING, xext, xdq, cond_not_heating, makeReal(1.0));
    i2 = part.influence("R1.i2", INF_INTEGRAL, xd, x, cond_known, makeRange(0.95, 1.05, 1, 1),
                        {.useOpti = 1});
    i3 = part.influence("R1.i3", INF_STATIC, un, xd, cond_known, makeRange(0.0, 0.3, 1, 1),
                        {.useOpti = 1});
    i4 = part.influence("R1.i4", INF_STATIC, xdq, xd, cond_closed, makeReal(0.05), {.useOpti = 1});
    i5 = part.influence("R1.i5", INF_STATIC, xdq, xd, cond_open, makeReal(0.0002), {.useOpti = 1});
    i6 = part.influence("R1.i6", INF_STATIC, x, xdq, cond_known, makeReal(-1.0),
                        {.delay = 1, .useOpti = 1});
}

void room::initTransitions() {
    auto const add = [this](Guard const& guard, Atom* to, double proba, bool idle) {
        addMove(*this, guard, to, transNominal, proba, idle);
    };
    add({{mode_unknown, true}}, mode_unknown, 1.0, true);
    add({{mode_open, true}}, mode_open, 0.99, true);
    add({{mode_closed, true}}, mode_closed, 0.99, true);
    add({{cmdin_close, true}, {mode_open, true}}, mode_closed, 0.99, false);
    add({{cmdin_open, true}, {mode_closed, true}}, mode_open, 0.99, false);
}
