// Top level of the reference model: a room heated through a thermostat.
//
// It builds both components, wires them together, and leaves one runtime, therm_rt, which the rest
// of the system reaches as tavro_rt and only ever copies.
#include "continuous/model_parts.h"
#include "generated/therm/room.h"
#include "generated/therm/therm.h"
#include "generated/therm/window.h"
#include "model/exclusiveChoice.h"
#include "reasoning/Scheduler.h"
#include "run/compiled_model.h"

namespace {

room* R1;
therm* T1;

void buildComponents(Scheduler* scheduler, s_runtime& rt) {
    auto ownedRoom = std::make_unique<room>("room", std::vector<CommandVar*>{},
                                            std::vector<CommandVar*>{}, nullptr, rt);
    R1 = ownedRoom.get();
    R1->className = "room";
    R1->symbol = "R1";
    auto ownedTherm = std::make_unique<therm>("thermostat", std::vector<CommandVar*>{},
                                              std::vector<CommandVar*>{}, R1, rt);
    T1 = ownedTherm.get();
    T1->className = "therm";
    T1->symbol = "T1";
    scheduler->addComp(std::move(ownedRoom));
    scheduler->addComp(std::move(ownedTherm));
}

void addLiteral(Transition* transition, Atom* atom, bool sign) {
    transition->pre->addAtom(atom, sign);
    transition->refAtomPre(sign, atom);
}

// Guards of the thermostat depend on where the temperature of the room lies.
void wireTransitions() {
    addLiteral(T1->transitions_[2], R1->c1_c12, true);
    addLiteral(T1->transitions_[3], R1->c1_c10, true);
    addLiteral(T1->transitions_[7], R1->c1_c10, false);
    addLiteral(T1->transitions_[8], R1->c1_c12, false);
    addLiteral(T1->transitions_[9], R1->c1_c12, true);
    addLiteral(T1->transitions_[10], R1->c1_c10, true);
}

void wireComponents() {
    T1->neighbours.push_back(R1);
    T1->i1->effect = R1->xdq;
    wireTransitions();
    R1->neighbours.push_back(T1);
    R1->cond_not_heating->left = T1->cond_stuck_off;
    R1->cond_not_heating->right = T1->cond_off;
    R1->graph_xdq->causes[0] = T1->i1;
}

void arrangeRecords(s_runtime& rt) {
    arrange(rt.dico,
            {T1->h, R1->xd, R1->x, R1->xdq, R1->xext, R1->Qc, R1->Qo, R1->m, R1->M, R1->un});
    arrange(rt.influ, {T1->i1, R1->i1, R1->i2, R1->i3, R1->i4, R1->i5, R1->i6});
    arrange(rt.cG,
            {T1->graph_h, R1->graph_xd, R1->graph_x, R1->graph_xdq, R1->graph_xext, R1->graph_un});
    rt.display = {R1->xd, R1->x};
    rt.measure = {R1->xd};
    rt.temporal = {R1->x};
    rt.untemporal = {R1->xdq, R1->xd};
    rt.gV = {R1->gv_x};
    rt.aC = {R1->below_m, R1->from_m, R1->below_M, R1->from_M};
    rt.condi = {T1->cond_off,     T1->cond_on,      T1->cond_stuck_on,    T1->cond_stuck_off,
                T1->cond_unknown, T1->cond_heating, R1->cond_c12,         R1->cond_from_m,
                R1->cond_below_M, R1->cond_c11,     R1->cond_c10,         R1->cond_closed,
                R1->cond_open,    R1->cond_unknown, R1->cond_not_heating, R1->cond_known};
}

void startinit(Scheduler* scheduler) {
    Plant& plant = scheduler->building();
    auto therm_rt = std::make_shared<s_runtime>();
    buildComponents(scheduler, *therm_rt);
    addExclusiveChoice(plant, T1->mode);
    addExclusiveChoice(plant, R1->cmdin);
    addExclusiveChoice(plant, R1->c1);
    addExclusiveChoice(plant, R1->mode);
    wireComponents();
    arrangeRecords(*therm_rt);
    sizeArrays(*therm_rt);
    therm_rt->name = "therm";
    therm_rt->Ts = 1.0;
    therm_rt->twc = thermWindow;
    therm_rt->cgAux = 2;
    plant.tavro_rt = std::move(therm_rt);
}

}  // namespace

extern CompiledModel const therm_model{"therm", startinit};
