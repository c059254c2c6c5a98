// Top level of the reference model: a room heated through a thermostat.
//
// It builds both components, wires them together, and leaves the plant one runtime, which the rest
// of the system reaches as tavro_rt and only ever copies.
#include "generated/therm/room.h"
#include "generated/therm/therm.h"
#include "model/exclusiveChoice.h"
#include "plant/builder.h"
#include "reasoning/Scheduler.h"
#include "run/compiled_model.h"

namespace {

// In cycles: what the runtime can be moved back by.
constexpr int thermWindow = 300;

// The components that are wired; the plant owns them.
struct Parts {
    room* R1;
    therm* T1;
};

Parts buildComponents(Scheduler* scheduler, PlantBuilder& builder) {
    auto ownedRoom = std::make_unique<room>("room", std::vector<CommandVar*>{},
                                            std::vector<CommandVar*>{}, nullptr, builder);
    ownedRoom->symbol = "R1";
    auto ownedTherm = std::make_unique<therm>("thermostat", std::vector<CommandVar*>{},
                                              std::vector<CommandVar*>{}, ownedRoom.get(), builder);
    ownedTherm->symbol = "T1";
    Parts parts{};
    parts.R1 = scheduler->addComp(std::move(ownedRoom));
    parts.T1 = scheduler->addComp(std::move(ownedTherm));
    return parts;
}

void wireComponents(Parts const& parts, PlantBuilder& builder) {
    parts.T1->neighbours.push_back(parts.R1);
    parts.R1->neighbours.push_back(parts.T1);
    builder.setOperands(parts.R1->cond_not_heating, parts.T1->cond_stuck_off, parts.T1->cond_off);
}

void setLists(room const& R1, s_runtime& rt) {
    rt.display = {R1.xd, R1.x};
    rt.measure = {R1.xd};
    rt.temporal = {R1.x};
    rt.untemporal = {R1.xdq, R1.xd};
    rt.cgAux = 2;
}

void startinit(Scheduler* scheduler) {
    Plant& plant = scheduler->building();
    auto therm_rt = std::make_shared<s_runtime>();
    PlantBuilder builder(*therm_rt, "therm", 1.0, thermWindow);
    Parts const parts = buildComponents(scheduler, builder);
    addExclusiveChoice(plant, parts.T1->mode);
    addExclusiveChoice(plant, parts.R1->cmdin);
    addExclusiveChoice(plant, parts.R1->c1);
    addExclusiveChoice(plant, parts.R1->mode);
    wireComponents(parts, builder);
    setLists(*parts.R1, *therm_rt);
    builder.finish({parts.T1, parts.R1});
    plant.tavro_rt = std::move(therm_rt);
}

}  // namespace

extern CompiledModel const therm_model{"therm", startinit};
