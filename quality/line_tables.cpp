// Two tables of the same groups: what was noticed, and what the diagnoses were worth.
#include "quality/line_tables.h"

#include "quality/grouping.h"

namespace quality {

namespace {

using Group = GroupOf<LineResult>;

Row keyOf(LineResult const& r) {
    return {std::to_string(r.asked.failures), std::to_string(r.asked.commands),
            r.asked.observeEvery == 1 ? "each" : "every " + std::to_string(r.asked.observeEvery)};
}

Row const keyColumns{"failures", "commands", "observed"};

Row const noticedColumns{"runs",        "shows", "false alarms",    "missed", "late",
                         "true at end", "first", "most candidates", "stopped"};

Row noticedFigures(Group const& group) {
    long const shows = count(group, [](auto const& v) { return v.shows.has_value(); });
    long const noticed = count(group, [](auto const& v) { return v.noticed(); });
    return {std::to_string(group.size()),
            std::to_string(shows),
            std::to_string(count(group, [](auto const& v) { return v.falseAlarm(); })),
            share(count(group, [](auto const& v) { return v.shows && !v.alarm; }), shows),
            std::to_string(
                count(group, [](auto const& v) { return v.noticed() && *v.alarm > *v.shows; })),
            share(count(group, [](auto const& v) { return v.noticed() && v.among; }), noticed),
            share(count(group, [](auto const& v) { return v.noticed() && v.first; }), noticed),
            mostCandidates(group),
            std::to_string(count(group, [](auto const& v) { return v.stopped.has_value(); }))};
}

Row const diagnosisColumns{"diagnoses",     "minimal found", "kinds found",   "answers",
                           "wrong answers", "right order",   "no probability"};

Row diagnosisFigures(Group const& group) {
    auto const total = [&](int LineVerdict::*figure) {
        return sum(group, [&](LineVerdict const& v) { return v.*figure; });
    };
    long const diagnoses = total(&LineVerdict::diagnoses);
    return {std::to_string(diagnoses),
            share(total(&LineVerdict::found), total(&LineVerdict::minimal)),
            share(total(&LineVerdict::foundKinds), total(&LineVerdict::minimalKinds)),
            std::to_string(total(&LineVerdict::answers)),
            std::to_string(total(&LineVerdict::wrong)),
            share(total(&LineVerdict::wellOrdered), diagnoses),
            std::to_string(total(&LineVerdict::nans))};
}

}  // namespace

std::vector<Table> lineResultTables(std::vector<LineResult> const& results) {
    return {tableOf<LineResult>("Stories of the feed line", keyColumns, results, keyOf,
                                noticedColumns, noticedFigures),
            tableOf<LineResult>("Diagnoses of the feed line beside an enumeration", keyColumns,
                                results, keyOf, diagnosisColumns, diagnosisFigures)};
}

Table lineCostTable(std::vector<LineResult> const& results) {
    return {"Cost of a run of the feed line", costColumns("stories"), {costRow("all", results)}};
}

}  // namespace quality
