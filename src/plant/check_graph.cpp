// The causal graph beside the influences, and the order in which variables are updated.
#include <algorithm>
#include <map>
#include <set>

#include "plant/findings.h"
#include "plant/numbering.h"

namespace {

// ---- Nodes ----

long countOf(std::vector<s_Influence*> const& list, s_Influence const* influence) {
    return std::count(list.begin(), list.end(), influence);
}

// The influence stands once among the causes (effects) of its end, and nowhere else.
void checkEnd(s_Influence const& influence, s_Variable const& variable, char const* role,
              std::vector<s_Influence*> s_CGraph::*list, Findings& findings) {
    long const count = variable.graph == nullptr ? 0 : countOf(variable.graph->*list, &influence);
    if (count == 0)
        findings.refuse(nameOf(influence) + " is not among the " + role + " of " + variable.nom +
                        ": enter it in the graph node.");
    else if (count > 1)
        findings.refuse(nameOf(influence) + " stands " + std::to_string(count) +
                        " times among the " + role + " of " + variable.nom + ": enter it once.");
}

void checkNodeList(s_Variable const& variable, std::vector<s_Influence*> const& list,
                   char const* role, s_Variable* s_Influence::*end, Findings& findings) {
    std::set<int> told;
    for (s_Influence const* influence : list)
        if (influence == nullptr)
            findings.refuse(nameOf(variable) + " has an open place among its " + role +
                            ": name the influence.");
        else if (influence->*end != &variable && told.insert(influence->slot).second)
            findings.refuse(nameOf(*influence) + " stands among the " + role + " of " +
                            variable.nom + ", where it does not belong: take it out.");
}

void checkKind(s_Variable const& variable, Findings& findings) {
    s_CGraph const& node = *variable.graph;
    if (node.causes.empty())
        return;
    influType const kind = kindOfCauses(node.causes);
    bool mixed = false;
    for (s_Influence const* cause : node.causes)
        mixed = mixed || (cause != nullptr && cause->type != kind &&
                          !(cause->type == INF_COUPLING && kind == INF_STATIC));
    if (mixed)
        findings.refuse(nameOf(variable) +
                        " has causes of different kinds: give it causes of one, "
                        "or static ones and couplings.");
    else if (node.kind != kind)
        findings.refuse(
            nameOf(variable) +
            " is not worked out by the kind of its causes: give its graph node theirs.");
}

void checkNodes(s_runtime const& rt, Findings& findings) {
    std::multiset<int> owned;
    for (auto const& variable : rt.dico) {
        if (variable->graph == nullptr)
            continue;
        owned.insert(variable->graph->slot);
        if (owned.count(variable->graph->slot) == 2)
            findings.refuse(nameOf(*variable) +
                            " shares its graph node with another variable: give it its own.");
        checkNodeList(*variable, variable->graph->causes, "causes", &s_Influence::effect, findings);
        checkNodeList(*variable, variable->graph->effects, "effects", &s_Influence::cause,
                      findings);
        checkKind(*variable, findings);
    }
    for (auto const& node : rt.cG)
        if (owned.count(node->slot) == 0)
            findings.refuse("Entry " + std::to_string(node->slot) +
                            " of cG is the node of no variable: give it to one.");
}

}  // namespace

void checkGraph(s_runtime const& rt, Findings& findings) {
    checkNodes(rt, findings);
    for (auto const& influence : rt.influ) {
        if (influence->effect != nullptr)
            checkEnd(*influence, *influence->effect, "causes", &s_CGraph::causes, findings);
        if (influence->cause != nullptr)
            checkEnd(*influence, *influence->cause, "effects", &s_CGraph::effects, findings);
    }
}

// ---- Order of updates ----

namespace {

// What the influences say, whatever the graph lists say: those are told above.
struct Updates {
    explicit Updates(s_runtime const& rt) : rt(rt) {
        int place = 0;
        for (auto const* list : {&rt.temporal, &rt.untemporal})
            for (s_Variable const* variable : *list)
                places.insert({variable, place++});
    }
    bool isUpdated(s_Variable const* variable) const { return places.count(variable) != 0; }
    bool isTemporal(s_Variable const* variable) const {
        return positionIn(rt.temporal, variable) >= 0;
    }

    s_runtime const& rt;
    std::unordered_map<s_Variable const*, int> places;
};

bool hasCauses(s_runtime const& rt, s_Variable const* variable) {
    return std::any_of(rt.influ.begin(), rt.influ.end(),
                       [variable](auto const& i) { return i->effect == variable; });
}

bool hasEffects(s_runtime const& rt, s_Variable const* variable) {
    return std::any_of(rt.influ.begin(), rt.influ.end(),
                       [variable](auto const& i) { return i->cause == variable; });
}

void checkListed(Updates const& updates, s_Variable const& variable, Findings& findings) {
    s_runtime const& rt = updates.rt;
    if (variable.isParam || positionIn(rt.input, &variable) >= 0)
        return;
    bool const caused = hasCauses(rt, &variable);
    if (caused && !updates.isUpdated(&variable))
        findings.refuse(nameOf(variable) +
                        " has causes and is never updated: name it in temporal or in untemporal.");
    if (caused || positionIn(rt.measure, &variable) >= 0)
        return;
    std::string const text = nameOf(variable) +
                             " has no causes, is no input and is not measured, so that it has no "
                             "value: make it a parameter, or give it a cause.";
    bool const used = hasEffects(rt, &variable) || positionIn(rt.display, &variable) >= 0;
    used ? findings.refuse(text) : findings.warn(text);
}

// A static influence without delay reads what its cause has become in this very cycle.
bool readsThisCycle(Updates const& updates, s_Influence const& influence) {
    return influence.type == INF_STATIC && influence.delayMin == 0 && influence.cause != nullptr &&
           !influence.cause->isParam && influence.effect != nullptr &&
           updates.isUpdated(influence.cause) && updates.isUpdated(influence.effect);
}

// A chain of such influences leads from *from* to *to*.
bool leads(Updates const& updates, s_Variable const* from, s_Variable const* to,
           std::set<int>& seen) {
    if (from == to)
        return true;
    for (auto const& influence : updates.rt.influ)
        if (influence->cause == from && readsThisCycle(updates, *influence) &&
            seen.insert(influence->effect->slot).second &&
            leads(updates, influence->effect, to, seen))
            return true;
    return false;
}

void checkOrder(Updates const& updates, s_Influence const& influence, Findings& findings) {
    if (!readsThisCycle(updates, influence) ||
        updates.places.at(influence.cause) < updates.places.at(influence.effect))
        return;
    std::set<int> seen;
    if (leads(updates, influence.effect, influence.cause, seen))
        findings.refuse(nameOf(influence) + " closes a loop without delay from " +
                        influence.effect->nom + " to itself: give one of its influences a delay.");
    else
        findings.refuse(nameOf(influence) + " reads " + influence.cause->nom +
                        " before it is updated: update " + influence.cause->nom + " before " +
                        influence.effect->nom + ".");
}

// Integrals and dynamic links read the previous cycle, so their measures must not have come in.
void checkPhase(Updates const& updates, s_Variable const& variable, Findings& findings) {
    if (variable.graph == nullptr || variable.graph->causes.empty() ||
        variable.graph->kind == INF_STATIC || variable.graph->kind == INF_COUPLING)
        return;
    if (updates.isUpdated(&variable) && !updates.isTemporal(&variable))
        findings.warn(nameOf(variable) +
                      " follows from the cycle before and is updated after the measures of this "
                      "one came in: name it in temporal.");
}

void checkUseless(s_runtime const& rt, Findings& findings) {
    for (auto const* list : {&rt.temporal, &rt.untemporal})
        for (s_Variable const* variable : *list)
            if (!variable->isParam && !hasCauses(rt, variable) &&
                positionIn(rt.input, variable) < 0)
                findings.warn(nameOf(*variable) +
                              " is among the variables that are updated and has no causes: take "
                              "it out.");
}

}  // namespace

void checkUpdates(s_runtime const& rt, Findings& findings) {
    Updates const updates(rt);
    for (auto const& variable : rt.dico) {
        checkListed(updates, *variable, findings);
        checkPhase(updates, *variable, findings);
    }
    for (auto const& influence : rt.influ)
        checkOrder(updates, *influence, findings);
    checkUseless(rt, findings);
}
