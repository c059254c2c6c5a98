// Clauses by number, and labels read back.
#include <algorithm>

#include "fixtures/the_run.h"
#include "model/labels.h"
#include "search/engine_parts_fixture.h"
#include "trajectory/DataManagerrt.h"

namespace random_models {

void addRule(Comp* comp, Atom* conclusion, std::vector<Atom*> const& premises) {
    Clause* clause = thePlant().addClause(std::make_unique<Clause>(comp));
    clause->addAtomRef(conclusion, false);
    for (Atom* premise : premises)
        clause->addAtomRef(premise, true);
}

int valueOf(Trajectory const* trajectory, StateVar const* variable, int step,
            std::vector<std::string>& errors) {
    int value = 0;
    int holding = 0;
    std::string labels;
    for (Atom const* atom : variable->getAtomLinks()) {
        TrajEl const* element = trajectory->getElt(atom->getId(), step, 0);
        labels += " " + (element != nullptr ? element->getLabel() : "missing");
        if (element == nullptr || !element->evalTrajEl())
            continue;
        value = atom->linkIndex;
        ++holding;
    }
    if (holding != 1)
        errors.push_back("step " + std::to_string(step) + ": " + variable->getName() + " is" +
                         labels);
    return value;
}

void checkClauses(Trajectory const* trajectory, int step, std::vector<std::string>& errors) {
    for (auto const& clause : thePlant().cls) {
        bool const satisfied =
            std::any_of(clause->atoms.begin(), clause->atoms.end(), [&](auto const& literal) {
                TrajEl const* element = trajectory->getElt(literal.second->getId(), step, 0);
                return element != nullptr &&
                       element->isLabelled(literal.first ? labelFalse : labelTrue);
            });
        if (satisfied)
            continue;
        errors.push_back("step " + std::to_string(step) + ": violated:");
        for (auto const& [negated, atom] : clause->atoms)
            errors.back() += std::string(negated ? " not " : " ") + atom->getId();
    }
}

}  // namespace random_models
