// The conditions: what each kind needs is set, and those that are referred to by number have one.
#include <algorithm>
#include <set>

#include "plant/findings.h"
#include "plant/numbering.h"

namespace {

struct Subject {
    s_runtime const& rt;
    s_Condition const& condition;
    std::string name;
};

void checkOperands(Subject const& subject, bool two, Findings& findings) {
    if (subject.condition.left == nullptr)
        findings.refuse(subject.name + " has no left operand: set it.");
    if (two && subject.condition.right == nullptr)
        findings.refuse(subject.name + " has no right operand: set it.");
}

bool isRelation(int op) {
    return op >= REL_EQ && op <= REL_IN;
}

void checkRelation(Subject const& subject, Findings& findings) {
    s_Condition const& condition = subject.condition;
    if (condition.var == nullptr)
        findings.refuse(subject.name + " compares no variable: name one.");
    if (!isRelation(condition.op))
        findings.refuse(subject.name + " compares by no relation: choose one.");
    if (condition.var2 == nullptr && !(condition.value && isValue(*condition.value)))
        findings.refuse(subject.name + " compares with nothing: give it a value or a variable.");
}

// ---- Comparisons by a constraint ----

// The constraint alone is read; the relation is for people.
void checkDirection(Subject const& subject, Findings& findings) {
    s_Condition const& condition = subject.condition;
    s_Expr const& expr = *condition.expr;
    if (expr.op != EXPR_ADD || expr.right == nullptr || expr.right->gvar == nullptr)
        return;
    s_Objet const& space = expr.right->gvar->value;
    if (!isRange(space))
        return;
    bool const below = condition.op == REL_LT || condition.op == REL_LE;
    bool const above = condition.op == REL_GE || condition.op == REL_GT;
    if ((below && space.rng.sup == DBL_MAX) || (above && space.rng.inf == -DBL_MAX))
        findings.warn(subject.name +
                      " is written the other way round than its constraint, which alone is read: "
                      "make both say the same.");
}

// Behind a condition stand its own constraint, and perhaps others on the same variable.
void checkConstraintNumbers(Subject const& subject, Findings& findings) {
    s_runtime const& rt = subject.rt;
    s_Condition const& condition = subject.condition;
    int const own = positionIn(rt.aC, condition.expr);
    if (own < 0) {
        bool const bridged = condition.atom != nullptr || !condition.acIdx.empty();
        if (bridged)
            findings.refuse(subject.name + " compares by an expression that is not in aC: add it.");
        return;
    }
    bool valid =
        std::find(condition.acIdx.begin(), condition.acIdx.end(), own) != condition.acIdx.end();
    for (int const index : condition.acIdx)
        valid = valid && index >= 0 && index < static_cast<int>(rt.aC.size()) &&
                rt.aC[static_cast<std::size_t>(index)]->gvar == condition.expr->gvar;
    if (!valid)
        findings.refuse(subject.name + " does not lead to its constraint, which is number " +
                        std::to_string(own) + " of aC: write it in acIdx.");
}

void checkExpression(Subject const& subject, Findings& findings) {
    s_Condition const& condition = subject.condition;
    if (condition.var == nullptr)
        findings.refuse(subject.name + " compares no variable: name one.");
    if (!isRelation(condition.op))
        findings.refuse(subject.name + " compares by no relation: choose one.");
    if (condition.expr == nullptr) {
        findings.refuse(subject.name + " compares by no constraint: name one.");
        return;
    }
    s_GVar const* gvar = condition.expr->gvar;
    if (condition.var != nullptr && gvar != nullptr && gvar->var != nullptr &&
        gvar->var != condition.var)
        findings.refuse(subject.name + " compares " + condition.var->nom + " by a constraint of " +
                        gvar->var->nom + ": make both the same.");
    checkConstraintNumbers(subject, findings);
    checkDirection(subject, findings);
}

void checkKind(Subject const& subject, Findings& findings) {
    switch (subject.condition.kind) {
        case COND_CONST:
            break;
        case COND_REL:
            checkRelation(subject, findings);
            break;
        case COND_OR:
        case COND_AND:
            checkOperands(subject, true, findings);
            break;
        case COND_NOT:
            checkOperands(subject, false, findings);
            break;
        case COND_ATOM:
            if (subject.condition.atom == nullptr)
                findings.refuse(subject.name + " is on no atom: name one.");
            break;
        case COND_EXPR:
            checkExpression(subject, findings);
            break;
        default:
            findings.refuse(subject.name + " is of no kind, so that it never holds: choose one.");
    }
}

// ---- Numbers ----

void checkNumbering(s_runtime const& rt, Findings& findings) {
    std::multiset<int> slots;
    for (std::size_t i = 0; i < rt.condi.size(); ++i) {
        slots.insert(rt.condi[i]->slot);
        if (slots.count(rt.condi[i]->slot) == 2)
            findings.refuse("Condition " + std::to_string(positionIn(rt.condi, rt.condi[i])) +
                            " stands in condi again as " + std::to_string(i) + ": number it once.");
    }
    if (rt.condi.empty())
        return;
    for (auto const& influence : rt.influ)
        if (influence->cond != nullptr && positionIn(rt.condi, influence->cond) < 0)
            findings.warn("The condition of influence " + influence->nom +
                          " has no number: add it to condi.");
}

// ---- Uses ----

using Slots = std::set<int>;

void use(s_Condition const* condition, Slots& used) {
    if (condition == nullptr || !used.insert(condition->slot).second)
        return;
    use(condition->left, used);
    use(condition->right, used);
}

// What an influence or a mapping asks for, and what tells or follows an atom.
Slots usedConditions(s_runtime const& rt, Holdings const& plant) {
    Slots used;
    for (auto const& influence : rt.influ)
        use(influence->cond, used);
    for (Comp const* comp : plant.comps)
        for (auto const& transition : comp->getCompTransitions())
            for (auto const& function : transition->mapFuncs)
                use(function->guard, used);
    for (s_Condition const* condition : rt.condi)
        if (condition->atom != nullptr)
            use(condition, used);
    return used;
}

void checkUses(s_runtime const& rt, Holdings const& plant, Findings& findings) {
    Slots const used = usedConditions(rt, plant);
    for (std::size_t i = 0; i < rt.condi.size(); ++i)
        if (used.count(rt.condi[i]->slot) == 0)
            findings.warn("Condition " + std::to_string(i) +
                          " decides nothing: name it as the condition of an influence, or take it "
                          "out.");
}

}  // namespace

void checkConditions(s_runtime const& rt, Holdings const& plant, ConditionNames const& nameOf,
                     Findings& findings) {
    for (auto const& condition : rt.condPool)
        if (nameOf.has(condition.get()))
            checkKind({rt, *condition, nameOf(condition.get())}, findings);
        else
            findings.warn("Entry " + std::to_string(condition->slot) +
                          " of condPool is used by nothing: number it, or take it out.");
    checkNumbering(rt, findings);
    checkUses(rt, plant, findings);
}
