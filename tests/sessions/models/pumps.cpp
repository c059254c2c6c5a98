// Pumps that each raise a level of their own, and a lamp that has nothing to do with them. It is
// for what one failure after the other, or two at a time, look like: each level is shown by a gauge
// of its own and rises at a rate that is known to an interval only, so that a pump that has stopped
// is noticed late, and may have stopped at any of several steps.
//
//     level    rises in a step by   while
//     wide     0.5 to 1.5           wide is on
//     tight    0.9 to 1.1           tight is on
//     firm     0.9 to 1.1           firm is on
//     late     0.0625 to 1.5        late is on
//     pair     0.5 to 1.5           left or right is on
//     pipe     0.9 to 1.1           the valve is open
//     odd      0.5 to 1.5           odd is on; anything in the mode unknown
//     drift    -0.125 to 0.125      always
//
// A pump that is on may fail. That of `wide` may also burst, and then raises its level by 1000. The
// valve opens by a command, or sticks at it. No condition covers a level `wide` from 100 on.
//
// The lamp is commanded; what it is for is to make steps in the history.
#include <cfloat>

#include "continuous/model_parts.h"
#include "model/CommandVar.h"
#include "model/Comprt.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "model/exclusiveChoice.h"
#include "model/labels.h"
#include "model/transitionParts.h"
#include "reasoning/Scheduler.h"
#include "run/compiled_model.h"

namespace {

constexpr int window = 80;  // cycles that the runtime can be moved back by

struct Pumps {
    Scheduler* scheduler;
    s_runtime& rt;
    double period;

    Comp* comp(std::string const& name) { return scheduler->addComp(std::make_unique<Comp>(name)); }
    // The first value is the default. Every value has a condition, in the order of the values.
    ModeVar* mode(Comp* comp, std::vector<std::string> const& values) {
        ModeVar* mode = comp->addStateVar(std::make_unique<ModeVar>(
            comp->name + ".mode", std::set<std::string>(values.begin(), values.end()),
            values.front(), comp));
        for (std::string const& value : values) {
            Atom* atom = comp->newAtom((comp->name + "_" + value).c_str(), mode, value);
            s_Condition* condition = mkAtomCond(rt, atom, 0);
            condition->val = value == values.front();
            linkAtom(mode, atom, static_cast<int>(rt.condi.size()));
            rt.condi.push_back(condition);
        }
        addExclusiveChoice(scheduler->building(), mode);
        return mode;
    }
    CommandVar* command(Comp* comp, std::vector<std::string> const& values) {
        CommandVar* command = comp->addStateVar(std::make_unique<CommandVar>(
            comp->name + ".cmd", std::set<std::string>(values.begin(), values.end()),
            values.front(), comp));
        for (std::string const& value : values)
            comp->newAtom((comp->name + "_cmd_" + value).c_str(), command, value);
        comp->commands = {command};
        addExclusiveChoice(scheduler->building(), command);
        return command;
    }
    static Atom* value(StateVar const* variable, std::size_t i) {
        return variable->getAtomLinks()[i];
    }
    static void move(Comp* comp, std::vector<std::pair<Atom*, bool>> const& guard, Atom* to,
                     char const* type, double proba, bool idle = false) {
        char const* const operat = guard.size() > 1 ? "and" : "";
        comp->addTransitionToC(mkTransition(guard, operat, to, type, proba, idle));
    }
    s_Condition* holds(Atom* atom, bool now) {
        s_Condition* condition = mkAtomCond(rt, atom, 0);
        condition->val = now;
        return condition;
    }
    s_Influence* flow(std::string const& name, s_Variable* level, s_Condition* condition,
                      double least, double most) {
        return mkInfluence(rt, name, INF_INTEGRAL, rt.dico[0].get(), level, condition, window,
                           makeRange(least / period, most / period, 1, 1), 0, 0);
    }
    // The level and its gauge.
    s_Variable* level(std::string const& name) {
        s_Variable* level = mkVariable(rt, name + ".level", window);
        s_Variable* gauge = mkVariable(rt, name + ".gauge", window);
        s_Influence* shows = mkInfluence(rt, name + ".shows", INF_STATIC, level, gauge, nullptr,
                                         window, makeReal(1.0), 0, 0);
        mkGraph(rt, gauge, INF_STATIC, {shows}, {});
        rt.temporal.push_back(level);
        rt.untemporal.push_back(gauge);
        rt.measure.push_back(gauge);
        rt.display.push_back(gauge);
        rt.init.push_back({level, makeReal(0.0)});
        shown.push_back(shows);
        return level;
    }
    void fill(s_Variable* level, std::vector<s_Influence*> const& flows) {
        mkGraph(rt, level, INF_INTEGRAL, flows, {shown.back()});
        all.insert(all.end(), flows.begin(), flows.end());
    }

    std::vector<s_Influence*> shown, all;
};

// Returns what the lamp may be.
std::vector<Atom*> addLamp(Pumps& plant) {
    Comp* lamp = plant.comp("lamp");
    CommandVar* cmd = plant.command(lamp, {"none", "on", "off"});
    ModeVar* mode = plant.mode(lamp, {"dark", "lit"});
    Atom *dark = Pumps::value(mode, 0), *lit = Pumps::value(mode, 1);
    Pumps::move(lamp, {{Pumps::value(cmd, 1), true}, {dark, true}}, lit, transNominal, 0.99);
    Pumps::move(lamp, {{Pumps::value(cmd, 2), true}, {lit, true}}, dark, transNominal, 0.99);
    Pumps::move(lamp, {{dark, true}}, dark, transNominal, 0.99, true);
    Pumps::move(lamp, {{lit, true}}, lit, transNominal, 0.99, true);
    return {dark, lit};
}

// A pump whose mode is *on* or one of the *failed*. It fails in any of the *ways*, each a value of
// another component, by a transition of its own; without one, always.
ModeVar* addPump(Pumps& plant, std::string const& name, std::vector<std::string> const& failed,
                 std::vector<Atom*> const& ways = {}) {
    Comp* pump = plant.comp(name);
    std::vector<std::string> values{"on"};
    values.insert(values.end(), failed.begin(), failed.end());
    ModeVar* mode = plant.mode(pump, values);
    Atom* on = Pumps::value(mode, 0);
    for (std::size_t i = 1; i < values.size(); ++i) {
        for (Atom* way : ways)
            Pumps::move(pump, {{on, true}, {way, true}}, Pumps::value(mode, i), transFail, 0.01);
        if (ways.empty())
            Pumps::move(pump, {{on, true}}, Pumps::value(mode, i), transFail, 0.01);
    }
    Pumps::move(pump, {{on, true}}, on, transNominal, 0.98, true);
    for (std::size_t i = 1; i < values.size(); ++i)
        Pumps::move(pump, {{Pumps::value(mode, i), true}}, Pumps::value(mode, i), transNominal, 1.0,
                    true);
    return mode;
}

// A level that is filled while the pump of that name is on.
s_Variable* addTank(Pumps& plant, std::string const& name, std::vector<std::string> const& failed,
                    double least, double most, std::vector<Atom*> const& ways = {}) {
    ModeVar* mode = addPump(plant, name, failed, ways);
    s_Variable* level = plant.level(name);
    s_Influence* fills =
        plant.flow(name + ".fills", level, plant.holds(Pumps::value(mode, 0), true), least, most);
    std::vector<s_Influence*> flows{fills};
    if (failed.back() == "burst")
        flows.push_back(plant.flow(name + ".bursts", level,
                                   plant.holds(Pumps::value(mode, 2), false), 1000.0, 1000.0));
    plant.fill(level, flows);
    return level;
}

void addPair(Pumps& plant) {
    ModeVar* left = addPump(plant, "left", {"failed"});
    ModeVar* right = addPump(plant, "right", {"failed"});
    s_Variable* level = plant.level("pair");
    s_Condition* either = mkBinaryCond(plant.rt, COND_OR, plant.holds(Pumps::value(left, 0), true),
                                       plant.holds(Pumps::value(right, 0), true), 0);
    plant.fill(level, {plant.flow("pair.fills", level, either, 0.5, 1.5)});
}

void addPipe(Pumps& plant) {
    Comp* valve = plant.comp("valve");
    CommandVar* cmd = plant.command(valve, {"none", "open"});
    ModeVar* mode = plant.mode(valve, {"closed", "open", "stuck"});
    Atom *closed = Pumps::value(mode, 0), *open = Pumps::value(mode, 1),
         *stuck = Pumps::value(mode, 2), *opens = Pumps::value(cmd, 1);
    Pumps::move(valve, {{opens, true}, {closed, true}}, open, transNominal, 0.99);
    Pumps::move(valve, {{opens, true}, {closed, true}}, stuck, transFail, 0.01);
    for (Atom* atom : {closed, open, stuck})
        Pumps::move(valve, {{atom, true}}, atom, transNominal, 0.99, true);
    s_Variable* level = plant.level("pipe");
    plant.fill(level, {plant.flow("pipe.fills", level, plant.holds(open, false), 0.9, 1.1)});
}

// What the level may be, as far as there is a condition for it.
void addRange(Pumps& plant, s_Variable* level) {
    s_runtime& rt = plant.rt;
    Comp* comp = plant.comp("tank");
    CondVar* range = comp->addStateVar(
        std::make_unique<CondVar>("tank.range", std::set<std::string>{"low", "high"}, "low", comp));
    Atom* low = comp->newAtom("tank_low", range, "low");
    comp->newAtom("tank_high", range, "high");
    addExclusiveChoice(plant.scheduler->building(), range);
    s_GVar* value = mkConstraintVar(rt, level, makeReal(0.0));
    rt.gV = {value};
    rt.aC = {mkSpace(rt, value, 100.0, makeRange(-DBL_MAX, 0.0, 1, 0))};
    value->acIdx = {1, 0};
    s_Condition* below = mkExprCond(rt, level, REL_LT, rt.aC[0], 0, low, 0);
    linkAtom(range, low, static_cast<int>(rt.condi.size()));
    level->varConds.push_back(static_cast<int>(rt.condi.size()));
    rt.condi.push_back(below);
}

void build(Scheduler* scheduler, char const* name, double period, bool byTheLamp = false) {
    auto runtime = std::make_shared<s_runtime>();
    s_runtime& rt = *runtime;
    Pumps plant{scheduler, rt, period, {}, {}};
    s_Variable* one = mkParameter(rt, "one", 1.0, 0);
    std::vector<Atom*> const lights = addLamp(plant);
    s_Variable* wide = addTank(plant, "wide", {"failed", "burst"}, 0.5, 1.5,
                               byTheLamp ? lights : std::vector<Atom*>());
    addTank(plant, "tight", {"failed"}, 0.9, 1.1);
    addTank(plant, "firm", {"failed"}, 0.9, 1.1);
    addTank(plant, "late", {"failed"}, 0.0625, 1.5);
    addPair(plant);
    addPipe(plant);
    addTank(plant, "odd", {"unknown"}, 0.5, 1.5);
    s_Variable* drift = plant.level("drift");
    plant.fill(drift, {plant.flow("drift.flows", drift, nullptr, -0.125, 0.125)});
    addRange(plant, wide);
    mkGraph(rt, one, INF_STATIC, {}, plant.all);
    sizeArrays(rt);
    rt.name = name;
    rt.Ts = period;
    rt.twc = window;
    scheduler->building().tavro_rt = std::move(runtime);
}

}  // namespace

// The gap is on purpose.
extern CompiledModel const pumps_model{
    "pumps", [](Scheduler* scheduler) { build(scheduler, "pumps", 1.0); }, false};
// The same at ten samples a second, a period that is no sum of powers of two.
extern CompiledModel const fast_pumps_model{
    "fast_pumps", [](Scheduler* scheduler) { build(scheduler, "fast_pumps", 0.1); }, false};
// The pump of `wide` fails in the dark by one transition and in the light by another.
extern CompiledModel const lamp_pumps_model{
    "lamp_pumps", [](Scheduler* scheduler) { build(scheduler, "lamp_pumps", 1.0, true); }, false};
