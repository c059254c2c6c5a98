// The thermostat, in the order in which a compiled component is built.
#include "generated/therm/therm.h"

#include "generated/therm/room.h"
#include "model/labels.h"
#include "plant/discrete_parts.h"

therm::therm(std::string name, std::vector<CommandVar*> importedCommands,
             std::vector<CommandVar*> commands, room* peer, PlantBuilder& plant)
    : Comp(std::move(name)), peer(peer) {
    className = "therm";
    this->importedCommands = std::move(importedCommands);
    this->commands = std::move(commands);
    PlantPart& part = plant.part(*this);
    h = part.parameter("h", 20.0);
    initModes();
    initConditions(plant, part);
    i1 = part.influence("T1.i1", INF_COUPLING, h, peer->xdq, cond_heating, makeReal(1.0));
    initTransitions();
}

void therm::initModes() {
    mode = addChoice<ModeVar>(*this, "mode", "off",
                              {{"off", &mode_off},
                               {"on", &mode_on},
                               {"stuck_on", &mode_stuck_on},
                               {"stuck_off", &mode_stuck_off},
                               {"unknown", &mode_unknown}});
}

void therm::initConditions(PlantBuilder& plant, PlantPart& part) {
    plant.linkAtom(mode_off, cond_off = part.onAtom(mode_off));
    plant.linkAtom(mode_on, part.onAtom(mode_on));
    plant.linkAtom(mode_stuck_on, part.onAtom(mode_stuck_on));
    plant.linkAtom(mode_stuck_off, cond_stuck_off = part.onAtom(mode_stuck_off));
    plant.linkAtom(mode_unknown, part.onAtom(mode_unknown));
    cond_heating = part.either(mode_stuck_on, mode_on);
}

// It switches off when the room is hot, and on when it is cold.
void therm::initTransitions() {
    Atom* hot = peer->c1_c12;
    Atom* cold = peer->c1_c10;
    auto const add = [this](Guard const& guard, Atom* to, char const* type, double proba,
                            bool idle) { addMove(*this, guard, to, type, proba, idle); };
    add({{mode_on, true}}, mode_unknown, transFail, 0.001, false);
    add({{mode_off, true}}, mode_unknown, transFail, 0.001, false);
    add({{mode_on, true}, {hot, true}}, mode_stuck_on, transFail, 0.01, false);
    add({{mode_off, true}, {cold, true}}, mode_stuck_off, transFail, 0.01, false);
    add({{mode_stuck_on, true}}, mode_stuck_on, transNominal, 1.0, true);
    add({{mode_stuck_off, true}}, mode_stuck_off, transNominal, 1.0, true);
    add({{mode_unknown, true}}, mode_unknown, transNominal, 1.0, true);
    add({{mode_off, true}, {cold, false}}, mode_off, transNominal, 0.999, true);
    add({{mode_on, true}, {hot, false}}, mode_on, transNominal, 0.999, true);
    add({{mode_on, true}, {hot, true}}, mode_off, transNominal, 0.99, false);
    add({{mode_off, true}, {cold, true}}, mode_on, transNominal, 0.99, false);
}
