// The transitions: guards that can be met, probabilities that can be read, effects that lead
// somewhere, and the references from the atoms back to them.
//
// A guard is read as its own literals, all or one of them by its operator, and as what the clauses
// of the plant make of them by unit propagation.
#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "model/StateVar.h"
#include "model/Transitionrt.h"
#include "model/labels.h"
#include "plant/findings.h"
#include "plant/numbering.h"
#include "plant/propagation.h"

namespace {

// What every transition is held against.
struct Surroundings {
    Holdings const& plant;
    s_runtime const* rt;  // null: a discrete plant
    Propagation const& clauses;
    bool const possible;  // the clauses leave a state; else that is told already
};

struct Subject {
    Comp const& comp;
    Transition const& transition;
    std::string name;
};

// ---- Probability and kind ----

void checkProbability(Subject const& subject, Findings& findings) {
    double const proba = subject.transition.proba;
    if (!(proba >= 0.0 && proba <= 1.0))
        findings.refuse(subject.name + " has the probability " +
                        (std::isnan(proba) ? "not a number" : textOf(makeReal(proba))) +
                        ": give one from 0 to 1.");
    else if (proba == 0.0)
        findings.warn(subject.name + " has the probability 0 and can never fire: give it one.");
    std::string const& type = subject.transition.type;
    if (type != transNominal && type != transFail)
        findings.refuse(subject.name + " is of kind \"" + type + "\": make it Nominal or Fail.");
}

// ---- Guard ----

// What a conjunction asks of one variable.
struct Demand {
    std::set<std::string> asked, forbidden;
};

// Why no value of *variable* satisfies it; "" when one does.
std::string contradiction(StateVar const& variable, Demand const& demand) {
    if (demand.asked.size() > 1)
        return "asks for " + joined({demand.asked.begin(), demand.asked.end()}) + " at once";
    for (std::string const& id : demand.asked)
        if (demand.forbidden.count(id) != 0)
            return "asks for " + id + " and forbids it";
    bool const allForbidden =
        demand.asked.empty() && demand.forbidden.size() == variable.getAtomLinks().size();
    return allForbidden ? "forbids every value of " + variable.name : "";
}

std::map<std::string, std::pair<StateVar const*, Demand>> demandsOf(StateFormula const& formula) {
    std::map<std::string, std::pair<StateVar const*, Demand>> demands;
    for (auto const& [sign, atom] : formula.getAtoms()) {
        auto& [variable, demand] = demands[atom->getStateVar()->name];
        variable = atom->getStateVar();
        (sign ? demand.asked : demand.forbidden).insert(atom->id);
    }
    return demands;
}

// False, and told, when the literals of a conjunction contradict each other.
bool checkSatisfiable(Subject const& subject, StateFormula const& guard, Findings& findings) {
    if (guard.operat == "or")
        return true;
    bool satisfiable = true;
    for (auto const& entry : demandsOf(guard)) {
        std::string const why = contradiction(*entry.second.first, entry.second.second);
        if (why.empty())
            continue;
        findings.refuse(subject.name + " can never fire: its guard " + why + ". Drop a literal.");
        satisfiable = false;
    }
    return satisfiable;
}

// The clauses that forbid all that would meet the guard; nothing when it may be met.
std::vector<std::size_t> clausesAgainst(Propagation const& clauses, StateFormula const& guard) {
    std::vector<Literal> literals;
    for (auto const& [sign, atom] : guard.getAtoms())
        literals.push_back({atom, sign});
    if (guard.operat != "or")
        return clauses.forbidding(literals);
    std::set<std::size_t> all;
    for (Literal const& literal : literals) {
        std::vector<std::size_t> const against = clauses.forbidding({literal});
        if (against.empty())
            return {};
        all.insert(against.begin(), against.end());
    }
    return {all.begin(), all.end()};
}

void checkAllowed(Surroundings const& around, Subject const& subject, StateFormula const& guard,
                  Findings& findings) {
    std::vector<std::size_t> const against =
        around.possible ? clausesAgainst(around.clauses, guard) : std::vector<std::size_t>{};
    if (!against.empty())
        findings.refuse(subject.name + " can never fire: what its guard asks for is forbidden by " +
                        nameOfClauses(against) + ". Drop a literal or change a clause.");
}

void checkRepetition(Subject const& subject, StateFormula const& guard, Findings& findings) {
    std::multiset<std::pair<std::string, bool>> literals;
    for (auto const& [sign, atom] : guard.getAtoms()) {
        literals.insert({atom->id, sign});
        if (literals.count({atom->id, sign}) == 2)
            findings.warn(subject.name + " names " + atom->id +
                          " twice in its guard: name it once.");
    }
}

void checkMode(Subject const& subject, Findings& findings) {
    Transition const& transition = subject.transition;
    if (transition.modeVar == nullptr || transition.preMode == nullptr)
        findings.refuse(subject.name +
                        " asks for no mode in its guard: begin it with the mode that it leaves.");
    else if (transition.modeVar->getComp() != &subject.comp)
        findings.refuse(subject.name + " moves " + transition.modeVar->name +
                        ": give it to the component of that variable.");
}

void checkGuard(Surroundings const& around, Subject const& subject, Findings& findings) {
    StateFormula const& guard = *subject.transition.pre;
    if (guard.operat != "and" && guard.operat != "or" && !guard.operat.empty())
        findings.refuse(subject.name + " can never fire: its guard joins literals by \"" +
                        guard.operat + "\". Write and or or.");
    if (!guard.getStateFormulas().empty())
        findings.warn(subject.name +
                      " has formulas within its guard, which are not read: write its literals "
                      "at the top.");
    checkMode(subject, findings);
    if (checkSatisfiable(subject, guard, findings))
        checkAllowed(around, subject, guard, findings);
    checkRepetition(subject, guard, findings);
}

// ---- Effect ----

void checkDirection(Subject const& subject, Findings& findings) {
    Transition const& transition = subject.transition;
    if (transition.modeVar == nullptr)
        return;
    if (transition.postMode == nullptr) {
        findings.refuse(subject.name + " leads to no value of " + transition.modeVar->name +
                        ": name the mode that it leads to.");
        return;
    }
    bool const stays = transition.postMode == transition.preMode;
    if (transition.idle && !stays)
        findings.warn(subject.name + " is idle and leads to " + transition.postMode->id +
                      ": let it stay, or do not call it idle.");
    if (!transition.idle && stays)
        findings.warn(subject.name + " stays in " + transition.postMode->id +
                      " and is not idle: call it so.");
}

void checkEffect(Subject const& subject, Findings& findings) {
    for (auto const& entry : demandsOf(*subject.transition.post)) {
        std::set<std::string> const& asked = entry.second.second.asked;
        if (asked.size() > 1)
            findings.refuse(subject.name + " leads to " + joined({asked.begin(), asked.end()}) +
                            " at once: keep one.");
    }
    checkDirection(subject, findings);
}

// ---- References from the atoms ----

bool knows(std::vector<Transition*> const& transitions, Transition const& transition) {
    return positionIn(transitions, &transition) >= 0;
}

// A negative literal stands for every other value of the variable.
void checkGuardReferences(Subject const& subject, Findings& findings) {
    for (auto const& [sign, atom] : subject.transition.pre->getAllSignedAtoms())
        for (Atom const* left : atom->getSiblings())
            if ((left == atom) == sign && !knows(left->getRefTransPre(), subject.transition)) {
                findings.refuse(subject.name + " has " + atom->id + " in its guard, and " +
                                left->id + " does not know it: call refAtomPre.");
                break;
            }
}

void checkEffectReferences(Subject const& subject, Findings& findings) {
    for (Atom const* atom : subject.transition.post->getAllAtoms())
        if (!knows(atom->getRefTransPost(), subject.transition))
            findings.refuse(subject.name + " leads to " + atom->id +
                            ", which does not know it: call refAtomPost.");
}

// ---- Mapping functions ----

bool hasVariable(s_runtime const& rt, std::string const& nom) {
    return std::any_of(rt.dico.begin(), rt.dico.end(), [&nom](auto const& variable) {
        return variable != nullptr && variable->nom == nom;
    });
}

bool isPooled(s_runtime const& rt, s_Condition const* condition) {
    return std::any_of(rt.condPool.begin(), rt.condPool.end(),
                       [condition](auto const& owned) { return owned.get() == condition; });
}

void checkMapping(Subject const& subject, s_runtime const& rt, MapFunc const& function,
                  Findings& findings) {
    if (function.guard != nullptr && !isPooled(rt, function.guard))
        findings.refuse(subject.name +
                        " has a mapping whose guard is no condition of the plant: use one.");
    for (s_mapfVar const& target : function.vars) {
        if (!hasVariable(rt, target.name))
            findings.refuse(subject.name + " maps " + target.name +
                            ", which is no variable: name one of dico.");
        if (target.expr < 0 || target.expr >= static_cast<int>(rt.mapExprs.size()))
            findings.refuse(subject.name + " maps " + target.name + " by expression " +
                            std::to_string(target.expr) + " of " +
                            std::to_string(rt.mapExprs.size()) + ": add it to mapExprs.");
    }
}

void checkMappings(Subject const& subject, s_runtime const* rt, Findings& findings) {
    auto const& functions = subject.transition.mapFuncs;
    if (rt == nullptr && !functions.empty())
        findings.refuse(subject.name +
                        " has mapping functions in a plant without a continuous side: drop them.");
    for (auto const& function : functions)
        if (rt != nullptr)
            checkMapping(subject, *rt, *function, findings);
}

// ---- All of it ----

bool atomsAreHeld(Holdings const& plant, StateFormula const& formula) {
    auto const atoms = formula.getAllAtoms();
    return std::all_of(atoms.begin(), atoms.end(),
                       [&plant](Atom const* atom) { return plant.holds(atom); });
}

// What the others rely on.
bool isWhole(Holdings const& plant, Subject const& subject, Findings& findings) {
    Transition const& transition = subject.transition;
    if (!transition.pre) {
        findings.refuse(subject.name + " has no guard: name the mode that it leaves.");
        return false;
    }
    if (!transition.post && (!transition.posts || transition.posts->empty())) {
        findings.refuse(subject.name + " has no effect: name the mode that it leads to.");
        return false;
    }
    bool const held = atomsAreHeld(plant, *transition.pre) &&
                      (!transition.post || atomsAreHeld(plant, *transition.post));
    if (!held)
        findings.refuse(subject.name +
                        " names an atom of no component: use the plant's own atoms.");
    return held;
}

void checkTransition(Surroundings const& around, Subject const& subject, Findings& findings) {
    checkProbability(subject, findings);
    checkMappings(subject, around.rt, findings);
    if (!isWhole(around.plant, subject, findings))
        return;
    checkGuard(around, subject, findings);
    checkGuardReferences(subject, findings);
    if (subject.transition.post) {
        checkEffect(subject, findings);
        checkEffectReferences(subject, findings);
    }
}

}  // namespace

void checkTransitions(Holdings const& plant, PlantParts const& parts, Findings& findings) {
    Propagation const clauses(plant, parts);
    bool const possible = clauses.forbidding({}).empty();
    Surroundings const around{plant, parts.runtime, clauses, possible};
    for (Comp const* comp : plant.comps)
        for (std::size_t i = 0; i < comp->getCompTransitions().size(); ++i)
            checkTransition(around,
                            {*comp, *comp->getCompTransitions()[i], nameOfTransition(*comp, i)},
                            findings);
}
