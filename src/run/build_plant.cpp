// The one start-up of a plant.
#include "run/build_plant.h"

#include "hybrid/tavro-runt.h"
#include "reasoning/Scheduler.h"

std::unique_ptr<Plant> buildPlant(CompiledModel const& model, Host& host) {
    host.out() << "appliName: " << model.model_name << "\n";
    auto plant = std::make_unique<Plant>(model.model_name);
    Scheduler scheduler(*plant, host);
    scheduler.startBuilding(*plant);
    model.startinit(&scheduler);
    host.out() << "model successfully loaded.\n";
    scheduler.rtInit();
    if (plant->tavro_rt != nullptr)
        bridgeActiveAtoms(*plant, plant->tavro_rt.get());
    return plant;
}
