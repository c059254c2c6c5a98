// The engine beside a true story of the feed line, each of its diagnoses beside the enumeration.
#pragma once

#include <cstddef>
#include <optional>

#include "quality/line_truth.h"
#include "quality/meters.h"
#include "tavro/tavro.hpp"

namespace quality {

struct LineVerdict {
    // The first event that no history without a failure agrees with; from there on the fault shows.
    std::optional<int> shows;
    std::optional<int> alarm;  // the first diagnosis, or the stop
    std::optional<tavro::ErrorKind> stopped;

    // Over all diagnoses of the run.
    int diagnoses = 0;
    int minimal = 0;  // histories with the fewest failures, by enumeration
    int found = 0;    // of these, with every failure at its step
    // The same without the steps: which components fail, and how.
    int minimalKinds = 0, foundKinds = 0;
    int answers = 0;
    int wrong = 0;        // answers that no history of up to two failures bears out
    int wellOrdered = 0;  // diagnoses whose borne-out answers do not rise in exact probability
    int nans = 0;         // answers without a number for a probability

    // At the end: candidates in the true modes.
    bool among = false, first = false;
    std::size_t mostCandidates = 0;
    Cost cost;

    bool falseAlarm() const { return alarm && (!shows || *alarm < *shows); }
    bool noticed() const { return shows && alarm && *alarm >= *shows; }
};

LineVerdict watchLine(tavro::Plant const& plant, LineSetting const& setting,
                      tavro::Options const& options);

}  // namespace quality
