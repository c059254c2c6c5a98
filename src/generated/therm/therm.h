// The thermostat of the reference model: its modes, its heating set value, its influence on the
// room.
#pragma once

#include <string>
#include <vector>

#include "continuous/records.h"
#include "model/Comprt.h"
#include "model/ModeVarrt.h"
#include "plant/builder.h"

class room;

class therm : public Comp {
public:
    therm(std::string name, std::vector<CommandVar*> importedCommands,
          std::vector<CommandVar*> commands, room* peer, PlantBuilder& plant);

    room* peer;  // what it heats, and whose temperature it switches on; built before

    s_Variable* h;

    ModeVar* mode;
    Atom *mode_off, *mode_on, *mode_stuck_on, *mode_stuck_off, *mode_unknown;

    s_Condition *cond_off, *cond_stuck_off;
    s_Condition* cond_heating;  // stuck_on or on

    s_Influence* i1;

private:
    void initModes();
    void initConditions(PlantBuilder& plant, PlantPart& part);
    void initTransitions();
};
