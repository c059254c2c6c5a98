// The lists of variables, the arrays that go with them, and the runtime's own numbers.
#include <set>

#include "plant/findings.h"
#include "plant/numbering.h"

namespace {

using Variables = std::vector<s_Variable*>;

// Tells every variable that stands in the list again.
void checkOnce(char const* name, Variables const& list, bool refuses, Findings& findings) {
    std::multiset<int> slots;
    for (s_Variable const* variable : list) {
        slots.insert(variable->slot);
        if (slots.count(variable->slot) != 2)
            continue;
        std::string const text = nameOf(*variable) + " stands twice in " + name + ": name it once.";
        refuses ? findings.refuse(text) : findings.warn(text);
    }
}

void checkRoles(s_runtime const& rt, Findings& findings) {
    for (s_Variable const* variable : rt.input)
        if (variable->isParam)
            findings.refuse(nameOf(*variable) + " is an input: make it a variable.");
    for (auto const* list : {&rt.temporal, &rt.untemporal})
        for (s_Variable const* variable : *list) {
            if (variable->isParam)
                findings.refuse(nameOf(*variable) +
                                " is among the variables that are updated: take it out.");
            else if (positionIn(rt.input, variable) >= 0)
                findings.refuse(nameOf(*variable) +
                                " is an input and is updated as well: take it out of one list.");
        }
    for (s_Variable const* variable : rt.temporal)
        if (positionIn(rt.untemporal, variable) >= 0)
            findings.refuse(nameOf(*variable) +
                            " stands in temporal and in untemporal: name it in one.");
}

// ---- Arrays ----

void checkLength(char const* name, std::size_t length, char const* list, std::size_t entries,
                 Findings& findings) {
    if (length != entries)
        findings.refuse("Array " + std::string(name) + " has " + std::to_string(length) +
                        " entries for the " + std::to_string(entries) + " of " + list +
                        ": call sizeArrays when all lists are set.");
}

void checkArrays(s_runtime const& rt, Findings& findings) {
    checkLength("dinfval", rt.dinfval.size(), "display", rt.display.size(), findings);
    checkLength("dsupval", rt.dsupval.size(), "display", rt.display.size(), findings);
    checkLength("lowalarm", rt.lowalarm.size(), "measure", rt.measure.size(), findings);
    checkLength("highalarm", rt.highalarm.size(), "measure", rt.measure.size(), findings);
    checkLength("meslowmisb", rt.meslowmisb.size(), "measure", rt.measure.size(), findings);
    checkLength("meshighmisb", rt.meshighmisb.size(), "measure", rt.measure.size(), findings);
    checkLength("mesmisb", rt.mesmisb.size(), "measure", rt.measure.size(), findings);
    checkLength("condin", rt.condin.size(), "influ", rt.influ.size(), findings);
    checkLength("condout", rt.condout.size(), "influ", rt.influ.size(), findings);
    checkLength("inAc", rt.inAc.size(), "gC", rt.gC.size(), findings);
    checkLength("valSpc", rt.valSpc.size(), "aC", rt.aC.size(), findings);
    checkLength("ccAgenda", rt.ccAgenda.size(), "aC", rt.aC.size(), findings);
}

}  // namespace

void checkLists(s_runtime const& rt, Findings& findings) {
    if (!(rt.Ts > 0.0 && rt.Ts <= DBL_MAX))
        findings.refuse("The sample period is not above 0: give it in seconds.");
    if (rt.twc < 1)
        findings.refuse("The window is shorter than a cycle: give the number of cycles.");
    if (rt.name.empty())
        findings.warn("The runtime has no name: give it that of the model.");
    checkOnce("input", rt.input, true, findings);
    checkOnce("display", rt.display, false, findings);
    checkOnce("measure", rt.measure, true, findings);
    checkOnce("temporal", rt.temporal, true, findings);
    checkOnce("untemporal", rt.untemporal, true, findings);
    checkRoles(rt, findings);
    checkArrays(rt, findings);
}

// ---- Variables ----

namespace {

bool lies(s_Objet const& value, s_Objet const& domain) {
    s_Objet common = value;
    return sn_interObjet(&common, &domain) == 1;
}

// A parameter may be given a domain, and then keeps to it.
void checkParameter(s_Variable const& parameter, Findings& findings) {
    if (!isSound(parameter.old))
        findings.refuse(nameOf(parameter) + " has no value: give it one.");
    else if (parameter.domain && !lies(parameter.old, *parameter.domain))
        findings.refuse("The value " + textOf(parameter.old) + " of parameter " + parameter.nom +
                        " is outside its domain " + textOf(*parameter.domain) +
                        ": move one of them.");
}

void checkValue(s_Variable const& variable, Findings& findings) {
    bool const bounded = variable.domain && isSound(*variable.domain);
    if (!bounded && (!variable.isParam || variable.domain))
        findings.refuse(nameOf(variable) +
                        " has no domain: give it the bounds within which it can lie.");
    else if (variable.isParam)
        checkParameter(variable, findings);
}

void checkHistories(s_runtime const& rt, s_Variable const& variable, Findings& findings) {
    int const length = variable.histLen();
    if (variable.mesHisto.size() != length || variable.lowHisto.size() != length ||
        variable.highHisto.size() != length)
        findings.refuse(nameOf(variable) +
                        " has histories of different lengths: make all four as long.");
    int const needed = rt.twc + longestDelayFrom(rt, &variable);
    if (!variable.isParam && length < needed)
        findings.warn(nameOf(variable) + " has a history of " + std::to_string(length) +
                      " cycles, where the window and the longest delay take " +
                      std::to_string(needed) + ": make it as long.");
}

}  // namespace

void checkVariables(s_runtime const& rt, Findings& findings) {
    for (auto const& variable : rt.dico) {
        checkValue(*variable, findings);
        checkHistories(rt, *variable, findings);
    }
}

// ---- Initial values ----

namespace {

void checkInitial(s_InitVar const& initial, Findings& findings) {
    s_Variable const& variable = *initial.var;
    if (variable.isParam)
        findings.refuse(nameOf(variable) +
                        " has an initial value beside its own: take one of them out.");
    else if (!isSound(initial.value))
        findings.refuse("The initial value of " + variable.nom +
                        " is no value: give a number or "
                        "an interval.");
    else if (variable.domain && !lies(initial.value, *variable.domain))
        findings.refuse("The initial value " + textOf(initial.value) + " of " + variable.nom +
                        " is outside its domain " + textOf(*variable.domain) +
                        ": move one of them.");
}

bool hasFirstValue(s_runtime const& rt, s_Variable const* variable) {
    for (s_InitVar const& initial : rt.init)
        if (initial.var == variable)
            return true;
    return variable->isParam || positionIn(rt.measure, variable) >= 0 ||
           positionIn(rt.input, variable) >= 0;
}

bool isKind(s_Variable const& variable, influType kind) {
    return variable.graph != nullptr && !variable.graph->causes.empty() &&
           variable.graph->kind == kind;
}

// The first values of static variables are worked out from those of their causes, at any delay.
// True when that of *variable* asks for that of *sought*.
bool firstValueAsks(s_runtime const& rt, s_Variable const* variable, s_Variable const* sought,
                    std::set<int>& asked) {
    if (hasFirstValue(rt, variable) || !isKind(*variable, INF_STATIC))
        return false;
    for (s_Influence const* influence : variable->graph->causes) {
        if (influence == nullptr || influence->cause == nullptr)
            continue;
        if (influence->cause == sought && !hasFirstValue(rt, sought))
            return true;
        if (asked.insert(influence->cause->slot).second &&
            firstValueAsks(rt, influence->cause, sought, asked))
            return true;
    }
    return false;
}

void checkFirstValue(s_runtime const& rt, s_Variable const& variable, Findings& findings) {
    std::set<int> asked;
    if (isKind(variable, INF_INTEGRAL) && !hasFirstValue(rt, &variable))
        findings.refuse(nameOf(variable) + " is integrated and has no initial value: give it one.");
    else if (firstValueAsks(rt, &variable, &variable, asked))
        findings.refuse("The first value of " + variable.nom +
                        " depends on itself: give it an initial value.");
}

}  // namespace

void checkInitialValues(s_runtime const& rt, Findings& findings) {
    std::multiset<int> slots;
    for (s_InitVar const& initial : rt.init) {
        slots.insert(initial.var->slot);
        if (slots.count(initial.var->slot) == 2)
            findings.refuse(nameOf(*initial.var) + " has two initial values: keep one.");
        checkInitial(initial, findings);
    }
    for (auto const& variable : rt.dico)
        checkFirstValue(rt, *variable, findings);
}
