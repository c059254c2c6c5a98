// Top level of the reference model: a room heated through a thermostat.
//
// It builds both components, wires them together, and leaves one runtime, therm_rt, which the rest
// of the system reaches as tavro_rt and only ever copies.
#include "generated/therm/room.h"
#include "generated/therm/therm.h"
#include "hybrid/tavro-runt.h"
#include "model/exclusiveChoice.h"
#include "plant/builder.h"
#include "reasoning/Scheduler.h"
#include "reasoning/compiled_model.h"

std::string model_name = "therm";

namespace {

// In cycles: what the runtime can be moved back by.
constexpr int thermWindow = 300;

room* R1;
therm* T1;
std::unique_ptr<s_runtime> therm_rt;

void buildComponents(Scheduler* scheduler, PlantBuilder& plant) {
    auto ownedRoom = std::make_unique<room>("room", std::vector<CommandVar*>{},
                                            std::vector<CommandVar*>{}, nullptr, plant);
    R1 = ownedRoom.get();
    R1->symbol = "R1";
    auto ownedTherm = std::make_unique<therm>("thermostat", std::vector<CommandVar*>{},
                                              std::vector<CommandVar*>{}, R1, plant);
    T1 = ownedTherm.get();
    T1->symbol = "T1";
    scheduler->addComp(std::move(ownedRoom));
    scheduler->addComp(std::move(ownedTherm));
}

void wireComponents(PlantBuilder& plant) {
    T1->neighbours.push_back(R1);
    R1->neighbours.push_back(T1);
    plant.setOperands(R1->cond_not_heating, T1->cond_stuck_off, T1->cond_off);
}

void setLists(s_runtime& rt) {
    rt.display = {R1->xd, R1->x};
    rt.measure = {R1->xd};
    rt.temporal = {R1->x};
    rt.untemporal = {R1->xdq, R1->xd};
    rt.cgAux = 2;
}

}  // namespace

void startinit(Scheduler* scheduler) {
    therm_rt = std::make_unique<s_runtime>();
    PlantBuilder plant(*therm_rt, "therm", 1.0, thermWindow);
    buildComponents(scheduler, plant);
    addExclusiveChoice(T1->mode);
    addExclusiveChoice(R1->cmdin);
    addExclusiveChoice(R1->c1);
    addExclusiveChoice(R1->mode);
    wireComponents(plant);
    setLists(*therm_rt);
    plant.finish({T1, R1});
    tavro_rt = therm_rt.get();
}
