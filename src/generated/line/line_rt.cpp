// The feed line as the model of an executive: two valves.
#include "generated/line/line.h"
#include "hybrid/tavro-runt.h"
#include "reasoning/compiled_model.h"

std::string model_name = "line";

namespace {

constexpr int valvesOfTheLine = 2;

}  // namespace

void startinit(Scheduler* scheduler) {
    buildLine(scheduler, valvesOfTheLine);
    tavro_rt = nullptr;
}
