// What the plant holds, and how its elements are called.
#include "plant/findings.h"

#include <algorithm>
#include <charconv>

#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "plant/numbering.h"

Holdings::Holdings(PlantParts const& plant) {
    for (auto const& entry : plant.components)
        if (entry.second != nullptr && compSet.insert(entry.second).second)
            comps.push_back(entry.second);
    std::sort(comps.begin(), comps.end(),
              [](Comp const* a, Comp const* b) { return a->name < b->name; });
    for (Comp const* comp : comps)
        for (auto const& variable : comp->getStateVariables())
            for (Atom const* atom : variable->getAtomLinks()) {
                atoms.insert(atom);
                if (!atom->getRefTransPost().empty())
                    moving.insert(variable.get());
            }
    for (auto const& clause : plant.clauses)
        clauses.insert(clause.get());
}

bool isSound(s_Objet const& value) {
    if (isReal(value))
        return value.real == value.real;
    if (!isRange(value) || !(value.rng.inf <= value.rng.sup))
        return false;
    return value.rng.inf < value.rng.sup || (isInfClosed(value.rng) && isSupClosed(value.rng));
}

// ---- Names ----

std::string nameOf(s_Variable const& variable) {
    return (variable.isParam ? "Parameter " : "Variable ") + variable.nom;
}

std::string nameOf(s_Influence const& influence) {
    return "Influence " + (influence.nom.empty() ? std::to_string(influence.slot) : influence.nom);
}

std::string nameOf(StateVar const& variable) {
    return "Variable " + variable.getName();
}

std::string nameOf(Atom const& atom) {
    return "Atom " + atom.id;
}

std::string nameOfTransition(Comp const& comp, std::size_t i) {
    return "Transition " + std::to_string(i) + " of " + comp.name;
}

std::string nameOfClause(std::size_t i) {
    return "Clause " + std::to_string(i);
}

std::string nameOfClauses(std::vector<std::size_t> const& numbers) {
    std::vector<std::string> words;
    for (std::size_t const number : numbers)
        words.push_back(std::to_string(number));
    return (numbers.size() == 1 ? "clause " : "clauses ") + joined(words);
}

std::string nameOfConstraint(s_runtime const& rt, std::size_t i) {
    std::string const number = "Constraint " + std::to_string(i);
    s_GVar const* gvar = rt.aC[i]->gvar;
    return gvar == nullptr || gvar->var == nullptr ? number : number + " of " + gvar->var->nom;
}

namespace {

std::string textOfBound(double value) {
    if (value == DBL_MAX)
        return "+oo";
    if (value == -DBL_MAX)
        return "-oo";
    char text[32];
    auto const end = std::to_chars(text, text + sizeof text, value);
    return {text, end.ptr};
}

}  // namespace

std::string textOf(s_Objet const& value) {
    if (isReal(value) || value.rng.inf == value.rng.sup)
        return textOfBound(sn_infOf(value));
    std::string text(1, isInfClosed(value.rng) ? '[' : ']');
    text += textOfBound(value.rng.inf) + ", " + textOfBound(value.rng.sup);
    return text + (isSupClosed(value.rng) ? "]" : "[");
}

std::string joined(std::vector<std::string> const& words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0)
            text += i + 1 == words.size() ? " and " : ", ";
        text += words[i];
    }
    return text;
}

namespace {

std::string capitalised(std::string text) {
    if (!text.empty() && text.front() == 't')
        text.front() = 'T';
    else if (!text.empty() && text.front() == 'c')
        text.front() = 'C';
    return text;
}

}  // namespace

// The first name that fits stays: a number before a use, a use before a place in another.
ConditionNames::ConditionNames(s_runtime const& rt, Holdings const& plant) {
    for (std::size_t i = 0; i < rt.condi.size(); ++i) {
        Atom const* atom = rt.condi[i]->atom;
        names.insert({rt.condi[i], "Condition " + std::to_string(i) +
                                       (atom == nullptr ? "" : " (" + atom->id + ")")});
    }
    for (std::size_t i = 0; i < rt.condi.size(); ++i)
        name(rt.condi[i], "condition " + std::to_string(i));
    for (auto const& influence : rt.influ)
        name(influence->cond, "the condition of influence " + influence->nom);
    for (Comp const* comp : plant.comps)
        for (auto const& transition : comp->getCompTransitions())
            for (auto const& function : transition->mapFuncs)
                name(function->guard, "the guard of a mapping of " + comp->name);
}

void ConditionNames::name(s_Condition const* condition, std::string const& text) {
    if (condition == nullptr)
        return;
    names.insert({condition, capitalised(text)});
    name(condition->left, "the left operand of " + text);
    name(condition->right, "the right operand of " + text);
}

CondMap const* linksOf(StateVar const& variable) {
    if (variable.type == typeCond)
        return &static_cast<CondVar const&>(variable).condMap;
    if (variable.type == typeMode)
        return &static_cast<ModeVar const&>(variable).condMap;
    return nullptr;
}
