// What modes entail is derived from them, under the rule `derived`.
//
// Classic (unitPropagate): a clause that is violated is repaired by flipping one of its literals,
// in a copy of the state for each. What goes wrong: the value of a wire is repaired like a mode is,
// so that a change of the inputs of a circuit asks of each gate behind them whether its mode, its
// output or one of its other inputs is to change, and all combinations are followed. A circuit of
// 160 gates is not searched to an end.
//
// Under the rule only what nothing entails is supposed, and may be given up: modes, and what no
// clause asserts, such as an input that is not seen. Everything else follows from that and from
// what was asserted or is held. Where it contradicts what was seen, a clause must fail whose
// literals rest on certain suppositions, and one of these is to be given up: the conflicts and
// hitting sets of de Kleer and Williams, "Diagnosing multiple faults", Artificial Intelligence 32
// (1987), and Reiter, "A theory of diagnosis from first principles", the same volume. Sets of fewer
// changes come first, and a set that holds another answer is none, so that nothing changes without
// need. It is sound and complete where unit propagation decides every proposition, as it does in a
// plant whose outputs follow from modes and inputs; wherever it leaves one open, the classic way is
// taken.
//
// Plants with a continuous side are left to the classic way: their conditions are neither entailed
// nor supposed, but told.
#include <algorithm>
#include <cassert>
#include <deque>
#include <optional>
#include <set>

#include "model/StateVar.h"
#include "model/labels.h"
#include "reasoning/clause_net.h"
#include "reasoning/itmsrt.h"
#include "support/memory_watch.h"

namespace {

// Two faults among 160 gates take some twenty thousand sets, at a fraction of a millisecond each. A
// search follows two hundred answers at most (covering_histories.cpp); each is a copy of the state.
constexpr unsigned mostSets = 40000, mostAnswers = 200;

// Suppositions that are given up: what held, and what holds instead, by place.
using Changes = std::map<int, int>;

// Where the elements come from that the state does not hold, and whether they keep their locks.
struct Origin {
    Trajectory* trajectory;
    int timestep;
    bool keepLocks;
};

class Derivation {
public:
    Derivation(ClauseNet const& net, ItmsRes const& base, SearchLimits const& limits,
               Origin const& origin, Plant const& plant)
        : net(net),
          base(base),
          limits(limits),
          origin(origin),
          allowed(limits.maxRank - projectedRank(origin.trajectory, base.state.get()) + 1.0) {
        for (StateVar const* variable : plant.stateVars)
            if (understood)
                understood = note(variable);
    }

    // Every least set of changes that is consistent, with what it entails. Nothing when the clauses
    // leave something open.
    struct Answer {
        Changes changes;
        Entailment facts;
    };
    std::optional<std::vector<Answer>> answers(Host& host) {
        if (!understood)
            return std::nullopt;
        std::vector<Answer> found;
        std::set<Changes> met{{}};
        for (std::deque<Changes> open{{}}; !open.empty(); open.pop_front()) {
            watchMemory(host);
            Changes const& changes = open.front();
            if (holdsAnswer(changes, found))
                continue;
            if (found.size() >= mostAnswers) {
                cut = true;
                break;
            }
            Entailment facts = entailedBy(changes);
            if (facts.isContradicted()) {
                for (Changes& next : furtherChanges(changes, facts)) {
                    cut = cut || met.size() >= mostSets;
                    if (!cut && met.insert(next).second)
                        open.push_back(std::move(next));
                }
            } else if (leavesOpen(facts)) {
                return std::nullopt;
            } else {
                found.push_back({changes, std::move(facts)});
            }
        }
        return found;
    }
    // Whether more would be found.
    bool wasCut() const { return cut; }

    TrajEl const* elementOf(Atom const* atom) const {
        if (TrajEl const* own = base.state->getElt(atom->getId()))
            return own;
        return origin.trajectory->getElt(atom->getId(), origin.timestep, -1);
    }

private:
    bool isOwn(TrajEl const* element) const {
        return base.state->getElt(element->getId()) == element;
    }
    bool isChanged(TrajEl const* element) const {
        return base.already_changed.count(element->getId()) != 0;
    }

    // False when the labels of the variable are none to start from.
    bool note(StateVar const* variable) {
        if (variable->type == typeCond)
            return false;
        TrajEl const* holding = nullptr;
        bool asserted = false, mentioned = false, concluded = false;
        for (Atom const* atom : variable->getAtomLinks()) {
            int const number = net.placeOf(atom);
            TrajEl const* element = elementOf(atom);
            if (number == ClauseNet::unmentioned || element == nullptr)
                return false;
            asserted = asserted || isChanged(element);
            mentioned = mentioned || net.isShared(number);
            concluded = concluded || net.isConcluded(number);
            if (element->isLabelled(labelTrue) && !isDenied(element))
                holding = element;
            noteFact(element, number);
        }
        if (asserted || (concluded && variable->type != typeMode))
            return true;  // it follows
        if (holding == nullptr)
            return false;
        suppose(variable, holding, mentioned || variable->type == typeMode);
        return true;
    }

    // Asserted on the way here, or held at what it is.
    void noteFact(TrajEl const* element, int number) {
        bool const isKnown = !element->isLabelled(labelUnknown);
        if (isKnown && (isChanged(element) || isHeld(element)))
            given.push_back({number, element->isLabelled(labelTrue)});
    }
    // One that would be brought forward comes without its lock, but for those that are kept.
    bool hasLock(TrajEl const* element) const {
        return isOwn(element) || (origin.keepLocks && element->getVarType() != typeObservable);
    }
    bool isHeld(TrajEl const* element) const {
        return hasLock(element) &&
               (element->isLabelled(labelTrue) ? element->isHeldTrue() : element->isHeldFalse());
    }
    bool isDenied(TrajEl const* element) const {
        return hasLock(element) && element->isHeldFalse();
    }

    bool mayLeave(TrajEl const* holding) const {
        if (isHeld(holding))
            return false;
        if (!limits.observing || holding->getVarType() != typeMode)
            return true;
        // What a transition has brought is not undone by what is seen behind it.
        return isOwn(holding) ? holding->prevTrans == nullptr : holding->atom->idleTrans == nullptr;
    }
    bool mayBecome(StateVar const* variable, TrajEl const* element) const {
        if (!element->isLabelled(labelFalse) || isDenied(element))
            return false;
        return limits.observing || variable->type != typeCommand ||
               element->atom->value == valueNone;
    }
    void suppose(StateVar const* variable, TrajEl const* holding, bool matters) {
        std::vector<int>& alternatives = suppositions[net.placeOf(holding->atom)];
        if (matters && mayLeave(holding))
            for (Atom const* atom : variable->getAtomLinks())
                if (mayBecome(variable, elementOf(atom)))
                    alternatives.push_back(net.placeOf(atom));
    }

    Entailment entailedBy(Changes const& changes) const {
        Entailment entailed(net);
        for (auto const& [place, holds] : given)
            entailed.take(place, holds);
        for (auto const& entry : suppositions) {
            auto const change = changes.find(entry.first);
            entailed.take(change == changes.end() ? entry.first : change->second, true);
        }
        entailed.propagate();
        return entailed;
    }
    // One proposition that is neither entailed nor excluded.
    bool leavesOpen(Entailment const& entailed) const {
        for (int place = 0; place < static_cast<int>(net.atoms().size()); ++place)
            if (entailed.truthOf(place) == ClauseNet::open)
                return true;
        return false;
    }

    bool isFailure(int place) const {
        return net.atoms()[static_cast<std::size_t>(place)]->failure;
    }
    bool mayHappen(Changes const& changes) const {
        auto const failures =
            std::count_if(changes.begin(), changes.end(),
                          [this](auto const& change) { return isFailure(change.second); });
        return failures == 0 || static_cast<double>(failures) <= allowed;
    }
    std::vector<Changes> furtherChanges(Changes const& changes, Entailment const& facts) const {
        std::vector<Changes> further;
        for (int const place : facts.blamed()) {
            auto const supposed = suppositions.find(place);
            if (supposed == suppositions.end() || changes.count(place) != 0)
                continue;
            for (int const alternative : supposed->second) {
                Changes next = changes;
                next[place] = alternative;
                if (mayHappen(next))
                    further.push_back(std::move(next));
            }
        }
        return further;
    }
    static bool holdsAnswer(Changes const& changes, std::vector<Answer> const& found) {
        return std::any_of(found.begin(), found.end(), [&](Answer const& answer) {
            return std::includes(changes.begin(), changes.end(), answer.changes.begin(),
                                 answer.changes.end());
        });
    }

    ClauseNet const& net;
    ItmsRes const& base;
    SearchLimits const& limits;
    Origin origin;
    double allowed;  // failures beside those of the history
    bool understood = true;
    bool cut = false;
    std::vector<std::pair<int, bool>> given;
    // Of each variable that keeps its value unless it is given up: by the place of what holds,
    // those of what may hold instead. None when it is held.
    std::map<int, std::vector<int>> suppositions;
};

char const* labelOf(ClauseNet::Truth truth) {
    assert(truth != ClauseNet::open);
    return truth == ClauseNet::yes ? labelTrue : labelFalse;
}

}  // namespace

ClauseNet const& itms::clauseNet() {
    if (itsClauseNet == nullptr)
        itsClauseNet = std::make_unique<ClauseNet const>(cls);
    return *itsClauseNet;
}

// The element takes its label from what is entailed, and rests on no clause.
void itms::settle(TrajEl* element, char const* label, StateSite const& site) {
    removeFromSupport(element, site);
    element->support = nullptr;
    element->propagationNumber = 0;
    element->setLabel(label);
}

// The branch in which the supposition is given up: what a change of the mode means for the rank and
// for what is known, and that the search does not change it again.
void itms::giveUp(Atom const* left, Atom const* taken, ItmsRes& branch, StateSite const& site) {
    if (left->getVarType() == typeMode && left->value == valueUnknown)
        site.state->setUnknown();
    if (taken->failure)
        site.state->failCount += 1.0;
    for (Atom const* atom : {left, taken})
        branch.already_changed[atom->getId()] = getElt(atom->getId(), site);
}

bool itms::deriveBranches(ItmsRes const& base, ItmsResults& results, SearchLimits const& limits,
                          Trajectory* trajectory, int timestep) {
    bool const isDiscrete = plant.tavro_rt == nullptr;
    if (!rules.derived || !isDiscrete || piTable != nullptr || base.already_changed.empty())
        return false;
    Derivation derivation(clauseNet(), base, limits, {trajectory, timestep, keepLocks}, plant);
    auto const answers = derivation.answers(host);
    if (!answers)
        return false;
    if (derivation.wasCut())
        err << "search: stopped after " << answers->size() << " answers, more may explain this\n";
    std::vector<Atom const*> const& atoms = clauseNet().atoms();
    for (auto const& [changes, facts] : *answers) {
        auto branch = std::make_unique<ItmsRes>(base.state.get(), std::queue<Clause*>());
        branch->already_changed = copyState(base.already_changed, branch->state.get());
        StateSite const site{branch->state.get(), trajectory, timestep};
        for (auto const& [left, taken] : changes)
            giveUp(atoms[static_cast<std::size_t>(left)], atoms[static_cast<std::size_t>(taken)],
                   *branch, site);
        for (std::size_t place = 0; place < atoms.size(); ++place) {
            char const* label = labelOf(facts.truthOf(static_cast<int>(place)));
            if (!derivation.elementOf(atoms[place])->isLabelled(label))
                settle(getElt(atoms[place]->getId(), site), label, site);
        }
        finishBranch(std::move(branch), results, {}, trajectory, timestep);
    }
    return true;
}
