// The conditions that bound a variable: they are all listed, the engine splits the variable at
// them, none lies outside the variable's domain, and together they leave no gap and no overlap.
//
// Only thresholds that are constants can be compared before a run; others are passed over.
#include <algorithm>
#include <set>

#include "model/labels.h"
#include "plant/findings.h"
#include "plant/numbering.h"
#include "plant/spaces.h"

namespace {

std::string textOf(range const& r) {
    s_Objet value;
    value.type = OBJ_RANGE;
    value.rng = r;
    return textOf(value);
}

std::string where(range const& r) {
    return (r.inf == r.sup ? " is " : " lies in ") + textOf(r);
}

// ---- Lists ----

std::string textOfNumbers(std::vector<int> const& numbers) {
    std::vector<std::string> words;
    for (int const number : numbers)
        words.push_back(std::to_string(number));
    return joined(words);
}

// What stands in varConds bounds the variable.
bool checkEntries(s_runtime const& rt, s_Variable const& variable, Findings& findings) {
    bool valid = true;
    std::set<int> seen;
    for (int const number : variable.varConds) {
        std::string const text = nameOf(variable) + " has " + std::to_string(number);
        if (number < 0 || number >= static_cast<int>(rt.condi.size()))
            findings.refuse(text +
                            " in varConds, which is no condition: write the conditions that "
                            "bound it.");
        else if (!bounds(rt.condi[static_cast<std::size_t>(number)], &variable))
            findings.refuse(text +
                            " in varConds, a condition that does not compare it: take it "
                            "out.");
        else if (!seen.insert(number).second)
            findings.refuse(text + " twice in varConds: write it once.");
        else
            continue;
        valid = false;
    }
    return valid;
}

// Every condition that tells an atom where the variable lies is there.
bool checkComplete(s_runtime const& rt, s_Variable const& variable, Findings& findings) {
    std::vector<int> missing;
    for (int const number : conditionsBounding(rt, &variable))
        if (std::find(variable.varConds.begin(), variable.varConds.end(), number) ==
            variable.varConds.end())
            missing.push_back(number);
    if (!missing.empty())
        findings.refuse(nameOf(variable) + " is bounded by condition " + textOfNumbers(missing) +
                        " too: write it in varConds.");
    return missing.empty();
}

// The engine splits a variable only where its place in the network knows the constraints.
void checkSplit(s_runtime const& rt, s_Variable const& variable, Findings& findings) {
    bool const split = std::any_of(rt.gV.begin(), rt.gV.end(), [&](s_GVar const* gvar) {
        return gvar->kind == GV_VARIABLE && gvar->var == &variable;
    });
    bool const constrained = std::any_of(rt.aC.begin(), rt.aC.end(), [&](s_Expr const* constraint) {
        return constraint->gvar != nullptr && constraint->gvar->var == &variable;
    });
    if (!variable.varConds.empty() && !split)
        findings.refuse(nameOf(variable) +
                        " is bounded by conditions and is not in gV: add it there.");
    if (variable.varConds.empty() && split && constrained)
        findings.refuse(nameOf(variable) +
                        " has constraints and no condition that bounds it: link its conditions to "
                        "atoms.");
}

// ---- Spaces ----

// A value of a discrete variable, and where a continuous one lies when it holds.
struct Case {
    Atom const* atom;
    Space space;
};

// The linked conditions on one discrete variable that bound *variable*; nothing when one of them
// is not known before a run.
std::optional<std::vector<Case>> casesOf(s_runtime const& rt, s_Variable const& variable,
                                         StateVar const& discrete) {
    std::vector<Case> cases;
    for (Atom const* atom : discrete.getAtomLinks())
        for (int const number : variable.varConds) {
            s_Condition const& condition = *rt.condi[static_cast<std::size_t>(number)];
            if (condition.atom != atom)
                continue;
            std::optional<Space> const space = spaceOf(condition, &variable);
            if (!space)
                return std::nullopt;
            cases.push_back({atom, *space});
        }
    return cases;
}

void checkEmptiness(s_Variable const& variable, Case const& one, Findings& findings) {
    if (one.space.empty)
        findings.refuse(nameOf(*one.atom) + " can never hold, since no value of " + variable.nom +
                        " lies between its thresholds: put the lower one first.");
}

void checkReachable(s_Variable const& variable, Case const& one, Findings& findings) {
    if (!variable.domain || !isRange(*variable.domain) || !isSound(*variable.domain) ||
        one.space.empty)
        return;
    if (intersection(one.space, {false, variable.domain->rng}).empty)
        findings.refuse(nameOf(*one.atom) + " can never hold, since it asks for " +
                        textOf(one.space.where) + " of " + variable.nom +
                        ", which has the domain " + textOf(*variable.domain) +
                        ": move one of them.");
}

void checkOverlap(s_Variable const& variable, StateVar const& discrete, Case const& one,
                  Case const& other, Findings& findings) {
    Space const common = intersection(one.space, other.space);
    if (one.atom != other.atom && !common.empty)
        findings.refuse(nameOf(discrete) + " is " + one.atom->value + " as well as " +
                        other.atom->value + " while " + variable.nom + where(common.where) +
                        ": let the thresholds meet.");
}

void checkGaps(s_Variable const& variable, StateVar const& discrete, std::vector<Case> const& cases,
               Findings& findings) {
    std::vector<Space> spaces;
    for (Case const& one : cases)
        spaces.push_back(one.space);
    for (range const& gap : gapsBetween(spaces, variable.domain->rng))
        findings.refuse(nameOf(discrete) + " has no value while " + variable.nom + where(gap) +
                        ": let the thresholds meet.");
}

// A start in another place than the discrete side says is put right by the first step.
void checkStart(s_runtime const& rt, s_Variable const& variable, StateVar const& discrete,
                std::vector<Case> const& cases, Findings& findings) {
    for (s_InitVar const& initial : rt.init) {
        if (initial.var != &variable || !isValue(initial.value))
            continue;
        range const value = {sn_infOf(initial.value), sn_supOf(initial.value), 1, 1};
        for (Case const& one : cases)
            if (one.atom->value == discrete.currentState &&
                intersection(one.space, {false, value}).empty)
                findings.warn(nameOf(discrete) + " begins as " + discrete.currentState +
                              ", where " + variable.nom + " cannot be " + textOf(initial.value) +
                              ": begin both in one place.");
    }
}

void checkCases(s_runtime const& rt, s_Variable const& variable, StateVar const& discrete,
                std::vector<Case> const& cases, Findings& findings) {
    for (std::size_t i = 0; i < cases.size(); ++i) {
        checkEmptiness(variable, cases[i], findings);
        checkReachable(variable, cases[i], findings);
        for (std::size_t j = i + 1; j < cases.size(); ++j)
            checkOverlap(variable, discrete, cases[i], cases[j], findings);
    }
    bool const allHere = cases.size() >= discrete.getAtomLinks().size();
    if (discrete.type == typeCond && allHere && variable.domain && isRange(*variable.domain))
        checkGaps(variable, discrete, cases, findings);
    checkStart(rt, variable, discrete, cases, findings);
}

}  // namespace

void checkThresholds(s_runtime const& rt, Holdings const& plant, Findings& findings) {
    for (auto const& variable : rt.dico) {
        bool const listed =
            checkEntries(rt, *variable, findings) && checkComplete(rt, *variable, findings);
        if (!listed)
            continue;
        checkSplit(rt, *variable, findings);
        if (variable->varConds.empty())
            continue;
        for (Comp const* comp : plant.comps)
            for (auto const& discrete : comp->getStateVariables()) {
                auto const cases = casesOf(rt, *variable, *discrete);
                if (cases && !cases->empty())
                    checkCases(rt, *variable, *discrete, *cases, findings);
            }
    }
}
