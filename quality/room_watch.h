// The engine beside a true day of the room: what it noticed, when, whom it blamed, and what it
// knew.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "quality/meters.h"
#include "quality/room_truth.h"
#include "tavro/tavro.hpp"

namespace quality {

// The steps at which the width of the bounds of room.x is noted.
inline constexpr std::array<int, 6> widthMarks{50, 100, 150, 200, 240, 300};

// The candidates beside the true modes of thermostat and room at one step.
struct Answer {
    std::size_t count = 0;
    bool among = false;   // some candidate is in the true modes
    bool first = false;   // the best one is
    bool misled = false;  // the best one has the thermostat stuck as it is not
};

struct RoomVerdict {
    std::optional<int> struck;  // of the day
    std::optional<int>
        alarm;  // the first step at which no candidate agreed, or that stopped the run
    std::optional<int> diagnosed;
    bool causeSuspected =
        false;               // of a diagnosis: a suspect names an influence that the fault broke
    bool stepNamed = false;  // of a diagnosis: a candidate has the thermostat stick when it did
    Answer atDiagnosis;
    Answer atEnd;
    std::optional<tavro::ErrorKind> stopped;
    // Samples that were answered, time 0 included, and those of which some candidate's bounds hold
    // the true temperature, and the true rate.
    int samples = 0, holdTemperature = 0, holdRate = 0;
    // The same from a diagnosis on whose answer holds: a candidate is in the true modes.
    int explained = 0, explainedHold = 0;
    // From the lowest lower to the highest upper bound of all candidates; none after a stop.
    std::array<std::optional<double>, widthMarks.size()> widths;
    std::size_t mostCandidates = 0;
    Cost cost;

    // Its candidates have used up the memory of a run.
    bool ranAway() const { return stopped == tavro::ErrorKind::memory; }
    bool falseAlarm() const { return alarm && (!struck || *alarm < *struck); }
    bool noticed() const { return struck && alarm && *alarm >= *struck; }
};

RoomVerdict watchRoom(tavro::Plant const& plant, RoomSetting const& setting,
                      tavro::Options const& options);

}  // namespace quality
