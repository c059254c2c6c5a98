// A gauge that shows what a plant is supplied with, as long as the plant is powered and its valve
// is open. Nothing moves its modes, and the two are asked for together: a misbehaviour accuses no
// atom, so there is no diagnosis.
#include "continuous/model_parts.h"
#include "model/Comprt.h"
#include "model/ModeVarrt.h"
#include "model/exclusiveChoice.h"
#include "reasoning/Scheduler.h"
#include "run/compiled_model.h"

namespace {

// A mode of the plant that holds from the start. *key* and *otherKey* are string literals.
Atom* holdingMode(Plant& model, Comp* plant, char const* variable, char const* value,
                  char const* key, char const* otherKey) {
    ModeVar* mode = plant->addStateVar(
        std::make_unique<ModeVar>(variable, std::set<std::string>{value, "lost"}, value, plant));
    Atom* atom = plant->newAtom(key, mode, value);
    plant->newAtom(otherKey, mode, "lost");
    addExclusiveChoice(model, mode);
    return atom;
}

s_Condition* holding(s_runtime& rt, Atom* atom) {
    s_Condition* condition = mkAtomCond(rt, atom, 0);
    condition->val = 1;
    return condition;
}

void buildContinuousSide(s_runtime& rt, Atom* powered, Atom* open) {
    s_Variable* supply = mkParameter(rt, "plant.supply", 1.0, 20);
    s_Variable* gauge = mkVariable(rt, "plant.gauge", 20);
    s_Condition* both = mkBinaryCond(rt, COND_AND, holding(rt, powered), holding(rt, open), 0);
    s_Influence* shows =
        mkInfluence(rt, "plant.i1", INF_STATIC, supply, gauge, both, 1, makeReal(1.0), 0, 0);
    mkGraph(rt, supply, INF_STATIC, {}, {shows});
    mkGraph(rt, gauge, INF_STATIC, {shows}, {});
    rt.untemporal = rt.measure = rt.display = {gauge};
    sizeArrays(rt);
    rt.name = "gauge";
    rt.Ts = 1.0;
    rt.twc = 20;
}

void startinit(Scheduler* scheduler) {
    auto runtime = std::make_shared<s_runtime>();
    Plant& model = scheduler->building();
    Comp* plant = scheduler->addComp(std::make_unique<Comp>("plant"));
    Atom* powered =
        holdingMode(model, plant, "plant.power", "on", "plant_power_on", "plant_power_lost");
    Atom* open =
        holdingMode(model, plant, "plant.valve", "open", "plant_valve_open", "plant_valve_lost");
    buildContinuousSide(*runtime, powered, open);
    scheduler->building().tavro_rt = std::move(runtime);
}

}  // namespace

extern CompiledModel const gauge_model{"gauge", startinit};
