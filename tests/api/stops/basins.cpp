// Small basins on which a run can stop in ways that the shipped plants have no cause for.
//
//   x(k) = x(k-1) + in(k-1)   while the pump is on; x starts at 5
//   y(k) = x(k) + [-0.1, 0.1], measured
// The level is low under 10, and high from there. The pump may break for good.
//
//   basin    tells what the level is up to 30, and bounds its x to [0, 20], which a flow can leave
//   sluice   also rules out that the level is high while the pump is on
//   gap      leaves out what the level is from 10 to 12
//   unbuilt  fails while it is built
#include "api/builtin_models.h"
#include "model/CommandVar.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "model/Plant.h"
#include "model/exclusiveChoice.h"
#include "model/labels.h"
#include "plant/builder.h"
#include "plant/discrete_parts.h"
#include "reasoning/Scheduler.h"

namespace {

constexpr int window = 20;
constexpr double highest = 20.0, told = 30.0;

class Basin {
public:
    Basin(Plant& plant, Comp& comp, char const* name, double highFrom)
        : plant(plant), comp(comp), builder(*rt, name, 1.0, window), part(builder.part(comp)) {
        comp.className = "basin";
        addDiscreteSide();
        addLevels(highFrom);
        addFlows();
    }

    void forbidHighWhileOn() {
        Clause* rule = plant.addClause(std::make_unique<Clause>(&comp));
        rule->addAtomRef(high, true);
        rule->addAtomRef(on, true);
    }

    std::shared_ptr<s_runtime> finish() {
        rt->display = {x};
        rt->input = {in};
        rt->measure = {y};
        rt->temporal = {x};
        rt->untemporal = {y};
        builder.finish({&comp});
        return rt;
    }

private:
    void addDiscreteSide() {
        level = addChoice<CondVar>(comp, "level", "low", {{"low", &low}, {"high", &high}});
        pump = addChoice<ModeVar>(comp, "pump", "on", {{"on", &on}, {"broken", &broken}});
        addMove(comp, {{on, true}}, on, transNominal, 0.999, true);
        addMove(comp, {{broken, true}}, broken, transNominal, 1.0, true);
        addMove(comp, {{on, true}}, broken, transFail, 0.001, false);
        addExclusiveChoice(plant, level);
        addExclusiveChoice(plant, pump);
    }

    void addLevels(double highFrom) {
        x = part.variable("x");
        x->domain = makeRange(0.0, highest, 1, 1);
        part.initial(x, makeReal(5.0));
        s_GVar* place = part.constrained(x);
        s_Condition* from = part.compare(REL_GE, part.from(place, highFrom));
        s_Condition* under = part.compare(REL_LT, part.below(place, told));
        builder.linkAtom(low, part.compare(REL_LT, part.below(place, 10.0)));
        builder.linkAtom(high, part.combine(COND_AND, from, under));
    }

    // The name of what fills the basin holds every sign that stands between suspects in a text.
    void addFlows() {
        in = part.variable("in");
        y = part.variable("y");
        s_Variable* one = part.parameter("one", 1.0);
        s_Condition* isOn = part.onAtom(on);
        builder.linkAtom(on, isOn);
        builder.linkAtom(broken, part.onAtom(broken));
        part.influence("fill, {by pump}[1]", INF_INTEGRAL, in, x, isOn, makeReal(1.0));
        part.influence("float", INF_STATIC, x, y, nullptr, makeReal(1.0));
        part.influence("error", INF_STATIC, one, y, nullptr, makeRange(-0.1, 0.1, 1, 1));
    }

    Plant& plant;
    Comp& comp;
    std::shared_ptr<s_runtime> rt = std::make_shared<s_runtime>();
    PlantBuilder builder;
    PlantPart& part;
    CondVar* level = nullptr;
    ModeVar* pump = nullptr;
    Atom *low = nullptr, *high = nullptr, *on = nullptr, *broken = nullptr;
    s_Variable *in = nullptr, *x = nullptr, *y = nullptr;
};

void build(Scheduler* scheduler, char const* name, double highFrom, bool ruled) {
    Comp* comp = scheduler->addComp(std::make_unique<Comp>("basin"));
    Basin basin(scheduler->building(), *comp, name, highFrom);
    if (ruled)
        basin.forbidHighWhileOn();
    scheduler->building().tavro_rt = basin.finish();
}

CompiledModel const basin{"basin", [](Scheduler* s) { build(s, "basin", 10.0, false); }};
CompiledModel const sluice{"sluice", [](Scheduler* s) { build(s, "sluice", 10.0, true); }};
CompiledModel const gap{"gap", [](Scheduler* s) { build(s, "gap", 12.0, false); }};
CompiledModel const unbuilt{"unbuilt", [](Scheduler*) { throw std::logic_error("left unbuilt"); }};

}  // namespace

std::span<CompiledModel const* const> builtinModels() {
    static constexpr CompiledModel const* models[] = {&basin, &sluice, &gap, &unbuilt};
    return models;
}
