// Post probabilities of transitions, the entropy that ranks the candidates of a conflict, and the
// rough likelihood of observations.
#include <algorithm>
#include <cassert>
#include <cmath>

#include "model/CommandVar.h"
#include "model/labels.h"
#include "reasoning/itmsrt.h"

void itms::initStateProbas(State* state) {
    for (auto const& entry : state->comps)
        for (auto const& transition : entry.second->transitions)
            state->postProbs[transition->id] = transition->proba;
}

void itms::sortPostProbs(State* state) {
    state->sortedPostProbs.clear();
    for (auto const& [id, probability] : state->postProbs)
        state->sortedPostProbs.insert({probability, id});
    assert(state->sortedPostProbs.size() == state->postProbs.size());
}

namespace {

// Calls *act* for each transition of the state's components that has a weight.
template <typename Act>
void forEachWeighted(State const* state, Act act) {
    for (auto const& entry : state->comps)
        for (auto const& transition : entry.second->transitions)
            if (double const weight = state->getTransitionPostProb(transition.get()); weight != 0.0)
                act(transition.get(), weight);
}

// The sum of p log p over the non-zero entries, in the order of the components' transitions.
double sumOfLogs(State const* state, State::PostProbs const& table) {
    double sum = 0.0;
    forEachWeighted(state, [&](Transition const* transition, double) {
        double const entry = table.at(transition->id);
        if (entry != 0.0)
            sum += std::log(entry) * entry;
    });
    return sum;
}

struct Learnt {
    std::shared_ptr<State::PostProbs> table;
    double mass;
};

// The weights of the transitions once the atom holds, divided by their mass. The mass may be 0:
// then every weight is not-a-number or, with *guarded* (rule `likelihood`), stays as it was, since
// what no transition allows teaches nothing about them.
template <typename Chance>
Learnt learn(State const* state, bool guarded, Chance chance) {
    Learnt learnt{std::make_shared<State::PostProbs>(), 0.0};
    forEachWeighted(state, [&](Transition const* transition, double weight) {
        double const joint = weight * chance(transition);
        (*learnt.table)[transition->id] = joint;
        learnt.mass += joint;
    });
    assert(!(learnt.mass < 0.0));
    if (guarded && learnt.mass == 0.0) {
        forEachWeighted(state, [&](Transition const* transition, double weight) {
            (*learnt.table)[transition->id] = weight;
        });
        return learnt;
    }
    for (auto& entry : *learnt.table)
        entry.second /= learnt.mass;
    return learnt;
}

}  // namespace

double itms::entropy(StateVar const* variable, State* state) {
    assert(variable != nullptr);
    double total = 0.0;
    for (Atom const* atom : variable->getAtomLinks()) {
        Learnt const learnt = learn(state, rules.likelihood, [&](Transition const* transition) {
            return computeCondProbRough(atom, transition);
        });
        state->atomPostProbs[atom->getId()] = learnt.table;
        total = total - learnt.mass * sumOfLogs(state, *learnt.table);
    }
    return total;
}

double itms::entropy(Atom const* atom, State* state) {
    Learnt const learnt = learn(state, rules.likelihood, [](Transition const*) { return 1.0; });
    state->atomPostProbs[atom->getId()] = learnt.table;
    return -sumOfLogs(state, *learnt.table);
}

double itms::computeCondProbRough(Atom const* atom, Transition const* transition) {
    if (piTable && piTable->getPIs(atom) != nullptr) {
        out << "rough proba computation - strange end\n";
        return 0.0;
    }
    SignedAtoms const effect =
        transition->post ? transition->post->getAllSignedAtoms() : SignedAtoms{};
    if (checkInImportedComps(atom, effect))
        return checkInOpposites(atom, effect) ? 1.0 : 0.0;
    assert(!atom->getSiblings().empty());
    return 1.0 / static_cast<double>(atom->getSiblings().size());
}

bool itms::checkInOpposites(Atom const* atom, SignedAtoms const& atoms) {
    for (auto const& entry : atoms)
        for (Clause const* clause : entry.second->clauses) {
            std::vector<Atom*> const opposites = clause->getOpposites(entry.second);
            if (std::find(opposites.begin(), opposites.end(), atom) != opposites.end())
                return true;
        }
    return false;
}

namespace {

// Some clause of an atom of *comp* mentions an atom of *other*.
bool shareClause(Comp const* comp, Comp const* other) {
    for (auto const& variable : comp->getStateVariables())
        for (Atom const* atom : variable->getAtomLinks())
            for (Clause const* clause : atom->clauses)
                for (auto const& literal : clause->atoms)
                    if (literal.second->getVarComp() == other)
                        return true;
    return false;
}

// A neighbour that no clause links is left at the uniform chance: were it counted as imported, a
// model whose components meet in their guards alone would have only chances of 0, and no measure of
// uncertainty at all.
bool imports(Comp const* comp, Comp const* other) {
    for (CommandVar const* command : comp->importedCommands)
        if (command->getComp() == other)
            return true;
    return std::find(comp->neighbours.begin(), comp->neighbours.end(), other) !=
               comp->neighbours.end() &&
           shareClause(comp, other);
}

}  // namespace

bool itms::checkInImportedComps(Atom const* atom, SignedAtoms const& atoms) {
    Comp const* owner = atom->getVarComp();
    return std::any_of(atoms.begin(), atoms.end(), [owner](auto const& entry) {
        Comp const* comp = entry.second->getVarComp();
        return comp == owner || imports(comp, owner);
    });
}

void itms::computeObsCondRough(State* state) {
    state->obsProb = 1.0;
    for (auto const& observed : state->elts) {
        if (observed.second == nullptr || !observed.second->isHeldTrue())
            continue;
        double sum = 0.0;
        for (auto const& mode : state->elts) {
            if (mode.second == nullptr || mode.second->getVarType() != typeMode ||
                !mode.second->evalTrajEl())
                continue;
            for (Transition const* transition : mode.second->atom->getRefTransPost())
                sum += computeCondProbRough(observed.second->atom, transition);
        }
        state->obsProb *= sum;
    }
}

std::vector<Atom*> itms::predictedAtoms(Atom* atom, std::vector<Atom*> list) {
    auto const add = [&list](Atom* member) {
        if (!inVector(member, &list))
            list.push_back(member);
    };
    for (Clause const* clause : atom->clauses)
        for (Atom* opposite : clause->getOpposites(atom))
            add(opposite);
    add(atom);
    return list;
}

double itms::probaCondObsAtom(Atom* atom, std::vector<Atom*> const& observed) {
    std::vector<Atom*> const predicted = predictedAtoms(atom, {});
    auto const met = std::count_if(predicted.begin(), predicted.end(),
                                   [&](Atom* member) { return inVector(member, &observed); });
    return static_cast<double>(met) / static_cast<double>(observed.size());
}

bool itms::evalStateFormula(StateFormula const* formula, Trajectory const* trajectory, int t) {
    bool const conjunction = formula->operat == "and" || formula->operat.empty();
    if ((!conjunction && formula->operat != "or") || formula->getAtoms().empty())
        return false;
    bool result = conjunction;
    for (auto const& [sign, atom] : formula->getAtoms()) {
        TrajEl const* element = trajectory->getElt(atom->getId(), t, 0);
        bool const holds = (element != nullptr && element->evalTrajEl()) == sign;
        result = conjunction ? result && holds : result || holds;
    }
    return result;
}
