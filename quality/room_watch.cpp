// One run of the engine over one day.
#include "quality/room_watch.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace quality {

namespace {

// The engine does not round outwards, so a true value on a bound may lie this much outside of it.
constexpr double slack = 1e-9;

using Candidates = std::vector<tavro::Candidate>;

bool someHolds(Candidates const& candidates, std::string const& variable, double truth) {
    return std::any_of(candidates.begin(), candidates.end(), [&](tavro::Candidate const& c) {
        tavro::Bounds const& bounds = c.bounds.at(variable);
        return bounds.lower - slack <= truth && truth <= bounds.upper + slack;
    });
}

double widthOf(Candidates const& candidates, std::string const& variable) {
    double lowest = std::numeric_limits<double>::infinity();
    double highest = -lowest;
    for (tavro::Candidate const& candidate : candidates) {
        lowest = std::min(lowest, candidate.bounds.at(variable).lower);
        highest = std::max(highest, candidate.bounds.at(variable).upper);
    }
    return highest - lowest;
}

bool inTrueModes(tavro::Candidate const& candidate, RoomSample const& truth) {
    return candidate.modes.at("thermostat.mode") == truth.thermostat &&
           candidate.modes.at("room.mode") == truth.window;
}

Answer answerOf(Candidates const& candidates, RoomSample const& truth) {
    Answer answer;
    answer.count = candidates.size();
    answer.among = std::any_of(
        candidates.begin(), candidates.end(),
        [&](tavro::Candidate const& candidate) { return inTrueModes(candidate, truth); });
    if (candidates.empty())
        return answer;
    answer.first = inTrueModes(candidates.front(), truth);
    std::string const& blamed = candidates.front().modes.at("thermostat.mode");
    answer.misled = (blamed == "stuck_on" || blamed == "stuck_off") && blamed != truth.thermostat;
    return answer;
}

// The influences that a fault keeps from acting as the model says; a sensor breaks none of them.
std::vector<std::string> brokenBy(RoomFault fault) {
    switch (fault) {
        case RoomFault::stuckOn:
            return {"R1.i1"};
        case RoomFault::stuckOff:
            return {"T1.i1"};
        case RoomFault::windowOpen:
            return {"R1.i4"};
        case RoomFault::draught:
            return {"R1.i3"};
        default:
            return {};
    }
}

bool suspects(tavro::Step const& step, std::string const& influence) {
    for (tavro::SuspectSet const& set : step.suspects)
        for (tavro::Suspect const& suspect : set)
            if (suspect.influence == influence)
                return true;
    return false;
}

// The thermostat has stuck at the step before the first rate that shows it.
bool names(tavro::Step const& step, int struck, std::string const& mode) {
    return std::any_of(step.explanations.begin(), step.explanations.end(), [&](auto const& e) {
        return e.failure && e.component == "thermostat" && e.to == mode &&
               e.earliest <= struck - 1 && e.latest >= struck - 1;
    });
}

class RoomWatch {
public:
    RoomWatch(RoomSetting const& setting, RoomDay const& day) : setting(setting), day(day) {
        verdict.struck = day.struck;
    }

    void follow(tavro::Run& run) {
        note(0, run.start({.measures = {day.samples.front().measured}}));
        for (int k = 1; k <= setting.steps; ++k) {
            try {
                note(k, run.step({.measures = {truthAt(k).measured}}));
            } catch (tavro::Error const& why) {
                noteStop(k, why.kind());
                return;
            }
        }
    }

    RoomVerdict verdict;

private:
    RoomSample const& truthAt(int k) const { return day.samples[static_cast<std::size_t>(k)]; }

    void note(int k, tavro::Step const& step) {
        RoomSample const& truth = truthAt(k);
        if (!step.alarms.empty() && !verdict.alarm)
            verdict.alarm = k;
        if (step.diagnosed && !verdict.diagnosed)
            noteDiagnosis(k, step);
        verdict.atEnd = answerOf(step.candidates, truth);
        verdict.mostCandidates = std::max(verdict.mostCandidates, step.candidates.size());
        ++verdict.samples;
        bool const holds = someHolds(step.candidates, "room.x", truth.temperature);
        verdict.holdTemperature += holds;
        if (verdict.atDiagnosis.among) {
            ++verdict.explained;
            verdict.explainedHold += holds;
        }
        verdict.holdRate += someHolds(step.candidates, "room.xd", truth.rate);
        for (std::size_t i = 0; i < widthMarks.size(); ++i)
            if (widthMarks[i] == k && !step.candidates.empty())
                verdict.widths[i] = widthOf(step.candidates, "room.x");
    }

    void noteDiagnosis(int k, tavro::Step const& step) {
        verdict.diagnosed = k;
        verdict.atDiagnosis = answerOf(step.candidates, truthAt(k));
        verdict.stepNamed = day.struck && names(step, *day.struck, truthAt(k).thermostat);
        for (std::string const& influence : brokenBy(setting.fault))
            verdict.causeSuspected |= suspects(step, influence);
    }

    // A run stops in a diagnosis, or when the measured world contradicts it: either is an alarm.
    // It runs away only after one.
    void noteStop(int k, tavro::ErrorKind why) {
        if (!verdict.alarm)
            verdict.alarm = k;
        verdict.stopped = why;
        verdict.atEnd = Answer{};
    }

    RoomSetting const& setting;
    RoomDay const& day;
};

}  // namespace

RoomVerdict watchRoom(tavro::Plant const& plant, RoomSetting const& setting,
                      tavro::Options const& options) {
    RoomDay const day = roomDay(setting);
    RoomWatch watch(setting, day);
    Meter const meter(memoryOfARun);
    tavro::Run run(plant, options);
    watch.follow(run);
    watch.verdict.cost = meter.read();
    return watch.verdict;
}

}  // namespace quality
