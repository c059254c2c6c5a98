// The likelihood of observations under the rule `likelihood`.
//
// Classic (computeObsCondRough): for each value that is held true, the sum over the transitions
// into the modes of the state of a rough chance each. It counts transitions and is no probability:
// it grows with the number of ways into a mode, and with the number of values that a history
// happens to hold. Two histories of equal failures then come out three times as likely as each
// other.
//
// Under the rule it is the chance of what was seen given the modes, the commands and the conditions
// of the continuous side: 1 where they entail it, and where they say nothing, the share of what was
// seen in the values that its variable has. (What they exclude does not come here: no state holds
// it.) What follows is found by unit propagation over the clauses from those given facts alone; the
// labels of everything else rest on the observation itself. That misses no consequence of clauses
// with at most one conclusion, as compiled plants have them, and where it misses one the state
// weighs less, never more. What is seen of several variables is taken in turn, each given those
// before: first those that no clause concludes, such as the inputs of a circuit, whose values are
// equally likely; then the others, by which what follows from modes and inputs together counts
// as certain. With modes that entail what is seen, the classic case of diagnosis, the
// likelihood is 1 and histories compare by their moves.
#include <algorithm>
#include <map>

#include "model/StateVar.h"
#include "model/labels.h"
#include "reasoning/itmsrt.h"

namespace {

bool isGiven(Atom const* atom) {
    std::string const type = atom->getVarType();
    return type == typeMode || type == typeCommand || type == typeCond;
}

bool isSeen(TrajEl const* element) {
    return element->lock == LOCK_TRUE_PERM || element->lock == LOCK_FALSE_PERM;
}

// What the given facts of a state entail, and then what was seen.
class Entailed {
public:
    Entailed(ClauseNet const& net, StateSite const& site) : net(net), facts(net) {
        for (std::size_t place = 0; place < net.atoms().size(); ++place)
            if (isGiven(net.atoms()[place]))
                takeLabel(static_cast<int>(place), newestLabel(net.atoms()[place], site));
        facts.propagate();
    }
    // What was seen of a variable is given from here on.
    void take(StateVar const* variable, State const* state) {
        for (Atom const* atom : variable->getAtomLinks())
            if (TrajEl const* element = state->getElt(atom->getId()); element && isSeen(element))
                facts.take(net.placeOf(atom), element->lock == LOCK_TRUE_PERM);
    }
    void propagate() { facts.propagate(); }
    bool isKnown(Atom const* atom, bool value) const {
        return facts.truthOf(net.placeOf(atom)) == (value ? ClauseNet::yes : ClauseNet::no);
    }
    // Whether a clause over several variables says what the variable is.
    bool isConcluded(StateVar const* variable) const {
        std::vector<Atom*> const& atoms = variable->getAtomLinks();
        return std::any_of(atoms.begin(), atoms.end(),
                           [this](Atom const* atom) { return net.isConcluded(net.placeOf(atom)); });
    }

private:
    void takeLabel(int place, std::string const& label) {
        if (label == labelTrue || label == labelFalse)
            facts.take(place, label == labelTrue);
    }
    static std::string newestLabel(Atom const* atom, StateSite const& site) {
        TrajEl const* element = site.state->getElt(atom->getId());
        if (element == nullptr && site.timestep > site.trajectory->firstTime)
            element = site.trajectory->getElt(atom->getId(), site.timestep, -1);
        return element != nullptr ? element->getLabel() : labelUnknown;
    }

    ClauseNet const& net;
    Entailment facts;
};

// The chance of what was seen of one variable.
double likelihoodOf(StateVar const* variable, State const* state, Entailed const& entailed) {
    std::size_t open = 0;  // values that the given facts leave possible
    std::size_t seen = 0;  // those of them that agree with what was seen
    for (Atom const* atom : variable->getAtomLinks()) {
        TrajEl const* element = state->getElt(atom->getId());
        if (entailed.isKnown(atom, true))
            return 1.0;
        if (entailed.isKnown(atom, false))
            continue;
        ++open;
        if (element == nullptr || !element->isHeldFalse())
            ++seen;
    }
    return open == 0 || seen == 0 ? 1.0 : static_cast<double>(seen) / static_cast<double>(open);
}

}  // namespace

void itms::computeObsLikelihood(StateSite const& site) {
    State* state = site.state;
    std::map<std::string, StateVar const*> variables;  // by name: the order is then no accident
    for (auto const& entry : state->elts)
        if (entry.second != nullptr && isSeen(entry.second) && !isGiven(entry.second->atom))
            variables[entry.second->getStateVar()->name] = entry.second->getStateVar();
    state->obsProb = 1.0;
    if (variables.empty())
        return;
    Entailed entailed(clauseNet(), site);
    for (bool const follows : {false, true}) {
        for (auto const& entry : variables) {
            if (entailed.isConcluded(entry.second) != follows)
                continue;
            state->obsProb *= likelihoodOf(entry.second, state, entailed);
            entailed.take(entry.second, state);
            if (follows)
                entailed.propagate();
        }
        entailed.propagate();
    }
}
