// The whole feed line: components, clauses within and across them.
//
// A clause whose conclusion may have to change lists it first: of equally good repairs the first
// literal's is followed, and it is the conclusion that follows from the modes, not the reverse.
#include "generated/line/line.h"
#include "model/exclusiveChoice.h"
#include "reasoning/Scheduler.h"

namespace {

// One of the atoms *positive*, or none of *negated*.
void addClauseOf(Plant& plant, Comp* comp, std::vector<Atom*> const& positive,
                 std::vector<Atom*> const& negated) {
    Clause* clause = plant.addClause(std::make_unique<Clause>(comp));
    for (Atom* atom : positive)
        clause->addAtomRef(atom, false);
    for (Atom* atom : negated)
        clause->addAtomRef(atom, true);
}

// The passage of a valve is through exactly when it is open or stuck open.
void addPassageClauses(Plant& plant, valve* v) {
    addExclusiveChoice(plant, v->cmd);
    addExclusiveChoice(plant, v->mode);
    addExclusiveChoice(plant, v->passage);
    for (Atom* lets : {v->mode_open, v->mode_stuck_open})
        addClauseOf(plant, v, {v->passage_through}, {lets});
    for (Atom* blocks : {v->mode_closed, v->mode_stuck_closed, v->mode_unknown})
        addClauseOf(plant, v, {v->passage_shut}, {blocks});
}

// The flow is positive exactly when the pump is on and every passage is through. What makes it zero
// is stated mode by mode: the likelihood of an observation rests on clauses in which one mode alone
// implies what is seen.
void addFlowClauses(Plant& plant, pump* p, std::vector<valve*> const& valves, sensor* s) {
    for (Atom* stands : {p->mode_off, p->mode_failed, p->mode_unknown})
        addClauseOf(plant, s, {s->flow_zero}, {stands});
    addClauseOf(plant, s, {p->mode_on}, {s->flow_positive});
    std::vector<Atom*> premises{p->mode_on};
    for (valve* v : valves) {
        for (Atom* blocks : {v->mode_closed, v->mode_stuck_closed, v->mode_unknown})
            addClauseOf(plant, s, {s->flow_zero}, {blocks});
        addClauseOf(plant, s, {v->passage_through}, {s->flow_positive});
        premises.push_back(v->passage_through);
    }
    addClauseOf(plant, s, {s->flow_positive}, premises);
}

void connect(Comp* a, Comp* b) {
    a->neighbours.push_back(b);
    b->neighbours.push_back(a);
}

template <typename Component>
Component* addNamed(Scheduler* scheduler, std::string const& name, std::string const& symbol) {
    Component* comp = scheduler->addComp(std::make_unique<Component>(name));
    comp->symbol = symbol;
    return comp;
}

}  // namespace

void buildLine(Scheduler* scheduler, int count) {
    Plant& plant = scheduler->building();
    pump* p = addNamed<pump>(scheduler, "pump", "P1");
    sensor* s = addNamed<sensor>(scheduler, "sensor", "S1");
    connect(p, s);
    addExclusiveChoice(plant, p->cmd);
    addExclusiveChoice(plant, p->mode);
    addExclusiveChoice(plant, s->flow);
    std::vector<valve*> valves;
    for (int i = 1; i <= count; ++i) {
        std::string const number = std::to_string(i);
        valves.push_back(addNamed<valve>(scheduler, "valve" + number, "V" + number));
        connect(valves.back(), s);
        addPassageClauses(plant, valves.back());
    }
    addFlowClauses(plant, p, valves, s);
}
