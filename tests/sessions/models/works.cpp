// A waterworks: a plant with several measures in two branches of one causal graph, for what a model
// with a single measure cannot show of fault isolation.
//
//     rain --i1--> pond --i5--> main --i7--> near (measured)
//                   |  i2        ^  \--i8--> far (measured)
//                   v            |
//                  pondGauge     i6    (measured)
//                                |
//     river --i3--> pool --------+
//                   |  i4
//                   v
//                  poolGauge           (measured)
//
//     influence   gain        delay   holds while
//     i1          0.9 to 1.1  1       pump1 is on
//     i2          1           0
//     i3          1           2 to 3  pump2 is on
//     i4          0.9 to 1.1  0
//     i5          1           1       gate1 is open
//     i6          1           2 to 3  gate2 is open
//     i7          1           1
//     i8          1           3
//
// Beside it, with a measure of its own and nothing in common with the rest, a tank with a valve:
// 0.19 to 0.21 flows in at each step; the valve opens by itself from a level of 6 on, lets 0.4 and
// a tenth more or less out at each step, and shuts below 2. What its meter shows is 3 as long as
// the valve is open. The level is not measured, so that a candidate splits where its level may or
// may not have passed a threshold.
#include <cfloat>

#include "continuous/model_parts.h"
#include "model/Comprt.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "model/exclusiveChoice.h"
#include "model/labels.h"
#include "model/transitionParts.h"
#include "reasoning/Scheduler.h"
#include "run/compiled_model.h"

namespace {

constexpr int window = 40;       // cycles that the runtime can be moved back by
constexpr int condWindow = 8;    // more than the longest delay of a suspect
constexpr int longestDelay = 3;  // histories reach as far behind the window

// A component with one mode that works, by an idle move or for good, until it fails.
struct Device {
    Atom *working, *failed;
    s_Condition *works, *isOut;
};

// Keys are string literals.
Device makeDevice(Scheduler* scheduler, s_runtime& rt, std::string const& name,
                  std::string const& value, char const* key, char const* failedKey) {
    Comp* comp = scheduler->addComp(std::make_unique<Comp>(name));
    ModeVar* mode = comp->addStateVar(std::make_unique<ModeVar>(
        name + ".mode", std::set<std::string>{value, "failed"}, value, comp));
    Device device{comp->newAtom(key, mode, value), comp->newAtom(failedKey, mode, "failed"),
                  nullptr, nullptr};
    addExclusiveChoice(scheduler->building(), mode);
    auto const add = [comp](Atom* from, Atom* to, char const* type, double proba, bool idle) {
        comp->addTransitionToC(mkTransition({{from, true}}, "", to, type, proba, idle));
    };
    add(device.working, device.failed, transFail, 0.01, false);
    add(device.working, device.working, transNominal, 0.99, true);
    add(device.failed, device.failed, transNominal, 1.0, true);
    device.works = mkAtomCond(rt, device.working, 0);
    device.works->val = 1;
    device.isOut = mkAtomCond(rt, device.failed, 0);
    for (auto const& [atom, condition] :
         {std::pair{device.working, device.works}, std::pair{device.failed, device.isOut}}) {
        linkAtom(mode, atom, static_cast<int>(rt.condi.size()));
        rt.condi.push_back(condition);
    }
    return device;
}

void setDelays(s_Influence* influence, int least, int most) {
    influence->delayMin = least;
    influence->delayMax = most;
}

s_Influence* link(s_runtime& rt, std::string const& name, s_Variable* cause, s_Variable* effect,
                  s_Condition* condition, s_Objet const& gain, int delay) {
    return mkInfluence(rt, name, INF_STATIC, cause, effect, condition, condWindow, gain, delay, 0);
}

void buildWater(Scheduler* scheduler, s_runtime& rt) {
    Device const pump1 = makeDevice(scheduler, rt, "pump1", "on", "pump1_on", "pump1_failed");
    Device const pump2 = makeDevice(scheduler, rt, "pump2", "on", "pump2_on", "pump2_failed");
    Device const gate1 = makeDevice(scheduler, rt, "gate1", "open", "gate1_open", "gate1_failed");
    Device const gate2 = makeDevice(scheduler, rt, "gate2", "open", "gate2_open", "gate2_failed");
    s_Variable* rain = mkVariable(rt, "works.rain", window + longestDelay);
    s_Variable* river = mkVariable(rt, "works.river", window + longestDelay);
    s_Variable* pond = mkVariable(rt, "works.pond", window + longestDelay);
    s_Variable* pool = mkVariable(rt, "works.pool", window + longestDelay);
    s_Variable* mainPipe = mkVariable(rt, "works.main", window + longestDelay);
    s_Variable* pondGauge = mkVariable(rt, "works.pondGauge", window);
    s_Variable* poolGauge = mkVariable(rt, "works.poolGauge", window);
    s_Variable* near = mkVariable(rt, "works.near", window);
    s_Variable* far = mkVariable(rt, "works.far", window);
    s_Objet const one = makeReal(1.0), about = makeRange(0.9, 1.1, 1, 1);
    s_Influence* i1 = link(rt, "i1", rain, pond, pump1.works, about, 1);
    s_Influence* i2 = link(rt, "i2", pond, pondGauge, nullptr, one, 0);
    s_Influence* i3 = link(rt, "i3", river, pool, pump2.works, one, 3);
    s_Influence* i4 = link(rt, "i4", pool, poolGauge, nullptr, about, 0);
    s_Influence* i5 = link(rt, "i5", pond, mainPipe, gate1.works, one, 1);
    s_Influence* i6 = link(rt, "i6", pool, mainPipe, gate2.works, one, 3);
    s_Influence* i7 = link(rt, "i7", mainPipe, near, nullptr, one, 1);
    s_Influence* i8 = link(rt, "i8", mainPipe, far, nullptr, one, 3);
    // A range of a static link begins at 2 at the least.
    setDelays(i3, 2, 3);
    setDelays(i6, 2, 3);
    mkGraph(rt, rain, INF_STATIC, {}, {i1});
    mkGraph(rt, river, INF_STATIC, {}, {i3});
    mkGraph(rt, pond, INF_STATIC, {i1}, {i2, i5});
    mkGraph(rt, pool, INF_STATIC, {i3}, {i4, i6});
    mkGraph(rt, mainPipe, INF_STATIC, {i5, i6}, {i7, i8});
    mkGraph(rt, pondGauge, INF_STATIC, {i2}, {});
    mkGraph(rt, poolGauge, INF_STATIC, {i4}, {});
    mkGraph(rt, near, INF_STATIC, {i7}, {});
    mkGraph(rt, far, INF_STATIC, {i8}, {});
    rt.input = {rain, river};
    rt.measure = {pondGauge, poolGauge, near, far};
    rt.untemporal = {pond, pool, mainPipe, pondGauge, poolGauge, near, far};
    rt.display = {near, far};
    // The water has been running for as long as anyone remembers.
    rt.init = {{rain, makeReal(2.0)},
               {river, makeReal(1.0)},
               {pond, makeReal(2.0)},
               {pool, makeReal(1.0)},
               {mainPipe, makeReal(3.0)}};
}

// Three ranges of the level, each with an atom.
struct Ranges {
    Atom *low, *middle, *high;
};

Ranges makeRanges(Plant& plant, Comp* tank, s_runtime& rt, s_Variable* level) {
    s_Objet const below = makeRange(-DBL_MAX, 0.0, 1, 0), from = makeRange(0.0, DBL_MAX, 1, 1);
    CondVar* range = tank->addStateVar(std::make_unique<CondVar>(
        "tank.range", std::set<std::string>{"low", "middle", "high"}, "middle", tank));
    Ranges const atoms{tank->newAtom("tank_low", range, "low"),
                       tank->newAtom("tank_middle", range, "middle"),
                       tank->newAtom("tank_high", range, "high")};
    addExclusiveChoice(plant, range);
    s_GVar* value = mkConstraintVar(rt, level, makeReal(0.0));
    rt.gV = {value};
    rt.aC = {mkSpace(rt, value, 2.0, below), mkSpace(rt, value, 2.0, from),
             mkSpace(rt, value, 6.0, below), mkSpace(rt, value, 6.0, from)};
    value->acIdx = {4, 0, 1, 2, 3};
    s_Condition* low = mkExprCond(rt, level, REL_LT, rt.aC[0], 0, atoms.low, 0);
    s_Condition* middle =
        mkBinaryCond(rt, COND_AND, mkExprCond(rt, level, REL_GE, rt.aC[1], 1, nullptr, 0),
                     mkExprCond(rt, level, REL_LT, rt.aC[2], 2, nullptr, 0), 0);
    middle->atom = atoms.middle;
    s_Condition* high = mkExprCond(rt, level, REL_GE, rt.aC[3], 3, atoms.high, 0);
    for (auto const& [atom, condition] :
         {std::pair{atoms.low, low}, std::pair{atoms.middle, middle},
          std::pair{atoms.high, high}}) {
        linkAtom(range, atom, static_cast<int>(rt.condi.size()));
        level->varConds.push_back(static_cast<int>(rt.condi.size()));
        rt.condi.push_back(condition);
    }
    return atoms;
}

void buildTank(Scheduler* scheduler, s_runtime& rt) {
    Comp* tank = scheduler->addComp(std::make_unique<Comp>("tank"));
    s_Variable* level = mkVariable(rt, "tank.level", window);
    s_Variable* meter = mkVariable(rt, "tank.meter", window);
    s_Variable* supply = mkParameter(rt, "tank.supply", 1.0, window);
    Ranges const range = makeRanges(scheduler->building(), tank, rt, level);
    ModeVar* mode = tank->addStateVar(std::make_unique<ModeVar>(
        "tank.valve", std::set<std::string>{"shut", "open"}, "shut", tank));
    Atom* shut = tank->newAtom("tank_shut", mode, "shut");
    Atom* open = tank->newAtom("tank_open", mode, "open");
    addExclusiveChoice(scheduler->building(), mode);
    auto const add = [tank](std::vector<std::pair<Atom*, bool>> const& guard, Atom* to,
                            double proba, bool idle) {
        tank->addTransitionToC(mkTransition(guard, "and", to, transNominal, proba, idle));
    };
    add({{shut, true}, {range.high, false}}, shut, 1.0, true);
    add({{open, true}, {range.low, false}}, open, 1.0, true);
    add({{shut, true}, {range.high, true}}, open, 1.0, false);
    add({{open, true}, {range.low, true}}, shut, 1.0, false);
    s_Condition* isOpen = mkAtomCond(rt, open, 0);
    linkAtom(mode, open, static_cast<int>(rt.condi.size()));
    rt.condi.push_back(isOpen);
    s_Influence* t1 = mkInfluence(rt, "t1", INF_INTEGRAL, supply, level, nullptr, condWindow,
                                  makeRange(0.19, 0.21, 1, 1), 0, 0);
    s_Influence* t2 = mkInfluence(rt, "t2", INF_INTEGRAL, supply, level, isOpen, condWindow,
                                  makeRange(-0.44, -0.36, 1, 1), 0, 0);
    s_Influence* t3 = link(rt, "t3", supply, meter, isOpen, makeReal(3.0), 0);
    mkGraph(rt, supply, INF_STATIC, {}, {t1, t2, t3});
    mkGraph(rt, level, INF_INTEGRAL, {t1, t2}, {});
    mkGraph(rt, meter, INF_STATIC, {t3}, {});
    rt.measure.push_back(meter);
    rt.temporal = {level};
    rt.untemporal.push_back(meter);
    rt.init.push_back({level, makeReal(5.06)});
}

void startinit(Scheduler* scheduler) {
    auto runtime = std::make_shared<s_runtime>();
    buildWater(scheduler, *runtime);
    buildTank(scheduler, *runtime);
    sizeArrays(*runtime);
    runtime->name = "works";
    runtime->Ts = 1.0;
    runtime->twc = window;
    scheduler->building().tavro_rt = std::move(runtime);
}

}  // namespace

extern CompiledModel const works_model{"works", startinit};
