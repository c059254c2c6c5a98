// What the parts of the check share: the list of findings, what the plant holds, and how its
// elements are called in a sentence.
#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "continuous/records.h"
#include "model/Atom.h"
#include "model/Clause.h"
#include "model/Comprt.h"
#include "model/condMap.h"
#include "plant/check.h"

class Findings {
public:
    void refuse(std::string text) { list.push_back({true, std::move(text)}); }
    void warn(std::string text) { list.push_back({false, std::move(text)}); }

    std::vector<Finding> list;
};

// What the plant holds, gathered once. The sets answer membership alone, so that no order of
// addresses reaches a finding.
struct Holdings {
    explicit Holdings(PlantParts const& plant);

    bool holds(Atom const* atom) const { return atoms.count(atom) != 0; }
    bool holds(Comp const* comp) const { return compSet.count(comp) != 0; }

    std::vector<Comp const*> comps;  // by name
    std::unordered_set<Comp const*> compSet;
    std::unordered_set<Atom const*> atoms;       // of all variables
    std::unordered_set<Clause const*> clauses;   // of the plant
    std::unordered_set<StateVar const*> moving;  // some transition reaches an atom of it
};

// A number or an interval that is not empty; NaN is neither.
bool isSound(s_Objet const& value);

// ---- Names ----

std::string nameOf(s_Variable const& variable);    // "Variable room.x", "Parameter room.m"
std::string nameOf(s_Influence const& influence);  // "Influence R1.i1"
std::string nameOf(StateVar const& variable);
std::string nameOf(Atom const& atom);
std::string nameOfTransition(Comp const& comp, std::size_t i);  // "Transition 3 of room"
std::string nameOfClause(std::size_t i);
// "clause 3", "clauses 3 and 7"
std::string nameOfClauses(std::vector<std::size_t> const& numbers);
// "Constraint 2 of room.x"
std::string nameOfConstraint(s_runtime const& rt, std::size_t i);
// "[10, 12["; a number where the interval is a single point.
std::string textOf(s_Objet const& value);
std::string joined(std::vector<std::string> const& words);  // "a, b and c"

// "Condition 9 (room.c1=c11)", "The condition of influence R1.i1", "The left operand of condition
// 5". A condition in no place has no name.
class ConditionNames {
public:
    ConditionNames(s_runtime const& rt, Holdings const& plant);
    bool has(s_Condition const* condition) const { return names.count(condition) != 0; }
    std::string const& operator()(s_Condition const* condition) const {
        return names.at(condition);
    }

private:
    void name(s_Condition const* condition, std::string const& text);

    std::unordered_map<s_Condition const*, std::string> names;
};

// The links of a variable's atoms; null for kinds that have none.
CondMap const* linksOf(StateVar const& variable);

// ---- The parts of the check, in their order ----

// Discrete side.
void checkNames(Holdings const& plant, PlantParts const& parts, Findings& findings);
void checkStateVariables(Holdings const& plant, Findings& findings);
void checkClauses(Holdings const& plant, PlantParts const& parts, Findings& findings);
void checkTransitions(Holdings const& plant, PlantParts const& parts, Findings& findings);
// A plant without a continuous side has no link to one.
void checkNoLinks(Holdings const& plant, Findings& findings);

// Continuous side. False when lists and references are broken; the others must then not be called.
bool checkReferences(s_runtime const& rt, Holdings const& plant, Findings& findings);
void checkRecordNames(s_runtime const& rt, Findings& findings);
void checkLists(s_runtime const& rt, Findings& findings);
void checkVariables(s_runtime const& rt, Findings& findings);
void checkInfluences(s_runtime const& rt, Holdings const& plant, Findings& findings);
void checkGraph(s_runtime const& rt, Findings& findings);
void checkUpdates(s_runtime const& rt, Findings& findings);
void checkInitialValues(s_runtime const& rt, Findings& findings);
void checkConstraints(s_runtime const& rt, Findings& findings);
void checkConditions(s_runtime const& rt, Holdings const& plant, ConditionNames const& nameOf,
                     Findings& findings);
// Both sides.
void checkLinks(s_runtime const& rt, Holdings const& plant, ConditionNames const& nameOf,
                Findings& findings);
void checkThresholds(s_runtime const& rt, Holdings const& plant, Findings& findings);
