// Every model defines the same two names, so each is compiled within a namespace of its own. The
// headers that they include are included before, and are not included again there.
#include "plant/session_models_fixture.h"

#include "continuous/model_parts.h"
#include "hybrid/tavro-runt.h"
#include "model/CommandVar.h"
#include "model/Comprt.h"
#include "model/ModeVarrt.h"
#include "model/exclusiveChoice.h"
#include "model/labels.h"
#include "model/transitionParts.h"
#include "reasoning/Scheduler.h"
#include "reasoning/compiled_model.h"

namespace gauge_model {
#include "sessions/models/gauge.cpp"
}
namespace lamp_model {
#include "sessions/models/lamp.cpp"
}
namespace tap_model {
#include "sessions/models/tap.cpp"
}

namespace session_models {

s_runtime* buildGauge(Scheduler* registry) {
    gauge_model::startinit(registry);
    return tavro_rt;
}

s_runtime* buildLamp(Scheduler* registry) {
    lamp_model::startinit(registry);
    return tavro_rt;
}

s_runtime* buildTap(Scheduler* registry) {
    tap_model::startinit(registry);
    return tavro_rt;
}

}  // namespace session_models
