#include "tavro/truth_file.h"

#include <algorithm>
#include <charconv>

#include "continuous/records.h"
#include "model/Comprt.h"
#include "model/StateVar.h"
#include "model/labels.h"

namespace {

// The shortest text that reads as the same number.
std::string text(double value) {
    char buffer[32];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

std::string valueOf(truth::Simulator const& run, StateVar const& variable) {
    Atom const* value = run.modes().valueOf(variable);
    return value != nullptr ? value->value : "?";
}

// Behind what stands there already.
void addCell(std::string& line, char separator, std::string const& text) {
    line += separator;
    line += text;
}

// Parameters tell nothing that the plant does not.
template <typename Tell>
void forEachVariable(Plant const& plant, Tell tell) {
    for (auto const& variable : plant.tavro_rt->dico)
        if (!variable->isParam)
            tell(*variable);
}

// The same without the inputs, which a table has by their own names, as a run looks for them.
template <typename Tell>
void forEachInner(Plant const& plant, Tell tell) {
    auto const& inputs = plant.tavro_rt->input;
    forEachVariable(plant, [&](s_Variable const& variable) {
        if (std::find(inputs.begin(), inputs.end(), &variable) == inputs.end())
            tell(variable);
    });
}

std::string atomsOf(Plant const& plant, truth::Simulator const& run, char const* type) {
    std::string line;
    for (StateVar const* variable : plant.stateVars)
        if (variable->getType() == type)
            if (Atom const* value = run.modes().valueOf(*variable))
                addCell(line, ' ', value->id);
    return line;
}

}  // namespace

std::string MeasureFile::line(truth::Simulator const& run) const {
    std::string line;
    for (double const value : run.measures())
        line += text(value) + " ";
    line += "  # k=" + std::to_string(run.now());
    forEachVariable(plant, [&](s_Variable const& variable) {
        addCell(line, ' ', variable.nom);
        addCell(line, '=', text(run.values()[static_cast<std::size_t>(variable.slot)]));
    });
    for (StateVar const* variable : plant.stateVars) {
        addCell(line, ' ', variable->getName());
        addCell(line, '=', valueOf(run, *variable));
    }
    return line + "\n";
}

std::string TruthTable::heading() const {
    std::string line = "step,time";
    for (s_Variable const* measure : plant.tavro_rt->measure)
        addCell(line, ',', measure->nom);
    for (s_Variable const* input : plant.tavro_rt->input)
        addCell(line, ',', input->nom);
    forEachInner(plant, [&](s_Variable const& variable) {
        addCell(line, ',', "true ");
        line += variable.nom;
    });
    for (StateVar const* variable : plant.stateVars) {
        addCell(line, ',', "true ");
        line += variable->getName();
    }
    return line + "\n";
}

std::string TruthTable::line(truth::Simulator const& run) const {
    std::string line = std::to_string(run.now());
    addCell(line, ',', text(run.now() * plant.tavro_rt->Ts));
    for (double const value : run.measures())
        addCell(line, ',', text(value));
    for (s_Variable const* input : plant.tavro_rt->input)
        addCell(line, ',', text(run.values()[static_cast<std::size_t>(input->slot)]));
    forEachInner(plant, [&](s_Variable const& variable) {
        addCell(line, ',', text(run.values()[static_cast<std::size_t>(variable.slot)]));
    });
    for (StateVar const* variable : plant.stateVars)
        addCell(line, ',', valueOf(run, *variable));
    return line + "\n";
}

std::string ScenarioFile::line(truth::Simulator const& run) const {
    if (run.now() == 0)
        return "";
    return "Command" + atomsOf(plant, run, typeCommand) + "\nObservation" +
           atomsOf(plant, run, typeObservable) + "\n";
}
