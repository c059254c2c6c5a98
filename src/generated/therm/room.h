// The room of the reference model: its temperature, its window, and where the temperature lies
// between the two thresholds.
#pragma once

#include <string>
#include <vector>

#include "continuous/records.h"
#include "model/CommandVar.h"
#include "model/Comprt.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "plant/builder.h"

class therm;

class room : public Comp {
public:
    room(std::string name, std::vector<CommandVar*> importedCommands,
         std::vector<CommandVar*> commands, therm* peer, PlantBuilder& plant);

    therm* peer;  // null: the thermostat is built later

    s_Variable *xd, *x, *xdq;                 // rate of change, temperature, driving difference
    s_Variable *xext, *Qc, *Qo, *m, *M, *un;  // outside, coefficients, thresholds, unit input

    CommandVar* cmdin;
    Atom *cmdin_none, *cmdin_open, *cmdin_close;
    CondVar* c1;
    Atom *c1_c12, *c1_c11, *c1_c10;
    ModeVar* mode;
    Atom *mode_closed, *mode_open, *mode_unknown;

    s_Condition *cond_closed, *cond_open;
    s_Condition* cond_not_heating;  // operands belong to the thermostat: set by the top level
    s_Condition* cond_known;        // closed or open

    s_Influence *i1, *i2, *i3, *i4, *i5, *i6;

private:
    void initVariables(PlantPart& part);
    void initDiscrete();
    void initTemperatureRanges(PlantBuilder& plant, PlantPart& part);
    void initConditions(PlantBuilder& plant, PlantPart& part);
    void initInfluences(PlantPart& part);
    void initTransitions();
};
