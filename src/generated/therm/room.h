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

class therm;

class room : public Comp {
public:
    room(std::string name, std::vector<CommandVar*> importedCommands,
         std::vector<CommandVar*> commands, therm* peer, s_runtime& rt);

    therm* peer;  // null: the thermostat is built later

    s_Variable *xd, *x, *xdq;                 // rate of change, temperature, driving difference
    s_Variable *xext, *Qc, *Qo, *m, *M, *un;  // outside, coefficients, thresholds, unit input

    s_GVar* gv_x;
    s_Expr *below_m, *from_m, *below_M, *from_M;  // the constraints on x, in the order of aC

    CommandVar* cmdin;
    Atom *cmdin_none, *cmdin_open, *cmdin_close;
    CondVar* c1;
    Atom *c1_c12, *c1_c11, *c1_c10;
    ModeVar* mode;
    Atom *mode_closed, *mode_open, *mode_unknown;

    s_Condition *cond_c12, *cond_from_m, *cond_below_M, *cond_c11, *cond_c10;
    s_Condition *cond_closed, *cond_open, *cond_unknown;
    s_Condition* cond_not_heating;  // operands belong to the thermostat: set by the top level
    s_Condition* cond_known;        // closed or open

    s_Influence *i1, *i2, *i3, *i4, *i5, *i6;
    s_CGraph *graph_xd, *graph_x, *graph_xdq, *graph_xext, *graph_un;

    std::vector<Transition*> transitions_;

private:
    void init(s_runtime& rt);
    void initVariables(s_runtime& rt);
    void initConstraints(s_runtime& rt);
    void initDiscrete();
    void initConditions(s_runtime& rt);
    void initInfluences(s_runtime& rt);
    void initGraph(s_runtime& rt);
    void initTransitions();
};
