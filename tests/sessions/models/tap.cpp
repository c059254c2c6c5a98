// A mixing tap: out of it comes twice what goes in hot, and three times what goes in cold. A model
// with inputs, one display and no measure, for the roads that the reference model does not take.
#include "continuous/model_parts.h"
#include "model/Comprt.h"
#include "reasoning/Scheduler.h"
#include "run/compiled_model.h"

namespace {

void buildContinuousSide(s_runtime& rt) {
    s_Variable* hot = mkVariable(rt, "tap.hot", 300);
    s_Variable* cold = mkVariable(rt, "tap.cold", 300);
    s_Variable* out = mkVariable(rt, "tap.out", 300);
    s_Influence* i1 =
        mkInfluence(rt, "tap.i1", INF_STATIC, hot, out, nullptr, 1, makeReal(2.0), 0, 0);
    s_Influence* i2 =
        mkInfluence(rt, "tap.i2", INF_STATIC, cold, out, nullptr, 1, makeReal(3.0), 0, 0);
    mkGraph(rt, hot, INF_STATIC, {}, {i1});
    mkGraph(rt, cold, INF_STATIC, {}, {i2});
    mkGraph(rt, out, INF_STATIC, {i1, i2}, {});
    rt.input = {hot, cold};
    rt.display = {out};
    rt.untemporal = {out};
    sizeArrays(rt);
    rt.name = "tap";
    rt.Ts = 0.5;
    rt.twc = 300;
}

void startinit(Scheduler* scheduler) {
    auto runtime = std::make_shared<s_runtime>();
    scheduler->addComp(std::make_unique<Comp>("tap"));
    buildContinuousSide(*runtime);
    scheduler->building().tavro_rt = std::move(runtime);
}

}  // namespace

extern CompiledModel const tap_model{"tap", startinit};
