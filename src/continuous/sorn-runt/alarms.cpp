// Detection: each measure is compared with the prediction for the same instant, and measures that
// stay outside become alarms. A measure that is missing is compared with nothing: what was counted
// stands until the next one.
//
// Per measure there is a counter for each side. Required: it goes back to 0 only with a measure
// that is inside, not with one on the other side, so that a value that swings around its prediction
// reaches the threshold on each side in turn. What an alarm has set stays until then, too.

#include <cassert>
#include <cmath>

#include "continuous/sorn-runt.h"

namespace {

// UNDECIDED: on a bound that does not belong to the prediction.
enum class Verdict { INSIDE, LOW, HIGH, UNDECIDED };

Verdict againstRange(double measure, range const& prediction) {
    if (measure > prediction.sup)
        return Verdict::HIGH;
    return measure < prediction.inf ? Verdict::LOW : Verdict::UNDECIDED;
}

// The distance is relative to both values, so the two zeros need a rule of their own.
Verdict againstNumber(double measure, double prediction, double precision) {
    if (measure == 0.0 && prediction == 0.0)
        return Verdict::INSIDE;
    double const distance =
        std::fabs(measure - prediction) / (std::fabs(measure) + std::fabs(prediction));
    if (distance < precision)
        return Verdict::INSIDE;
    return measure > prediction ? Verdict::HIGH : Verdict::LOW;
}

// What the prediction lets a measure show.
s_Objet withNoise(s_Variable const& variable) {
    if (variable.noise == 0.0 || !isValue(variable.old))
        return variable.old;
    s_Objet shown = isRange(variable.old) ? variable.old : makeRange(0.0, 0.0, 1, 1);
    sn_setBounds(&shown, sn_infOf(variable.old) - variable.noise,
                 sn_supOf(variable.old) + variable.noise);
    return shown;
}

// As thin as the rounding of a few operations leaves what is a number in truth. Only the rule
// `narrow` makes such intervals, from measures that fix a value.
bool isThin(range const& prediction) {
    constexpr double rounding = 1e-9;
    return prediction.sup - prediction.inf <=
           rounding * (std::fabs(prediction.inf) + std::fabs(prediction.sup));
}

Verdict againstValue(s_Variable const& variable, double precision) {
    s_Objet const prediction = withNoise(variable);
    if (sn_inObjet(&variable.mes, &prediction))
        return Verdict::INSIDE;
    double const measure = sn_infOf(variable.mes);
    if (isRange(prediction))
        return againstRange(measure, prediction.rng);
    return againstNumber(measure, sn_infOf(prediction), precision);
}

// By the rule `narrow` a measure also counts as outside when it lies outside of what the other
// measures leave for it.
Verdict classify(s_Variable const& variable, Rules const& rules, double precision) {
    Verdict const verdict = againstValue(variable, precision);
    if (!rules.narrow)
        return verdict;
    if (verdict == Verdict::INSIDE && variable.sideOfOthers != 0)
        return variable.sideOfOthers > 0 ? Verdict::HIGH : Verdict::LOW;
    // A bound of noise that was given takes the place of the tolerance.
    if (verdict == Verdict::INSIDE || variable.noise != 0.0 || !isRange(variable.old) ||
        !isThin(variable.old.rng))
        return verdict;
    double const middle = 0.5 * (variable.old.rng.inf + variable.old.rng.sup);
    return againstNumber(sn_infOf(variable.mes), middle, precision);
}

void countAlarm(int* alarm, int* misb, int threshold) {
    if (*alarm < threshold - 1) {
        ++*alarm;
        return;
    }
    *alarm = threshold;
    *misb = 1;
}

void clearAlarms(s_Variable* variable) {
    variable->lowalarm = variable->highalarm = 0;
    variable->meslowmisb = variable->meshighmisb = variable->mesmisb = 0;
}

void check(s_Variable* variable, Rules const& rules, double precision, int threshold) {
    if (!isValue(variable->mes))
        return;
    Verdict const verdict = classify(*variable, rules, precision);
    if (verdict == Verdict::INSIDE)
        return clearAlarms(variable);
    if (verdict == Verdict::HIGH)
        countAlarm(&variable->highalarm, &variable->meshighmisb, threshold);
    else if (verdict == Verdict::LOW)
        countAlarm(&variable->lowalarm, &variable->meslowmisb, threshold);
    if (variable->meslowmisb || variable->meshighmisb)
        variable->mesmisb = 1;
}

}  // namespace

void sn_setAlarms(s_runtime* rt) {
    for (s_Variable* measure : rt->measure)
        measure->lowalarm = 1;
}

void sn_resetMs(s_runtime* rt) {
    for (s_Variable* measure : rt->measure)
        if (isValue(measure->mes))
            measure->old = sn_observed(measure);
}

int sn_checkMs(s_runtime* rt, int threshold) {
    for (s_Variable* measure : rt->measure)
        check(measure, rt->engine->rules, rt->precision, threshold);
    return 1;
}

int sn_yieldAlarms(s_runtime* rt) {
    if (rt->measure.empty())
        return 1;
    std::size_t const count = rt->measure.size();
    assert(rt->lowalarm.size() == count && rt->highalarm.size() == count);
    assert(rt->meslowmisb.size() == count && rt->meshighmisb.size() == count);
    assert(rt->mesmisb.size() == count);
    for (std::size_t i = 0; i < count; ++i) {
        s_Variable const& measure = *rt->measure[i];
        rt->lowalarm[i] = measure.lowalarm;
        rt->highalarm[i] = measure.highalarm;
        rt->meslowmisb[i] = measure.meslowmisb;
        rt->meshighmisb[i] = measure.meshighmisb;
        rt->mesmisb[i] = measure.mesmisb;
    }
    rt->engine->host.alarms(static_cast<int>(count), rt->lowalarm.data(), rt->highalarm.data(),
                            rt->meslowmisb.data());
    return 1;
}

int sn_yieldDiags(s_runtime* rt) {
    rt->engine->host.diagnosis(rt->diagBuf);
    return 1;
}
