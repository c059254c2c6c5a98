// The thermostat of the reference model: its modes, its heating set value, its influence on the
// room.
//
// Compiled form: everything is held by name, and the top level (therm_rt.cpp) reads and patches the
// members when it wires the two components together.
#pragma once

#include <string>
#include <vector>

#include "continuous/records.h"
#include "model/Comprt.h"
#include "model/ModeVarrt.h"

class room;

class therm : public Comp {
public:
    therm(std::string name, std::vector<CommandVar*> importedCommands,
          std::vector<CommandVar*> commands, room* peer, s_runtime& rt);

    room* peer;

    s_Variable* h;

    ModeVar* mode;
    Atom *mode_off, *mode_on, *mode_stuck_on, *mode_stuck_off, *mode_unknown;

    s_Condition *cond_off, *cond_on, *cond_stuck_on, *cond_stuck_off, *cond_unknown;
    s_Condition* cond_heating;  // stuck_on or on

    s_Influence* i1;  // its effect is the room's: wired by the top level
    s_CGraph* graph_h;

    std::vector<Transition*> transitions_;  // in the order of the model's table

private:
    void init(s_runtime& rt);
    void initVariables(s_runtime& rt);
    void initModes();
    void initConditions(s_runtime& rt);
    void initTransitions();
};
