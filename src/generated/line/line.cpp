// The components of the feed line, in the order in which a compiled component is built.
//
// Probabilities of the transitions that one full guard allows sum to 1: a failure needs no command
// and so stands beside the nominal move and beside the idle one.
#include "generated/line/line.h"

#include "model/labels.h"
#include "plant/discrete_parts.h"

namespace {

constexpr double lose = 0.001;  // falls into the unknown mode
constexpr double breakDown = 0.01;
constexpr double certain = 1.0;

// A mode that nothing leaves.
void addAbsorbing(Comp* comp, Atom* mode) {
    addMove(*comp, {{mode, true}}, mode, transNominal, certain, true);
}

// From *mode*: a command takes it to *to*, any other command leaves it, unless it fails.
void addCommanded(Comp* comp, Atom* mode, Atom* command, Atom* to, double proba) {
    addMove(*comp, {{mode, true}, {command, true}}, to, transNominal, proba, false);
    addMove(*comp, {{mode, true}, {command, false}}, mode, transNominal, proba, true);
}

void addFailure(Comp* comp, Atom* mode, Atom* to, double proba) {
    addMove(*comp, {{mode, true}}, to, transFail, proba, false);
}

StateVar* addObservable(Comp& comp, std::string const& shortName, char const* start,
                        std::vector<NamedValue> const& values) {
    StateVar* variable = addChoice<StateVar>(comp, shortName, start, values);
    variable->type = typeObservable;
    return variable;
}

}  // namespace

pump::pump(std::string compName) : Comp(std::move(compName)) {
    className = "pump";
    cmd = addChoice<CommandVar>(*this, "cmd", "none",
                                {{"none", &cmd_none}, {"start", &cmd_start}, {"stop", &cmd_stop}});
    mode = addChoice<ModeVar>(*this, "mode", "off",
                              {{"off", &mode_off},
                               {"on", &mode_on},
                               {"failed", &mode_failed},
                               {"unknown", &mode_unknown}});
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
    className = "valve";
    cmd = addChoice<CommandVar>(*this, "cmd", "none",
                                {{"none", &cmd_none}, {"open", &cmd_open}, {"close", &cmd_close}});
    mode = addChoice<ModeVar>(*this, "mode", "closed",
                              {{"closed", &mode_closed},
                               {"open", &mode_open},
                               {"stuck_closed", &mode_stuck_closed},
                               {"stuck_open", &mode_stuck_open},
                               {"unknown", &mode_unknown}});
    passage = addObservable(*this, "passage", "shut",
                            {{"shut", &passage_shut}, {"through", &passage_through}});
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
    className = "sensor";
    flow =
        addObservable(*this, "flow", "zero", {{"zero", &flow_zero}, {"positive", &flow_positive}});
}
