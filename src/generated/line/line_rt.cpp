// The feed line as a model: two valves.
#include "generated/line/line.h"
#include "run/compiled_model.h"

namespace {

constexpr int valvesOfTheLine = 2;

void startinit(Scheduler* scheduler) {
    buildLine(scheduler, valvesOfTheLine);
}

}  // namespace

extern CompiledModel const line_model{"line", startinit};
