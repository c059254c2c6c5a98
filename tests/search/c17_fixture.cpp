// The circuit as components, transitions and clauses, in the form of a compiled model.
#include "search/c17_fixture.h"
#include "fixtures/the_run.h"

#include <map>

#include "model/exclusiveChoice.h"
#include "model/labels.h"
#include "model/transitionParts.h"

namespace c17 {

namespace {

constexpr double breakDown = 0.01;
constexpr double certain = 1.0;

Signal makeSignal(Comp* comp, std::string const& symbol, std::string const& name, bool value) {
    Signal signal;
    signal.variable = comp->addStateVar(std::make_unique<StateVar>(
        comp->name + "." + name, std::set<std::string>{"0", "1"}, value ? "1" : "0", comp));
    signal.variable->type = typeObservable;
    signal.zero = comp->newAtom((symbol + "_0").c_str(), signal.variable, "0");
    signal.one = comp->newAtom((symbol + "_1").c_str(), signal.variable, "1");
    return signal;
}

void addClauseOf(Comp* comp, Atom* conclusion, std::vector<Atom*> const& premises) {
    Clause* clause = thePlant().addClause(std::make_unique<Clause>(comp));
    clause->addAtomRef(conclusion, false);
    for (Atom* atom : premises)
        clause->addAtomRef(atom, true);
}

// What each number carries when every gate is ok.
std::map<int, bool> nominalValues(Inputs const& inputs) {
    std::map<int, bool> values;
    for (std::size_t i = 0; i < inputs.size(); ++i)
        values[inputNumbers[i]] = inputs[i];
    for (Wiring const& wires : wiring)
        values[wires.number] = !(values[wires.first] && values[wires.second]);
    return values;
}

}  // namespace

gate::gate(std::string compName, bool output) : Comp(std::move(compName)) {
    mode = addStateVar(std::make_unique<ModeVar>(
        name + ".mode", std::set<std::string>{"ok", "broken"}, "ok", this));
    mode_ok = newAtom("gate_mode_ok", mode, "ok");
    mode_broken = newAtom("gate_mode_broken", mode, "broken");
    out = makeSignal(this, "gate_out", "out", output);
    initTransitions();
}

void gate::initTransitions() {
    addTransitionToC(mkTransition({{mode_ok, true}}, "", mode_broken, transFail, breakDown, false));
    addTransitionToC(
        mkTransition({{mode_ok, true}}, "", mode_ok, transNominal, certain - breakDown, true));
    addTransitionToC(
        mkTransition({{mode_broken, true}}, "", mode_broken, transNominal, certain, true));
}

source::source(std::string compName, Inputs const& values) : Comp(std::move(compName)) {
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        std::string const input = "i" + std::to_string(inputNumbers[i]);
        inputs[i] = makeSignal(this, "source_" + input, input, values[i]);
    }
}

Circuit::Circuit(Inputs const& inputs) : inputs(inputs) {
    build();
    engine.start();
}

void Circuit::build() {
    std::map<int, bool> const values = nominalValues(inputs);
    feed = engine.scheduler->addComp(std::make_unique<source>("inputs", inputs));
    for (Signal const& input : feed->inputs)
        addExclusiveChoice(thePlant(), input.variable);
    for (std::size_t i = 0; i < gates.size(); ++i) {
        int const number = wiring[i].number;
        gates[i] = engine.scheduler->addComp(
            std::make_unique<gate>("gate" + std::to_string(number), values.at(number)));
        addExclusiveChoice(thePlant(), gates[i]->mode);
        addExclusiveChoice(thePlant(), gates[i]->out.variable);
    }
    for (std::size_t i = 0; i < gates.size(); ++i)
        addClauses(gates[i], wiring[i]);
}

Signal Circuit::signalOf(int number) const {
    for (std::size_t i = 0; i < inputNumbers.size(); ++i)
        if (inputNumbers[i] == number)
            return feed->inputs[i];
    for (std::size_t i = 0; i < wiring.size(); ++i)
        if (wiring[i].number == number)
            return gates[i]->out;
    return {};
}

// The NAND of a gate that is ok, each with its conclusion first.
void Circuit::addClauses(gate* self, Wiring const& wires) {
    std::vector<Atom*> allOne{self->mode_ok};
    for (int const number : {wires.first, wires.second}) {
        Signal const input = signalOf(number);
        addClauseOf(self, self->out.one, {self->mode_ok, input.zero});
        allOne.push_back(input.one);
        Comp* const feeder = input.variable->getComp();
        self->neighbours.push_back(feeder);
        feeder->neighbours.push_back(self);
    }
    addClauseOf(self, self->out.zero, allOne);
}

void Circuit::allowRepeatedFailures() {
    for (gate* each : gates)
        for (auto const& transition : each->transitions)
            transition->unconditional = true;
}

void Circuit::observe(bool out22, bool out23, bool namesInputs) {
    std::string lines = "Command\nObservation";
    for (std::size_t i = 0; namesInputs && i < inputs.size(); ++i)
        lines +=
            std::string(" ") + (inputs[i] ? feed->inputs[i].one : feed->inputs[i].zero)->getId();
    lines += std::string(" gate22.out=") + (out22 ? "1" : "0") +
             " gate23.out=" + (out23 ? "1" : "0") + "\n";
    streams.errors.str("");
    engine.run(lines);
    trace = streams.errors.str();
}

std::vector<std::set<int>> Circuit::candidates() const {
    std::vector<std::set<int>> found;
    for (auto const& entry : theRun().scheduler.tracked_traj) {
        Trajectory const* history = entry.second.get();
        found.emplace_back();
        for (std::size_t i = 0; i < gates.size(); ++i)
            if (history->getElt(gates[i]->mode_broken->getId(), history->getCurrentTime(), 0)
                    ->evalTrajEl())
                found.back().insert(wiring[i].number);
    }
    return found;
}

}  // namespace c17
