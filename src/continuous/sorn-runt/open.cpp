// The rule `unknown`, on the continuous side: in an unknown mode anything may act.
//
// The classic rule. An influence acts when its condition holds. In the mode "unknown" every
// condition on a known mode of the same variable is false, so nothing of the component acts.
//
// What goes wrong. That is one more way to behave, and a precise one: the bounds are as narrow as
// those of any other mode, and an unknown fault that does not happen to stop all influences is
// reported as a disagreement. The mode that was meant to explain everything explains one case.
//
// The rule. While the atom of a mode variable's value "unknown" holds in this candidate, each
// condition on another value of that variable is open: it may hold or not. Truth has three values
// from there on, by the tables of Kleene. An influence with an open condition adds to its effect
// everything from nothing to its full share. The bound search, which follows one or the other, does
// not run for such an effect.
//
// Why it is sound. Whatever the component does, each of its influences either acts or does not, and
// both are inside. Of influences that exclude each other both are counted, which is wider than it
// need be and never wrong. That the influence may act is also what isolation is to know of it, so
// its history of conditions says that it acted.
//
// How it is known. The atom's truth reaches a candidate as the value of the conditions on it, as
// that of all other atoms does (setRTCondVal). A plant without a condition on the atom never learns
// that the mode is unknown, and stays with the classic rule there.
#include <algorithm>

#include "continuous/sorn-runt.h"
#include "model/Atom.h"
#include "model/labels.h"
#include "model/linkedConditions.h"

namespace {

bool isUnknownOf(s_Condition const& condition, StateVar const* variable) {
    return condition.kind == COND_ATOM && condition.val != 0 && condition.atom != nullptr &&
           condition.atom->getStateVar() == variable && condition.atom->value == valueUnknown;
}

// Of a variable with linked conditions these alone tell: a plant has conditions on all of its
// modes, and who looked through all of them for each would take a time that grows with the square.
bool isUnknown(StateVar const* variable, s_runtime const& rt) {
    CondMap const* linked = variable != nullptr ? linkedConditions(variable) : nullptr;
    if (linked != nullptr && !linked->empty())
        return std::any_of(linked->begin(), linked->end(), [&](auto const& link) {
            return isUnknownOf(*rt.condi[static_cast<std::size_t>(link.second)], variable);
        });
    return std::any_of(rt.condPool.begin(), rt.condPool.end(),
                       [&](auto const& condition) { return isUnknownOf(*condition, variable); });
}

// A mode that the candidate follows as unknown leaves its other values open.
Truth atomTruth(s_Condition const* condition, s_runtime const* rt) {
    if (condition->val != 0)
        return Truth::TRUE;
    if (!rt->engine->rules.unknown || condition->atom == nullptr ||
        condition->atom->value == valueUnknown)
        return Truth::FALSE;
    return isUnknown(condition->atom->getStateVar(), *rt) ? Truth::OPEN : Truth::FALSE;
}

Truth of(bool holds) {
    return holds ? Truth::TRUE : Truth::FALSE;
}

// An or is decided by one true operand, an and by one false one.
Truth either(Truth a, Truth b, Truth decisive) {
    if (a == decisive || b == decisive)
        return decisive;
    return a == Truth::OPEN || b == Truth::OPEN ? Truth::OPEN : a;
}

}  // namespace

Truth sn_truthOf(s_Condition* condition, s_runtime* rt, LeafTruth leaf) {
    switch (condition->kind) {
        case COND_OR:
            return either(sn_truthOf(condition->left, rt, leaf),
                          sn_truthOf(condition->right, rt, leaf), Truth::TRUE);
        case COND_AND:
            return either(sn_truthOf(condition->left, rt, leaf),
                          sn_truthOf(condition->right, rt, leaf), Truth::FALSE);
        case COND_NOT: {
            Truth const left = sn_truthOf(condition->left, rt, leaf);
            return left == Truth::OPEN ? left : of(left == Truth::FALSE);
        }
        case COND_ATOM:
            return atomTruth(condition, rt);
        default:
            return leaf(condition, rt);
    }
}

Truth sn_certainTruth(s_Condition* condition, s_runtime* rt) {
    return of(sn_evalCond(condition, rt) != 0);
}

bool sn_isOpen(s_Condition* condition, s_runtime* rt) {
    return rt->engine->rules.unknown && condition != nullptr &&
           sn_truthOf(condition, rt, sn_certainTruth) == Truth::OPEN;
}

bool sn_anyOpen(s_CGraph const& graph, s_runtime* rt) {
    for (s_Influence const* influence : graph.causes)
        if (sn_isOpen(influence->cond, rt))
            return true;
    return false;
}
