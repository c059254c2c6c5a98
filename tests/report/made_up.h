// Steps that nobody ran: what a run of the reference room might tell.
#pragma once

#include <cmath>
#include <limits>

#include "report/outcome.h"
#include "report/run_record.h"
#include "tavro/tavro.hpp"

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

inline tavro::Explanation move(std::string const& to, double earliest, double latest,
                               bool failure = true) {
    tavro::Explanation e;
    e.component = "thermostat";
    e.from = "on";
    e.to = to;
    e.time = earliest;
    e.earliest = earliest;
    e.latest = latest;
    e.failure = failure;
    e.unknown = to == "unknown";
    e.rank = 1.0;
    return e;
}

// All three variables lie within *lower* and *upper*.
inline tavro::Candidate candidate(int id, double lower, double upper,
                                  std::vector<tavro::Explanation> moves = {},
                                  double probability = 0.0) {
    tavro::Candidate c;
    c.id = id;
    c.modes = {{"room.mode", "closed"}, {"thermostat.mode", moves.empty() ? "on" : moves[0].to}};
    for (char const* name : {"room.xd", "room.x", "room.xdq"})
        c.bounds[name] = {lower, upper};
    c.foretold["room.xd"] = {lower - 1.0, upper + 1.0};
    c.rank = moves.empty() ? 0.0 : 1.0;
    c.probability = probability;
    c.moves = std::move(moves);
    return c;
}

inline tavro::Step step(double time, std::vector<tavro::Candidate> candidates) {
    tavro::Step s;
    s.time = time;
    s.candidates = std::move(candidates);
    return s;
}

// No candidate agrees, and a diagnosis has replaced them.
inline tavro::Step diagnosis(double time, std::vector<tavro::Candidate> candidates) {
    tavro::Step s = step(time, std::move(candidates));
    s.alarms = {{"room.xd", tavro::Side::high}};
    s.diagnosed = true;
    s.suspects = {{{"R1.i4", 1, "()"}}, {{"R1.i4", 2, "()"}}, {{"T1.i1", 1, "()"}}};
    for (std::size_t i = 0; i < s.candidates.size(); ++i)
        for (tavro::Explanation e : s.candidates[i].moves) {
            e.candidate = i;
            s.explanations.push_back(e);
        }
    return s;
}

inline tavro::Line measured(double value) {
    return {.measures = {value}};
}
