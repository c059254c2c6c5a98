// Results, grouped by what was varied, and a row of figures for each group.
#include "quality/room_tables.h"

#include <algorithm>
#include <utility>

#include "quality/grouping.h"

namespace quality {

namespace {

using Group = GroupOf<RoomResult>;
using Key = KeyOf<RoomResult>;

Group only(Group const& group, bool (RoomVerdict::*test)() const) {
    Group chosen;
    for (RoomResult const* result : group)
        if ((result->verdict.*test)())
            chosen.push_back(result);
    return chosen;
}

std::string heldTemperature(Group const& group) {
    return percent(sum(group, [](auto const& v) { return v.holdTemperature; }),
                   sum(group, [](auto const& v) { return v.samples; }));
}

std::string heldRate(Group const& group) {
    return percent(sum(group, [](auto const& v) { return v.holdRate; }),
                   sum(group, [](auto const& v) { return v.samples; }));
}

std::string widthText(Group const& group, std::size_t mark) {
    std::vector<double> widths;
    for (RoomResult const* result : group)
        if (auto const& width = result->verdict.widths[mark])
            widths.push_back(*width);
    return quantileText(widths, 0.5, 1) + " / " + quantileText(widths, 0.9, 1);
}

// ---- Healthy days ----

Row healthyFigures(Group const& group) {
    long const runs = static_cast<long>(group.size());
    return {std::to_string(runs),
            share(count(group, [](auto const& v) { return v.falseAlarm(); }), runs),
            heldTemperature(group), heldRate(group), mostCandidates(group)};
}

Row const healthyColumns{"runs", "false alarms", "holds room.x", "holds room.xd",
                         "most candidates"};

Row widthFigures(Group const& group) {
    Row row;
    for (std::size_t mark = 0; mark < widthMarks.size(); ++mark)
        row.push_back(widthText(group, mark));
    return row;
}

Row widthColumns() {
    Row row;
    for (int const mark : widthMarks)
        row.push_back("step " + std::to_string(mark));
    return row;
}

// ---- Days with a fault ----

std::vector<double> delays(Group const& noticed) {
    std::vector<double> steps;
    for (RoomResult const* result : noticed)
        steps.push_back(*result->verdict.alarm - *result->verdict.struck);
    return steps;
}

std::string answers(Group const& group, Answer RoomVerdict::*when, bool Answer::*what) {
    return share(count(group, [&](RoomVerdict const& v) { return (v.*when).*what; }),
                 static_cast<long>(group.size()));
}

// Shares of detection are of the days on which the fault struck, those of isolation of the days on
// which it was noticed.
Row faultyFigures(Group const& group) {
    Group const noticed = only(group, &RoomVerdict::noticed);
    long const struck = count(group, [](auto const& v) { return v.struck.has_value(); });
    long const falseAlarms = count(group, [](auto const& v) { return v.falseAlarm(); });
    long const missed = struck - static_cast<long>(noticed.size()) -
                        count(group, [](auto const& v) { return v.struck && v.falseAlarm(); });
    std::vector<double> const late = delays(noticed);
    return {std::to_string(group.size()),
            std::to_string(struck),
            std::to_string(falseAlarms),
            share(missed, struck),
            quantileText(late, 0.5, 0) + " / " + quantileText(late, 0.9, 0) + " / " +
                quantileText(late, 1.0, 0),
            answers(noticed, &RoomVerdict::atDiagnosis, &Answer::among),
            answers(noticed, &RoomVerdict::atDiagnosis, &Answer::first),
            share(count(noticed, [](auto const& v) { return v.stepNamed; }),
                  static_cast<long>(noticed.size())),
            answers(noticed, &RoomVerdict::atEnd, &Answer::among),
            answers(noticed, &RoomVerdict::atEnd, &Answer::first),
            answers(noticed, &RoomVerdict::atDiagnosis, &Answer::misled),
            share(count(noticed, [](auto const& v) { return v.causeSuspected; }),
                  static_cast<long>(noticed.size())),
            std::to_string(count(group, [](auto const& v) { return v.stopped && !v.ranAway(); })),
            std::to_string(count(group, [](auto const& v) { return v.ranAway(); })),
            heldTemperature(group),
            percent(sum(noticed, [](auto const& v) { return v.explainedHold; }),
                    sum(noticed, [](auto const& v) { return v.explained; })),
            mostCandidates(group)};
}

Row const faultyColumns{"runs",
                        "struck",
                        "false alarms",
                        "missed",
                        "delay median / 90 % / most",
                        "true mode found",
                        "found first",
                        "step named",
                        "at end",
                        "first at end",
                        "wrong mode first",
                        "cause suspected",
                        "stopped",
                        "ran away",
                        "holds room.x",
                        "explained",
                        "most candidates"};

Row faultOf(RoomResult const& r) {
    return {nameOf(r.asked.day.fault)};
}

Row onsetOf(RoomResult const& r) {
    return {nameOf(r.asked.day.fault), std::to_string(r.asked.day.onset)};
}

// What decides how well the engine sees.
Row sightOf(RoomResult const& r) {
    return {std::to_string(r.asked.threshold), nameOf(r.asked.day.uncertainty),
            std::to_string(r.asked.day.onset)};
}

}  // namespace

std::vector<Table> healthyTables(std::vector<RoomResult> const& results) {
    Key const all = [](RoomResult const& r) {
        return Row{decimals(r.asked.day.noise, 2), std::to_string(r.asked.threshold),
                   nameOf(r.asked.day.uncertainty)};
    };
    Key const day = [](RoomResult const& r) {
        return Row{std::to_string(r.asked.threshold), nameOf(r.asked.day.uncertainty)};
    };
    return {tableOf<RoomResult>("Healthy days of the room", {"noise", "threshold", "uncertainty"},
                                results, all, healthyColumns, healthyFigures),
            tableOf<RoomResult>("Healthy days: width of the bounds of room.x, median / 90 %",
                                {"threshold", "uncertainty"}, results, day, widthColumns(),
                                widthFigures)};
}

std::vector<Table> faultyTables(std::vector<RoomResult> const& results) {
    auto const by = [&](std::string const& title, Row head, Key const& key) {
        return tableOf<RoomResult>("Faults of the room, " + title, std::move(head), results, key,
                                   faultyColumns, faultyFigures);
    };
    return {
        by("by fault", {"fault"}, faultOf), by("by fault and onset", {"fault", "onset"}, onsetOf),
        by("by threshold, uncertainty and onset", {"threshold", "uncertainty", "onset"}, sightOf),
        by("by threshold", {"threshold"},
           [](RoomResult const& r) { return Row{std::to_string(r.asked.threshold)}; }),
        by("by noise", {"noise"},
           [](RoomResult const& r) { return Row{decimals(r.asked.day.noise, 2)}; })};
}

Table isolationTable(std::vector<RoomResult> const& results) {
    Key const level = [](RoomResult const& r) { return Row{std::to_string(r.asked.isolation)}; };
    return tableOf<RoomResult>("Faults of the room, some days by level of isolation", {"level"},
                               results, level, faultyColumns, faultyFigures);
}

Table costTable(std::vector<RoomResult> const& healthy, std::vector<RoomResult> const& faulty) {
    return {"Cost of a run of 300 steps of the room",
            costColumns("days"),
            {costRow("healthy", healthy), costRow("with a fault", faulty)}};
}

}  // namespace quality
