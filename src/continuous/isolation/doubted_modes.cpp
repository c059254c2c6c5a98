// The rule `suspects`: what does not act, or asks for several modes, is accused, too.
//
// The classic rule. The suspects of a misbehaving measure are the influences upstream that have
// acted, and what is in doubt of one is a disjunction of modes under which it acts: they are taken
// to be false. What goes wrong. A fault that only adds an influence, such as a leak beside a
// balance that holds in every mode, has no suspect that could lead to it: the alarm comes, and
// nothing explains it. And of an influence that acts under a conjunction, two modes at once, only a
// mode that stands in a disjunction below it is ever in doubt.
//
// The rule. An influence is what it is, acting or resting, by each of the mode variables that its
// condition asks for. So a suspect puts each of them in doubt by itself: the variable is taken to
// have none of the values under which the influence, with all else as it stands, would be as it is.
// An influence upstream that rests is a suspect, accused of acting, when that leaves a value under
// which it acts for certain and into which a transition leads. So the covering search looks for
// histories in which the condition holds. The mode `unknown`, in which it may act, is left as well.
//
// What an acting suspect of the measure leads to anyway is not accused twice: when its modes in
// doubt are among those of the resting one, every history that changes the one is found by the
// other. Most plants, where each fault takes something away, are so diagnosed as without the rule.
//
// Why it is sound. Only suspects are added, and each history that comes of them is replayed against
// the measures like any other. A suspect changes one mode: of two failures that only together make
// it act, or rest, nothing is found by it.
#include <algorithm>

#include "continuous/isolation.h"
#include "continuous/sorn-runt.h"
#include "model/Atom.h"
#include "model/StateVar.h"
#include "model/Transitionrt.h"

namespace {

using Atoms = std::vector<Atom*>;

// The mode variables that a condition asks for, each once.
void collectModes(s_Condition const* condition, std::vector<StateVar*>& modes) {
    if (condition == nullptr)
        return;
    collectModes(condition->left, modes);
    collectModes(condition->right, modes);
    if (condition->kind != COND_ATOM || condition->atom == nullptr ||
        condition->atom->getVarType() != typeMode)
        return;
    StateVar* variable = condition->atom->getStateVar();
    if (std::find(modes.begin(), modes.end(), variable) == modes.end())
        modes.push_back(variable);
}

// A runtime in which a mode variable is taken to have a value, as long as this lives.
class Supposing {
public:
    Supposing(s_runtime* rt, Atom const* value) {
        for (auto const& condition : rt->condPool)
            if (condition->kind == COND_ATOM && condition->atom != nullptr &&
                condition->atom->getStateVar() == value->getStateVar()) {
                before.emplace_back(condition.get(), condition->val);
                condition->val = condition->atom == value ? 1 : 0;
            }
    }
    ~Supposing() {
        for (auto const& [condition, value] : before)
            condition->val = value;
    }
    Supposing(Supposing const&) = delete;
    Supposing& operator=(Supposing const&) = delete;

private:
    std::vector<std::pair<s_Condition*, boolVal>> before;
};

bool canBeEntered(Atom const* value) {
    auto const& into = value->getRefTransPost();
    return std::any_of(into.begin(), into.end(),
                       [](Transition const* move) { return !move->idle; });
}

// The values of the mode under which the condition stays as it is; none when no transition leads
// to one under which it certainly does not.
Atoms valuesInDoubt(s_runtime* rt, s_Condition* condition, StateVar const& mode, Truth asItIs) {
    Atoms values;
    bool canChange = false;
    for (Atom* value : mode.getAtomLinks()) {
        Supposing const supposing(rt, value);
        Truth const truth = sn_truthOf(condition, rt, sn_certainTruth);
        if (truth == asItIs)
            values.push_back(value);
        else if (truth != Truth::OPEN && canBeEntered(value))
            canChange = true;
    }
    return canChange ? values : Atoms{};
}

// Per mode variable of the suspect's condition. None where the influence is by now the other way.
std::vector<Atoms> modesInDoubt(s_runtime* rt, Conflict const& suspect) {
    s_Condition* condition = suspect.influence->cond;
    Truth const asItIs = suspect.absent ? Truth::FALSE : Truth::TRUE;
    if (condition == nullptr || sn_truthOf(condition, rt, sn_certainTruth) != asItIs)
        return {};
    std::vector<StateVar*> modes;
    collectModes(condition, modes);
    std::vector<Atoms> found;
    for (StateVar const* mode : modes)
        if (Atoms values = valuesInDoubt(rt, condition, *mode, asItIs); !values.empty())
            found.push_back(std::move(values));
    return found;
}

bool contains(Atoms const& values, Atoms const& part) {
    return std::all_of(part.begin(), part.end(), [&values](Atom const* atom) {
        return std::find(values.begin(), values.end(), atom) != values.end();
    });
}

// Whether taking what is in *known* to be false finds all that *values* would.
bool isCovered(Atoms const& values, std::vector<Atoms> const& known) {
    return std::any_of(known.begin(), known.end(), [&values](Atoms const& other) {
        return !other.empty() && contains(values, other);
    });
}

}  // namespace

void addAbsentSuspects(s_runtime* rt, Suspects const& resting, Suspects& conflicts) {
    if (resting.empty())
        return;
    std::vector<Atoms> known;
    for (auto const& suspect : conflicts)
        for (Atoms& values : modesInDoubt(rt, *suspect))
            known.push_back(std::move(values));
    for (auto const& influence : resting) {
        auto absent = std::make_shared<Conflict>(*influence);
        absent->absent = true;
        std::vector<Atoms> const doubted = modesInDoubt(rt, *absent);
        if (std::any_of(doubted.begin(), doubted.end(),
                        [&known](Atoms const& values) { return !isCovered(values, known); }))
            conflicts.push_back(std::move(absent));
    }
}

void addDoubtedModes(s_runtime* rt, Conflict const& suspect) {
    for (Atoms& values : modesInDoubt(rt, suspect))
        if (!isCovered(values, *rt->bridgeConflicts))
            rt->bridgeConflicts->push_back(std::move(values));
}
