// One run of the engine over one story.
#include "quality/line_watch.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>
#include <vector>

#include "quality/line_histories.h"

namespace quality {

namespace {

using Failures = std::vector<LineFailure>;

// Products of the same factors in another order.
constexpr double sameWeight = 1e-9;

tavro::Line lineOf(LineEvent const& event) {
    tavro::Line line;
    if (!event.isCommand) {
        line.observations = {event.flows ? "sensor.flow=positive" : "sensor.flow=zero"};
        return line;
    }
    for (std::size_t i = 0; i < lineComponents; ++i)
        line.commands.push_back(std::string(lineNames[i]) + ".cmd=" + event.commands[i]);
    return line;
}

bool inModes(tavro::Candidate const& candidate, LineModes const& modes) {
    for (std::size_t i = 0; i < lineComponents; ++i)
        if (candidate.modes.at(std::string(lineNames[i]) + ".mode") != modes[i])
            return false;
    return true;
}

Failures sorted(Failures failures) {
    std::sort(failures.begin(), failures.end());
    return failures;
}

Failures withoutSteps(Failures failures) {
    for (LineFailure& failure : failures)
        failure.time = 0;
    return sorted(failures);
}

// The failures of each candidate of a diagnosis, the best first.
std::vector<Failures> answersOf(tavro::Step const& step) {
    std::vector<Failures> answers(step.candidates.size());
    for (tavro::Explanation const& e : step.explanations)
        if (e.failure)
            answers[e.candidate].push_back({e.component, e.to, static_cast<int>(e.time)});
    for (Failures& answer : answers)
        answer = sorted(answer);
    return answers;
}

// What the enumeration says of the failures; null when no history holds exactly them.
LineHistory const* historyOf(std::vector<LineHistory> const& histories, Failures const& failures) {
    auto const at = std::find_if(
        histories.begin(), histories.end(),
        [&](LineHistory const& history) { return sorted(history.failures) == failures; });
    return at == histories.end() ? nullptr : &*at;
}

std::set<Failures> kindsOf(std::vector<Failures> const& all) {
    std::set<Failures> kinds;
    for (Failures const& failures : all)
        kinds.insert(withoutSteps(failures));
    return kinds;
}

int countCommon(std::set<Failures> const& a, std::set<Failures> const& b) {
    return static_cast<int>(
        std::count_if(a.begin(), a.end(), [&](Failures const& one) { return b.count(one) != 0; }));
}

class LineWatch {
public:
    explicit LineWatch(LineStory const& story) : story(story) { findOnset(); }

    void follow(tavro::Run& run) {
        run.start();
        for (std::size_t at = 0; at < story.events.size(); ++at) {
            try {
                note(at, run.step(lineOf(story.events[at])));
            } catch (tavro::Error const& why) {
                noteStop(at, why.kind());
                return;
            }
        }
    }

    // Afterwards, so that the enumeration is no part of what the run costs.
    void compareDiagnoses() {
        for (auto const& [at, step] : diagnoses)
            compare(step, lineHistories(story.events, at + 1));
    }

    LineVerdict verdict;

private:
    static int timeOf(std::size_t at) { return static_cast<int>(at) + 1; }

    // A line without failures goes one way only.
    void findOnset() {
        LineModes modes = firstLineModes;
        for (std::size_t at = 0; at < story.events.size() && !verdict.shows; ++at) {
            LineEvent const& event = story.events[at];
            for (std::size_t i = 0; i < lineComponents && event.isCommand; ++i)
                modes[i] = lineMoves(modes[i], event.commands[i]).front().to;
            if (!event.isCommand && lineFlows(modes) != event.flows)
                verdict.shows = timeOf(at);
        }
    }

    void note(std::size_t at, tavro::Step const& step) {
        if (step.diagnosed && !verdict.alarm)
            verdict.alarm = timeOf(at);
        if (step.diagnosed)
            diagnoses.push_back({at, step});
        LineModes const& truth = story.modes[at];
        verdict.mostCandidates = std::max(verdict.mostCandidates, step.candidates.size());
        verdict.first = !step.candidates.empty() && inModes(step.candidates.front(), truth);
        verdict.among = std::any_of(
            step.candidates.begin(), step.candidates.end(),
            [&](tavro::Candidate const& candidate) { return inModes(candidate, truth); });
    }

    void compare(tavro::Step const& step, std::vector<LineHistory> const& histories) {
        std::vector<Failures> const answers = answersOf(step);
        std::vector<Failures> minimal;
        for (LineHistory const& history : minimalHistories(histories))
            minimal.push_back(sorted(history.failures));
        ++verdict.diagnoses;
        verdict.minimal += static_cast<int>(minimal.size());
        verdict.found +=
            countCommon({minimal.begin(), minimal.end()}, {answers.begin(), answers.end()});
        std::set<Failures> const kinds = kindsOf(minimal);
        verdict.minimalKinds += static_cast<int>(kinds.size());
        verdict.foundKinds += countCommon(kinds, kindsOf(answers));
        for (tavro::Candidate const& candidate : step.candidates)
            verdict.nans += std::isnan(candidate.probability);
        weigh(answers, histories);
    }

    void weigh(std::vector<Failures> const& answers, std::vector<LineHistory> const& histories) {
        double last = 1.0;
        bool ordered = true;
        for (Failures const& answer : answers) {
            ++verdict.answers;
            LineHistory const* history = historyOf(histories, answer);
            if (history == nullptr) {
                ++verdict.wrong;
                continue;
            }
            ordered = ordered && history->weight <= last * (1.0 + sameWeight);
            last = history->weight;
        }
        verdict.wellOrdered += ordered && !answers.empty();
    }

    // A run stops in a diagnosis, which then has found nothing.
    void noteStop(std::size_t at, tavro::ErrorKind why) {
        diagnoses.push_back({at, {}});
        if (!verdict.alarm)
            verdict.alarm = timeOf(at);
        verdict.stopped = why;
        verdict.among = verdict.first = false;
    }

    LineStory const& story;
    std::vector<std::pair<std::size_t, tavro::Step>> diagnoses;  // by the index of the event
};

}  // namespace

LineVerdict watchLine(tavro::Plant const& plant, LineSetting const& setting,
                      tavro::Options const& options) {
    LineStory const story = lineStory(setting);
    LineWatch watch(story);
    {
        Meter const meter(memoryOfARun);
        tavro::Run run(plant, options);
        watch.follow(run);
        watch.verdict.cost = meter.read();
    }
    watch.compareDiagnoses();
    return watch.verdict;
}

}  // namespace quality
