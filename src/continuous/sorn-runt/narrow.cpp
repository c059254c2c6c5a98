// The rule `narrow`: what is measured narrows everything that stands behind it.
//
// The classic rule. A trusted measure takes the place of the value in the one sum that reads it,
// and the bound search (search.cpp) moves the bounds of the direct causes of a measured static
// effect to where an optimiser found extremes that still explain the measure. Nothing reaches the
// causes of these causes. A measure is taken as exact.
//
// What goes wrong. First, bounds stay wide two links behind a measure, and wide bounds hide faults.
// Second, the optimum is approximate and comes from inside: the search may stop before the extreme,
// and a bound put there cuts off values that are true. Third, an effect that is updated after the
// measures have entered reads the measure of this cycle where its delay asks for an older one.
// Fourth, a sensor is never exact, and with the number it shows everything computed from it is a
// little wrong, in bounds that claim to hold it.
//
// The rule.
//   - A measure stands for an interval: the number shown, and the bound of noise that the run was
//     given (`noise`) on both sides.
//   - Where a cycle begins, `old` of each trusted measured variable becomes what its prediction and
//     its measure have in common. From there `old` and the histories carry what was known at the
//     end of each step, and every update reads them at exactly its delay. The bound search does not
//     run.
//   - When a cycle has computed all `new_`, every relation of this cycle (effect = sum of active
//     causes, at their delays) is taken backward and forward (contractor.cpp) over `new_`, `old`
//     and the histories, with each trusted measure that meets its prediction. `new_` then takes the
//     narrower bounds. That of a measured variable stays what its causes tell, since it is what the
//     measure is compared with.
//   - What was found about the past is used for the present and then dropped. Rejected: to keep it
//     in `old` and the histories. A mode that changed unseen is diagnosed later, and the candidate
//     is then replayed from the step of the change: its values of that step must not have been
//     narrowed by later measures under the mode that had already ended. Nothing is lost for the
//     next cycle but what a longer delay would read of it.
//   - A change of mode leaves the histories as they are (hybrid/mapping.cpp), where the classic
//   rule
//     fills them with the values of the jump.
//   - When the relations contradict the measures together, although each measure meets its
//     prediction, all of the narrowing of this cycle is undone. Each measure that lies outside of
//     what the others leave for it counts as outside in the check of this cycle, on the side where
//     it lies. If none does, the contradiction has no side, and the check is as ever.
//
// Why it is sound. Let the candidate's modes be the true ones, gains and disturbances within their
// bounds, and each measure within its noise. Then the true values of all slots satisfy every
// relation and every measure, and a contraction removes only what cannot; it is rounded outwards.
// So the true values stay inside, at every step, and there is never a contradiction: a candidate
// with one is not the truth. Nothing is narrowed by a measure in alarm, nor behind an influence
// that may or may not act, nor through a coefficient that may be zero, nor where one of several
// delays acts. The measures' premise is theirs alone: with noise beyond the bound given, alarms may
// be false.
//
// Rejected: to contract over the relations of several past cycles. It would let a measure that lags
// by a delay narrow the present, but it needs the activity of every influence at every step kept,
// and costs as many times more.
#include <algorithm>
#include <cmath>

#include "continuous/contractor.h"
#include "continuous/sorn-runt.h"

namespace {

s_Objet closedRange(double lo, double hi) {
    return lo == hi ? makeReal(lo) : makeRange(lo, hi, 1, 1);
}

// What prediction and measure have in common. Without anything the measure stands: it was trusted,
// so it lies within the tolerance of the check.
void takeMeasure(s_Variable* variable) {
    s_Objet const seen = sn_observed(variable);
    Outward value = outwardOf(variable->old), by = outwardOf(seen);
    if (!isValue(variable->old) || !meet(value, by))
        variable->old = seen;
    else
        putNarrower(variable->old, by);
}

void writeBack(Box const& box) {
    for (BoxSlot const& slot : box.slots)
        if (slot.age == 0 && !slot.fixed)
            putNarrower(slot.variable->new_, slot.observed ? slot.predicted : slot.value);
}

// The tolerance of the check holds here, too: what the others leave may be as thin as a number.
bool isBeyond(double seen, double bound, double precision) {
    return std::fabs(seen - bound) > precision * (std::fabs(seen) + std::fabs(bound));
}

int sideOf(Outward const& seen, Outward const& left, double precision) {
    if (seen.lo > left.hi && isBeyond(seen.lo, left.hi, precision))
        return 1;
    return seen.hi < left.lo && isBeyond(seen.hi, left.lo, precision) ? -1 : 0;
}

BoxSlot const& slotOfEffect(Box const& box, s_Variable const* variable) {
    for (BoxSlot const& slot : box.slots)
        if (slot.variable == variable && slot.age == 0)
            return slot;
    return box.slots.front();
}

// On which side of what all other measures leave for it the measure lies; 0 when inside, or when
// the others contradict each other without it.
int sideAmongOthers(s_runtime* rt, s_Variable const* measure) {
    Box box = makeBox(rt, measure);
    if (!contract(box))
        return 0;
    return sideOf(outwardOf(sn_observed(measure)), slotOfEffect(box, measure).value, rt->precision);
}

}  // namespace

s_Objet sn_observed(s_Variable const* variable) {
    if (variable->noise == 0.0)
        return variable->mes;
    return closedRange(sn_infOf(variable->mes) - variable->noise,
                       sn_supOf(variable->mes) + variable->noise);
}

bool sn_isPredicted(s_Variable const* variable) {
    return variable->graph != nullptr && !variable->graph->causes.empty();
}

AgesRead sn_agesRead(s_Influence const& influence) {
    int const first = influence.type == INF_STATIC ? 0 : 1;
    return {first + influence.delayMin, first + influence.delayMax};
}

s_Objet const& sn_predictedAt(s_Variable const* variable, int age) {
    if (variable->isParam || age == 1)
        return variable->old;
    if (age <= 0)
        return variable->new_;
    int const kept = variable->histo.size();
    if (kept == 0)
        return variable->old;
    return variable->histo[std::min(age - sn_firstHistoryAge, kept - 1)];
}

void sn_loadPredicted(s_runtime* rt, s_Influence const* influence) {
    s_engine& engine = *rt->engine;
    auto const [least, most] = sn_agesRead(*influence);
    sn_putObjet(&sn_predictedAt(influence->cause, most), &engine.TMP2);
    if (influence->type == INF_DYNAMIC2)
        sn_putObjet(&sn_predictedAt(influence->cause, most + 1), &engine.TMP5);
    for (int age = least; age < most; ++age)
        sn_coverBoth(&engine.TMP2, sn_predictedAt(influence->cause, age));
}

void sn_coverBoth(s_Objet* value, s_Objet const& other) {
    if (!isValue(*value) || !isValue(other))
        return;
    auto const closed = [](s_Objet const& o) {
        return o.type == OBJ_REAL ? range{0, 0, 1, 1} : o.rng;
    };
    range const a = closed(*value), b = closed(other);
    double const inf = std::min(sn_infOf(*value), sn_infOf(other));
    double const sup = std::max(sn_supOf(*value), sn_supOf(other));
    bool const infClosed =
        (sn_infOf(*value) == inf && isInfClosed(a)) || (sn_infOf(other) == inf && isInfClosed(b));
    bool const supClosed =
        (sn_supOf(*value) == sup && isSupClosed(a)) || (sn_supOf(other) == sup && isSupClosed(b));
    *value = inf == sup ? makeReal(inf) : makeRange(inf, sup, infClosed, supClosed);
}

void sn_takeMeasures(s_runtime* rt) {
    for (s_Variable* measure : rt->measure)
        if (sn_isTrusted(rt, measure) && sn_isPredicted(measure))
            takeMeasure(measure);
}

void sn_narrowCycle(s_runtime* rt) {
    for (s_Variable* measure : rt->measure)
        measure->sideOfOthers = 0;
    Box box = makeBox(rt);
    if (contract(box))
        return writeBack(box);
    for (BoxSlot const& slot : box.slots)
        if (slot.observed)
            slot.variable->sideOfOthers = sideAmongOthers(rt, slot.variable);
}
