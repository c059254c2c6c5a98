// The components of the feed line, in the order in which a compiled component is built.
//
// Probabilities of the transitions that one full guard allows sum to 1: a failure needs no command
// and so stands beside the nominal move and beside the idle one.
#include "generated/line/line.h"

#include "model/labels.h"
#include "model/transitionParts.h"

namespace {

constexpr double lose = 0.001;  // falls into the unknown mode
constexpr double breakDown = 0.01;
constexpr double certain = 1.0;

void addMove(Comp* comp, std::vector<std::pair<Atom*, bool>> const& guard, Atom* to,
             char const* type, double proba, bool idle) {
    comp->addTransitionToC(
        mkTransition(guard, guard.size() > 1 ? "and" : "", to, type, proba, idle));
}

// A mode that nothing leaves.
void addAbsorbing(Comp* comp, Atom* mode) {
    addMove(comp, {{mode, true}}, mode, transNominal, certain, true);
}

// From *mode*: a command takes it to *to*, any other command leaves it, unless it fails.
void addCommanded(Comp* comp, Atom* mode, Atom* command, Atom* to, double proba) {
    addMove(comp, {{mode, true}, {command, true}}, to, transNominal, proba, false);
    addMove(comp, {{mode, true}, {command, false}}, mode, transNominal, proba, true);
}

void addFailure(Comp* comp, Atom* mode, Atom* to, double proba) {
    addMove(comp, {{mode, true}}, to, transFail, proba, false);
}

std::unique_ptr<StateVar> makeObservable(std::string const& name, std::set<std::string> values,
                                         char const* start, Comp* comp) {
    auto variable = std::make_unique<StateVar>(name, std::move(values), start, comp);
    variable->type = typeObservable;
    return variable;
}

}  // namespace

pump::pump(std::string compName) : Comp(std::move(compName)) {
    cmd = addStateVar(std::make_unique<CommandVar>(
        name + ".cmd", std::set<std::string>{"none", "start", "stop"}, "none", this));
    cmd_none = newAtom("pump_cmd_none", cmd, "none");
    cmd_start = newAtom("pump_cmd_start", cmd, "start");
    cmd_stop = newAtom("pump_cmd_stop", cmd, "stop");
    mode = addStateVar(std::make_unique<ModeVar>(
        name + ".mode", std::set<std::string>{"off", "on", "failed", "unknown"}, "off", this));
    mode_off = newAtom("pump_mode_off", mode, "off");
    mode_on = newAtom("pump_mode_on", mode, "on");
    mode_failed = newAtom("pump_mode_failed", mode, "failed");
    mode_unknown = newAtom("pump_mode_unknown", mode, "unknown");
    commands = {cmd};
    initTransitions();
}

void pump::initTransitions() {
    addFailure(this, mode_off, mode_unknown, lose);
    addFailure(this, mode_on, mode_failed, breakDown);
    addFailure(this, mode_on, mode_unknown, lose);
    addAbsorbing(this, mode_failed);
    addAbsorbing(this, mode_unknown);
    addCommanded(this, mode_off, cmd_start, mode_on, certain - lose);
    addCommanded(this, mode_on, cmd_stop, mode_off, certain - lose - breakDown);
}

valve::valve(std::string compName) : Comp(std::move(compName)) {
    cmd = addStateVar(std::make_unique<CommandVar>(
        name + ".cmd", std::set<std::string>{"none", "open", "close"}, "none", this));
    cmd_none = newAtom("valve_cmd_none", cmd, "none");
    cmd_open = newAtom("valve_cmd_open", cmd, "open");
    cmd_close = newAtom("valve_cmd_close", cmd, "close");
    mode = addStateVar(std::make_unique<ModeVar>(
        name + ".mode",
        std::set<std::string>{"closed", "open", "stuck_closed", "stuck_open", "unknown"}, "closed",
        this));
    mode_closed = newAtom("valve_mode_closed", mode, "closed");
    mode_open = newAtom("valve_mode_open", mode, "open");
    mode_stuck_closed = newAtom("valve_mode_stuck_closed", mode, "stuck_closed");
    mode_stuck_open = newAtom("valve_mode_stuck_open", mode, "stuck_open");
    mode_unknown = newAtom("valve_mode_unknown", mode, "unknown");
    passage = addStateVar(makeObservable(name + ".passage", {"shut", "through"}, "shut", this));
    passage_shut = newAtom("valve_passage_shut", passage, "shut");
    passage_through = newAtom("valve_passage_through", passage, "through");
    commands = {cmd};
    initTransitions();
}

void valve::initTransitions() {
    addFailure(this, mode_closed, mode_stuck_closed, breakDown);
    addFailure(this, mode_closed, mode_unknown, lose);
    addFailure(this, mode_open, mode_stuck_open, breakDown);
    addFailure(this, mode_open, mode_unknown, lose);
    addAbsorbing(this, mode_stuck_closed);
    addAbsorbing(this, mode_stuck_open);
    addAbsorbing(this, mode_unknown);
    addCommanded(this, mode_closed, cmd_open, mode_open, certain - lose - breakDown);
    addCommanded(this, mode_open, cmd_close, mode_closed, certain - lose - breakDown);
}

sensor::sensor(std::string compName) : Comp(std::move(compName)) {
    flow = addStateVar(makeObservable(name + ".flow", {"zero", "positive"}, "zero", this));
    flow_zero = newAtom("sensor_flow_zero", flow, "zero");
    flow_positive = newAtom("sensor_flow_positive", flow, "positive");
}
