// The one start-up of a plant.
#include "run/build_plant.h"

#include "hybrid/tavro-runt.h"
#include "reasoning/Scheduler.h"

namespace {

std::string textOf(std::vector<Finding> const& findings) {
    std::string text;
    for (Finding const& finding : findings)
        text += (text.empty() ? "" : "\n") + finding.text;
    return text;
}

void check(Plant const& plant, Host& host) {
    std::vector<Finding> findings =
        checkPlant({plant.active_comps, plant.cls, plant.tavro_rt.get()});
    if (isRefused(findings))
        throw PlantRefused(std::move(findings));
    for (Finding const& finding : findings)
        host.err() << "plant: " << finding.text << "\n";
}

}  // namespace

PlantRefused::PlantRefused(std::vector<Finding> found)
    : std::runtime_error(textOf(found)), findings(std::move(found)) {}

std::unique_ptr<Plant> buildPlant(PlantSource const& source, Host& host) {
    host.out() << "appliName: " << source.name << "\n";
    auto plant = std::make_unique<Plant>(source.name);
    Scheduler scheduler(*plant, host);
    scheduler.startBuilding(*plant);
    source.build(&scheduler);
    if (source.checked)
        check(*plant, host);
    host.out() << "model successfully loaded.\n";
    scheduler.rtInit();
    if (plant->tavro_rt != nullptr)
        bridgeActiveAtoms(*plant, plant->tavro_rt.get());
    return plant;
}
