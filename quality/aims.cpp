// The days of the aims, drawn by seed, and a row of figures for each kind.
#include "quality/aims.h"

#include <algorithm>

#include "quality/grouping.h"
#include "quality/in_parallel.h"
#include "quality/rules.h"
#include "support/dice.h"

namespace quality {

namespace {

constexpr double noises[] = {0.0, 0.01, 0.02};
constexpr Uncertainty uncertainties[] = {Uncertainty::constant, Uncertainty::redrawn};
constexpr RoomFault aimedFaults[] = {RoomFault::stuckOn, RoomFault::stuckOff, RoomFault::sensorDead,
                                     RoomFault::windowOpen};
constexpr int aimedThreshold = 3;
// A thermostat that sticks from there on ought to switch within 50 steps, and 30 are left.
constexpr int latestOnset = 220;
constexpr std::size_t limit = 100;

bool isOfThermostat(RoomFault fault) {
    return fault == RoomFault::stuckOn || fault == RoomFault::stuckOff;
}

template <typename Add>
void forEachKind(int seeds, Add add) {
    for (double const noise : noises)
        for (Uncertainty const uncertainty : uncertainties)
            for (int seed = 1; seed <= seeds; ++seed)
                add(RoomSetting{.noise = noise,
                                .uncertainty = uncertainty,
                                .seed = static_cast<std::uint64_t>(seed)});
}

int drawn(Dice& dice, int least, int most) {
    return least + static_cast<int>(dice.below(static_cast<std::size_t>(most - least + 1)));
}

RoomVerdict watch(tavro::Plant const& plant, RoomCase const& asked, std::string const& rules,
                  int isolation, double told) {
    return watchRoom(
        plant, asked.day,
        underRules(rules,
                   {.isolation = isolation, .threshold = asked.threshold, .noise = {{"", told}}}));
}

RoomCase wildRoom(std::uint64_t seed) {
    constexpr RoomFault faults[] = {RoomFault::stuckOn,    RoomFault::stuckOff,
                                    RoomFault::sensorDead, RoomFault::sensorBias,
                                    RoomFault::windowOpen, RoomFault::draught};
    Dice dice(seed, 21);
    RoomCase one;
    one.day.seed = seed;
    one.day.steps = 45;
    one.day.fault = faults[dice.below(std::size(faults))];
    one.day.onset = drawn(dice, 1, 40);
    one.day.noise = dice.within(0.0, 0.2);
    one.day.uncertainty = uncertainties[dice.below(std::size(uncertainties))];
    one.threshold = drawn(dice, 1, 4);
    one.isolation = drawn(dice, 0, 1);
    return one;
}

}  // namespace

std::vector<RoomCase> aimedHealthyRooms(int seeds) {
    std::vector<RoomCase> cases;
    forEachKind(seeds, [&](RoomSetting const& day) { cases.push_back({day, aimedThreshold, 1}); });
    return cases;
}

std::vector<RoomCase> aimedFaultyRooms(int seeds) {
    std::vector<RoomCase> cases;
    for (RoomFault const fault : aimedFaults)
        forEachKind(seeds, [&](RoomSetting day) {
            day.fault = fault;
            Dice dice(day.seed, 20);
            day.onset = drawn(dice, 1, latestOnset);
            cases.push_back({day, aimedThreshold, isOfThermostat(fault) ? 1 : 0});
        });
    return cases;
}

std::vector<RoomCase> wildRooms(int count) {
    std::vector<RoomCase> cases;
    for (int seed = 1; seed <= count; ++seed)
        cases.push_back(wildRoom(static_cast<std::uint64_t>(seed)));
    return cases;
}

std::vector<Beside> watchBeside(std::vector<RoomCase> const& cases, std::string const& rules,
                                unsigned jobs) {
    tavro::Plant const plant = tavro::Plant::builtin("therm");
    std::vector<Beside> results(cases.size());
    inParallel(cases.size(), jobs, [&](std::size_t i) {
        RoomCase const& one = cases[i];
        results[i] = {one, watch(plant, one, rules, one.isolation, one.day.noise),
                      watch(plant, one, "classic", 0, one.day.noise)};
    });
    return results;
}

std::vector<RoomResult> watchWild(std::vector<RoomCase> const& cases, std::string const& rules,
                                  unsigned jobs) {
    tavro::Plant const plant = tavro::Plant::builtin("therm");
    std::vector<RoomResult> results(cases.size());
    inParallel(cases.size(), jobs, [&](std::size_t i) {
        results[i] = {cases[i], watch(plant, cases[i], rules, cases[i].isolation, 0.0)};
    });
    return results;
}

// ---- Tables ----

namespace {

// Over all days and marks.
std::vector<double> widthsOf(GroupOf<RoomResult> const& group) {
    std::vector<double> widths;
    for (RoomResult const* result : group)
        for (auto const& width : result->verdict.widths)
            if (width)
                widths.push_back(*width);
    return widths;
}

Row healthyFigures(GroupOf<RoomResult> const& group) {
    long const samples = sum(group, [](auto const& v) { return v.samples; });
    return {std::to_string(group.size()),
            std::to_string(count(group, [](auto const& v) { return v.falseAlarm(); })),
            percent(sum(group, [](auto const& v) { return v.holdTemperature; }), samples),
            percent(sum(group, [](auto const& v) { return v.holdRate; }), samples),
            quantileText(widthsOf(group), 0.5, 2),
            mostCandidates(group)};
}

// The median delay of each set of rules, over the days that both have noticed.
std::string delaysBeside(GroupOf<Beside> const& group) {
    std::vector<double> own, classic;
    for (Beside const* one : group)
        if (one->verdict.noticed() && one->classic.noticed()) {
            own.push_back(*one->verdict.alarm - *one->verdict.struck);
            classic.push_back(*one->classic.alarm - *one->classic.struck);
        }
    return quantileText(own, 0.5, 0) + " / " + quantileText(classic, 0.5, 0);
}

Row faultyFigures(GroupOf<Beside> const& group) {
    long const struck = count(group, [](auto const& v) { return v.struck.has_value(); });
    long const noticed = count(group, [](auto const& v) { return v.noticed(); });
    long const byClassic = std::count_if(group.begin(), group.end(),
                                         [](Beside const* one) { return one->classic.noticed(); });
    bool const diagnosed = group.front()->asked.isolation > 0;
    auto const ofDiagnosed = [&](long part) {
        return diagnosed ? share(part, noticed) : std::string("-");
    };
    return {
        std::to_string(struck),
        std::to_string(count(group, [](auto const& v) { return v.falseAlarm(); })),
        share(noticed, struck),
        share(byClassic, struck),
        std::to_string(std::count_if(group.begin(), group.end(),
                                     [](Beside const* one) { return one->isLater(); })),
        delaysBeside(group),
        ofDiagnosed(count(group, [](auto const& v) { return v.noticed() && v.atDiagnosis.among; })),
        ofDiagnosed(count(group, [](auto const& v) { return v.noticed() && v.atDiagnosis.first; })),
        percent(sum(group, [](auto const& v) { return v.explainedHold; }),
                sum(group, [](auto const& v) { return v.explained; }))};
}

Row wildFigures(GroupOf<RoomResult> const& group) {
    return {std::to_string(group.size()),
            std::to_string(count(group, [](auto const& v) { return v.mostCandidates > limit; })),
            mostCandidates(group),
            std::to_string(count(group, [](auto const& v) { return v.ranAway(); }))};
}

}  // namespace

Table aimedHealthyTable(std::vector<RoomResult> const& results) {
    return tableOf<RoomResult>(
        "Aims: healthy days of 300 steps, threshold 3", {"noise", "uncertainty"}, results,
        [](RoomResult const& r) {
            return Row{decimals(r.asked.day.noise, 2), nameOf(r.asked.day.uncertainty)};
        },
        {"runs", "false alarms", "holds room.x", "holds room.xd", "median width",
         "most candidates"},
        healthyFigures);
}

Table aimedFaultyTable(std::vector<Beside> const& results) {
    return tableOf<Beside>(
        "Aims: faults at any step, threshold 3, beside the classic rules",
        {"fault", "noise", "uncertainty"}, results,
        [](Beside const& r) {
            return Row{nameOf(r.asked.day.fault), decimals(r.asked.day.noise, 2),
                       nameOf(r.asked.day.uncertainty)};
        },
        {"struck", "false alarms", "noticed", "by classic", "later than classic",
         "median delay / classic", "true mode found", "found first", "explained"},
        faultyFigures);
}

Table wildTable(std::vector<RoomResult> const& results) {
    return tableOf<RoomResult>(
        "Aims: wild days of 45 steps", {"level"}, results,
        [](RoomResult const& r) { return Row{std::to_string(r.asked.isolation)}; },
        {"runs", "above 100 candidates", "most candidates", "ran away"}, wildFigures);
}

}  // namespace quality
