// A feed line: a pump, valves in series behind it, and a flow sensor at the end. Discrete only.
//
// The flow is positive exactly when the pump is on and every valve is open or stuck open.
// docs/line.md holds the model as tables.
#pragma once

#include <string>
#include <vector>

#include "model/CommandVar.h"
#include "model/Comprt.h"
#include "model/ModeVarrt.h"

class Scheduler;

class pump : public Comp {
public:
    explicit pump(std::string name);

    CommandVar* cmd;
    Atom *cmd_none, *cmd_start, *cmd_stop;
    ModeVar* mode;
    Atom *mode_off, *mode_on, *mode_failed, *mode_unknown;

private:
    void initTransitions();
};

class valve : public Comp {
public:
    explicit valve(std::string name);

    CommandVar* cmd;
    Atom *cmd_none, *cmd_open, *cmd_close;
    ModeVar* mode;
    Atom *mode_closed, *mode_open, *mode_stuck_closed, *mode_stuck_open, *mode_unknown;
    StateVar* passage;  // follows the mode: through when open or stuck open
    Atom *passage_shut, *passage_through;

private:
    void initTransitions();
};

class sensor : public Comp {
public:
    explicit sensor(std::string name);

    StateVar* flow;
    Atom *flow_zero, *flow_positive;
};

// Builds the line with that many valves, named valve1, valve2 and so on.
void buildLine(Scheduler* scheduler, int valves);
