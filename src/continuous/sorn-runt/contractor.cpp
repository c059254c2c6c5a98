// Forward and backward through the relations of a box, to a fixpoint.
//
// This is the forward-backward contractor of constraint programming (F. Benhamou, F. Goualard,
// L. Granvilliers, J.-F. Puget, "Revising hull and box consistency", ICLP 1999), iterated over all
// relations of a cycle. Backward: each term of a sum is what the effect leaves beside the others,
// over its coefficient. Forward: the effect is within the hull of the sum. Relations go backward in
// the reverse order of evaluation, from effects to causes, and forward in that order, so that in a
// graph without loops one round carries each measure to all that stands behind it.
//
// Every step removes only values that no solution has (outward.h rounds outwards), so the box holds
// every solution throughout, whenever the rounds are stopped.
#include "continuous/contractor.h"

namespace {

// A graph that shares causes may take several rounds, each worth less than the one before.
constexpr int mostRounds = 8;

// Collects what the steps of a round did.
struct Progress {
    bool moved = false;
    bool contradiction = false;

    void take(Narrowing narrowing) {
        moved = moved || narrowing == Narrowing::NARROWER;
        contradiction = contradiction || narrowing == Narrowing::CONTRADICTION;
    }
};

Outward contribution(Box const& box, BoxTerm const& term) {
    Outward const acting = term.coefficient * box.slots[term.slot].value;
    return term.open ? hullOf(acting, {0.0, 0.0}) : acting;
}

// All terms but one; *left* may be the number of terms, for all of them.
Outward sumWithout(Box const& box, BoxRelation const& relation, std::size_t left) {
    Outward sum;
    for (std::size_t i = 0; i < relation.terms.size(); ++i)
        if (i != left)
            sum = sum + contribution(box, relation.terms[i]);
    return sum;
}

Outward sumOf(Box const& box, BoxRelation const& relation) {
    return sumWithout(box, relation, relation.terms.size());
}

// Linear in a, so its bounds lie at the ends of a; one minus a beside a would count it twice.
Outward mixed(Outward const& mix, Outward const& previous, Outward const& sum) {
    auto const at = [&](double a) {
        Outward const point{a, a};
        return point * previous + (Outward{1.0, 1.0} - point) * sum;
    };
    return hullOf(at(mix.lo), at(mix.hi));
}

void forward(Box& box, BoxRelation const& relation, Progress& progress) {
    Outward const sum = sumOf(box, relation);
    Outward const result =
        relation.mix ? mixed(*relation.mix, box.slots[relation.previous].value, sum) : sum;
    BoxSlot& effect = box.slots[relation.effect];
    if (effect.observed)
        progress.take(narrow(effect.predicted, result));
    progress.take(narrow(effect.value, result));
}

// slot = what is left / coefficient.
void backInto(Box& box, std::size_t at, Outward const& left, Outward const& coefficient,
              Progress& progress) {
    BoxSlot& slot = box.slots[at];
    if (!slot.fixed && !holdsZero(coefficient))
        progress.take(narrow(slot.value, left / coefficient));
}

void backIntoTerms(Box& box, BoxRelation const& relation, Outward const& target,
                   Progress& progress) {
    for (std::size_t i = 0; i < relation.terms.size(); ++i) {
        BoxTerm const& term = relation.terms[i];
        if (!term.open && !box.slots[term.slot].fixed)
            backInto(box, term.slot, target - sumWithout(box, relation, i), term.coefficient,
                     progress);
    }
}

void backward(Box& box, BoxRelation const& relation, Progress& progress) {
    Outward const effect = box.slots[relation.effect].value;
    if (!relation.mix)
        return backIntoTerms(box, relation, effect, progress);
    Outward const a = *relation.mix, rest = Outward{1.0, 1.0} - a;
    backInto(box, relation.previous, effect - rest * sumOf(box, relation), a, progress);
    if (!holdsZero(rest))
        backIntoTerms(box, relation, (effect - a * box.slots[relation.previous].value) / rest,
                      progress);
}

}  // namespace

bool contract(Box& box) {
    for (int round = 0; round < mostRounds; ++round) {
        Progress progress;
        for (std::size_t i = box.relations.size(); i > 0 && !progress.contradiction; --i)
            backward(box, box.relations[i - 1], progress);
        for (std::size_t i = 0; i < box.relations.size() && !progress.contradiction; ++i)
            forward(box, box.relations[i], progress);
        if (progress.contradiction)
            return false;
        if (!progress.moved)
            break;
    }
    return true;
}
