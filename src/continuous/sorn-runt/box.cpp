// From a runtime in the middle of its cycle to a box of relations.
//
// Only those relations enter whose update in update.cpp and dynamic.cpp gives the true hull over
// the values and coefficients. Left out are the combinations of second-order coefficients that lose
// a part of the sum, and effects that read something which is not in a slot: a value of this cycle
// that is computed later, or one without a prediction. A relation left out costs sharpness only.
#include <algorithm>

#include "continuous/contractor.h"
#include "continuous/sorn-runt.h"

namespace {

// That a relation does not hold for every point of its values says only that it may be false.
bool isCertainlyFalse(int op, Outward const& left, Outward const& right) {
    switch (op) {
        case REL_LT:
            return left.lo >= right.hi;
        case REL_LE:
            return left.lo > right.hi;
        case REL_GE:
            return left.hi < right.lo;
        case REL_GT:
            return left.hi <= right.lo;
        case REL_EQ:
        case REL_IN:
            return !meet(left, right);
        default:
            return left.lo == left.hi && right.lo == right.hi;
    }
}

Outward rightSide(s_Condition const* condition, s_runtime* rt) {
    if (condition->kind == COND_EXPR) {
        sn_evalSolFunc(rt, condition->expr);
        return outwardOf(rt->engine->TMP4);
    }
    return outwardOf(condition->var2 != nullptr ? condition->var2->old : *condition->value);
}

// The update counts an influence when its condition is certain; here an uncertain one is open.
Truth possibleTruth(s_Condition* condition, s_runtime* rt) {
    bool const relation = condition->kind == COND_REL || condition->kind == COND_EXPR;
    if (!relation || sn_evalCond(condition, rt) != 0)
        return sn_certainTruth(condition, rt);
    int const op = condition->kind == COND_REL ? condition->op : REL_IN;
    return isCertainlyFalse(op, outwardOf(condition->var->old), rightSide(condition, rt))
               ? Truth::FALSE
               : Truth::OPEN;
}

Truth mayAct(s_Influence const* influence, s_runtime* rt) {
    if (influence->cond == nullptr)
        return Truth::TRUE;
    return sn_truthOf(influence->cond, rt, possibleTruth);
}

// A box under construction.
class BoxBuilder {
public:
    BoxBuilder(s_runtime* rt, s_Variable const* without) : rt(rt), without(without) {
        atAge.assign(2 * rt->dico.size(), none);
    }

    Box build() {
        for (s_Variable* variable : rt->temporal)
            addRelation(variable);
        for (s_Variable* input : rt->input)
            mark(input);
        for (s_Variable* variable : rt->untemporal)
            addRelation(variable);
        return std::move(box);
    }

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    void addRelation(s_Variable* effect);
    bool fillRelation(s_CGraph const& graph, BoxRelation& relation);
    bool fillSecondOrder(s_CGraph const& graph, BoxRelation& relation);
    bool addTerm(s_Influence* influence, s_Objet const& coefficient, int extraAge,
                 BoxRelation& relation);
    // The slot of a cause at the influence's delay; `none` when there is no such value.
    std::size_t causeSlot(s_Influence const& influence, int extraAge);
    std::size_t slotOf(s_Variable* variable, int age);
    BoxSlot newSlot(s_Variable* variable, int age) const;
    void observe(BoxSlot& slot) const;
    // Has its value of this cycle.
    bool isMarked(s_Variable const* variable) const {
        return slotIndex(variable, 0) != none || variable->isParam;
    }
    void mark(s_Variable* variable) { slotOf(variable, 0); }
    std::size_t& slotIndex(s_Variable const* variable, int age) {
        return atAge[2 * static_cast<std::size_t>(variable->slot) + static_cast<std::size_t>(age)];
    }
    std::size_t slotIndex(s_Variable const* variable, int age) const {
        return atAge[2 * static_cast<std::size_t>(variable->slot) + static_cast<std::size_t>(age)];
    }

    s_runtime* rt;
    s_Variable const* without;
    Box box;
    std::vector<std::size_t> atAge;  // per variable, its slots of ages 0 and 1
};

// A value is never narrowed where it is given, and where the history does not reach it stands for
// all that is older.
BoxSlot BoxBuilder::newSlot(s_Variable* variable, int age) const {
    BoxSlot slot{.variable = variable, .age = age};
    slot.fixed = variable->isParam || sn_isInput(rt, variable) ||
                 age - sn_firstHistoryAge >= variable->histo.size();
    slot.value = outwardOf(sn_predictedAt(variable, age));
    if (age == 0 && variable->domain)
        narrow(slot.value, outwardOf(*variable->domain));
    slot.predicted = slot.value;
    if (age == 0 && variable != without)
        observe(slot);
    return slot;
}

// Never by a measure beside the prediction: that is an alarm in the making, and the value of this
// variable is what its causes tell.
void BoxBuilder::observe(BoxSlot& slot) const {
    if (!sn_isTrusted(rt, slot.variable))
        return;
    Outward const seen = outwardOf(sn_observed(slot.variable));
    if (!meet(slot.value, seen))
        return;
    narrow(slot.value, seen);
    slot.observed = true;
}

std::size_t BoxBuilder::slotOf(s_Variable* variable, int age) {
    if (variable->isParam)
        age = 0;
    if (age < 2 && slotIndex(variable, age) != none)
        return slotIndex(variable, age);
    if (age >= 2)
        for (std::size_t i = 0; i < box.slots.size(); ++i)
            if (box.slots[i].variable == variable && box.slots[i].age == age)
                return i;
    box.slots.push_back(newSlot(variable, age));
    if (age < 2)
        slotIndex(variable, age) = box.slots.size() - 1;
    return box.slots.size() - 1;
}

std::size_t BoxBuilder::causeSlot(s_Influence const& influence, int extraAge) {
    s_Variable* cause = influence.cause;
    auto const [least, most] = sn_agesRead(influence);
    bool const known = cause->isParam || sn_isInput(rt, cause) || sn_isPredicted(cause);
    if (!known || (least == 0 && !isMarked(cause)))
        return none;
    if (least == most || cause->isParam)
        return slotOf(cause, most + extraAge);
    if (extraAge != 0)
        return none;
    // Of a range of delays one value acts, and which is not known: none of them can be narrowed.
    BoxSlot slot{.variable = cause, .age = most, .fixed = true};
    slot.value = outwardOf(sn_predictedAt(cause, most));
    for (int age = least; age < most; ++age)
        slot.value = hullOf(slot.value, outwardOf(sn_predictedAt(cause, age)));
    // Not to be found by its age.
    slot.age = -1;
    box.slots.push_back(slot);
    return box.slots.size() - 1;
}

bool BoxBuilder::addTerm(s_Influence* influence, s_Objet const& coefficient, int extraAge,
                         BoxRelation& relation) {
    Truth const active = mayAct(influence, rt);
    if (active == Truth::FALSE)
        return true;
    std::size_t const slot = causeSlot(*influence, extraAge);
    if (slot == none || !isValue(coefficient))
        return false;
    relation.terms.push_back({slot, outwardOf(coefficient), active == Truth::OPEN});
    return true;
}

// The forms whose update is a hull: see the recursions in dynamic.cpp. With interval coefficients
// there are corners, and these hold one cause.
bool isTrueHull(s_CGraph const& graph) {
    auto const numbers = [](s_Influence const* i) { return isReal(i->b1) && isReal(i->b2); };
    s_Influence const& last = *graph.causes.back();
    bool const plain = std::all_of(graph.causes.begin(), graph.causes.end(), numbers);
    if (isReal(last.a1) && isReal(last.a2))
        return plain || (graph.causes.size() == 1 && isRange(last.b1));
    return isRange(last.a1) && isRange(last.a2) && graph.causes.size() == 1 && !plain;
}

bool BoxBuilder::fillSecondOrder(s_CGraph const& graph, BoxRelation& relation) {
    if (!isTrueHull(graph))
        return false;
    s_Influence const& last = *graph.causes.back();
    for (s_Influence* influence : graph.causes)
        if (!addTerm(influence, influence->b1, 0, relation) ||
            !addTerm(influence, influence->b2, 1, relation))
            return false;
    relation.terms.push_back({slotOf(last.effect, 1), outwardOf(last.a1)});
    relation.terms.push_back({slotOf(last.effect, 2), outwardOf(last.a2)});
    return true;
}

bool BoxBuilder::fillRelation(s_CGraph const& graph, BoxRelation& relation) {
    if (graph.kind == INF_DYNAMIC2)
        return fillSecondOrder(graph, relation);
    if (graph.kind == INF_COUPLING)
        return false;  // such a graph has no recursion of its own
    bool const dynamic = graph.kind == INF_DYNAMIC;
    for (s_Influence* influence : graph.causes)
        if (!addTerm(influence, dynamic ? influence->gain : influence->b1, 0, relation))
            return false;
    s_Influence const& last = *graph.causes.back();
    if (graph.kind == INF_INTEGRAL)
        relation.terms.push_back({slotOf(last.effect, 1), Outward{1.0, 1.0}});
    if (dynamic) {
        relation.mix = outwardOf(last.a1);
        relation.previous = slotOf(last.effect, 1);
    }
    return !dynamic || isValue(last.a1);
}

void BoxBuilder::addRelation(s_Variable* effect) {
    if (!sn_isPredicted(effect))
        return;
    BoxRelation relation;
    bool const kept = fillRelation(*effect->graph, relation);
    relation.effect = slotOf(effect, 0);
    if (kept)
        box.relations.push_back(std::move(relation));
}

}  // namespace

Box makeBox(s_runtime* rt, s_Variable const* without) {
    return BoxBuilder(rt, without).build();
}
