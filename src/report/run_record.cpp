// From steps to a record.
#include "report/run_record.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>

#include "support/numbers.h"

namespace {

// The failures alone, where there are any: what was assumed beside them is no news.
std::vector<tavro::Explanation const*> tellingOf(std::vector<tavro::Explanation> const& moves) {
    std::vector<tavro::Explanation const*> telling;
    for (tavro::Explanation const& move : moves)
        if (move.failure)
            telling.push_back(&move);
    if (telling.empty())
        for (tavro::Explanation const& move : moves)
            telling.push_back(&move);
    return telling;
}

// Two stories are the same when they tell the same moves, whatever the dates, which are sharpened
// and widened as a run goes on.
std::string keyOf(std::vector<tavro::Explanation> const& moves) {
    std::string key;
    for (tavro::Explanation const* move : tellingOf(moves))
        key.append(move->component).append(" ").append(move->from).append(" ").append(move->to) +=
            '\n';
    return key;
}

void extend(std::map<std::string, std::vector<double>>& lists,
            std::vector<std::string> const& names, std::vector<double> const& values) {
    for (std::size_t i = 0; i < names.size(); ++i)
        lists[names[i]].push_back(i < values.size() ? values[i]
                                                    : std::numeric_limits<double>::quiet_NaN());
}

}  // namespace

std::string nameOf(tavro::Explanation const& move) {
    std::string text = move.component;
    return text.append(" ").append(move.from).append(" -> ").append(move.to);
}

// Times are sums of periods: those of one step may differ in their last digits.
std::string summaryOf(tavro::Explanation const& move) {
    std::string const from = shortText(move.earliest), to = shortText(move.latest);
    std::string text = nameOf(move);
    if (move.earliest < 0.0)
        return text.append(" before the kept steps");
    return from == to ? text.append(" at ").append(from)
                      : text.append(" between ").append(from).append(" and ").append(to);
}

std::string summaryOf(std::vector<tavro::Explanation> const& moves) {
    std::string text;
    for (tavro::Explanation const* move : tellingOf(moves))
        text.append(text.empty() ? "" : ", ").append(summaryOf(*move));
    return text.empty() ? "nothing failed" : text;
}

void Recorder::add(tavro::Line const& line, tavro::Step const& step) {
    kept.time.push_back(step.time);
    kept.followed.push_back(step.candidates.size());
    addValues(line);
    addWidths(line, step);
    std::size_t const now = kept.time.size() - 1;
    for (tavro::Alarm const& alarm : step.alarms)
        kept.alarms.push_back({now, alarm});
    if (!step.pastUse.empty())
        kept.pastUse.push_back({now, step.pastUse});
    kept.dropped += step.dropped;
    addCandidates(step);
    if (step.diagnosed)
        addDiagnosis(step);
}

void Recorder::addValues(tavro::Line const& line) {
    extend(kept.inputs, plant.inputs(), line.inputs);
    extend(kept.measures, plant.measures(), line.measures);
}

void Recorder::addWidths(tavro::Line const& line, tavro::Step const& step) {
    for (std::size_t i = 0; i < line.measures.size(); ++i) {
        RunRecord::Width& width = kept.widths[plant.measures()[i]];
        if (double const value = line.measures[i]; !std::isnan(value)) {
            width.least = width.measured > 0 ? std::min(width.least, value) : value;
            width.greatest = width.measured > 0 ? std::max(width.greatest, value) : value;
            ++width.measured;
        }
        double lower = INFINITY, upper = -INFINITY;
        for (tavro::Candidate const& candidate : step.candidates) {
            tavro::Bounds const& bounds = candidate.foretold.at(plant.measures()[i]);
            lower = std::min(lower, bounds.lower);
            upper = std::max(upper, bounds.upper);
        }
        if (std::isfinite(lower) && std::isfinite(upper)) {
            width.sum += upper - lower;
            ++width.steps;
        }
    }
}

std::size_t Recorder::storyOf(tavro::Candidate const& told) {
    auto const [entry, isNew] = storyByKey.try_emplace(keyOf(told.moves), kept.stories.size());
    if (isNew)
        kept.stories.emplace_back().first = kept.time.size() - 1;
    return entry->second;
}

std::size_t Recorder::candidateOf(tavro::Candidate const& told, std::size_t story,
                                  std::size_t nth) {
    auto const before = followed.find({told.id, story, nth});
    if (before != followed.end())
        return before->second;
    RunRecord::Candidate candidate;
    candidate.story = story;
    candidate.first = kept.time.size() - 1;
    kept.candidates.push_back(std::move(candidate));
    return kept.candidates.size() - 1;
}

void Recorder::addCandidates(tavro::Step const& step) {
    for (auto const& entry : followed)
        kept.candidates[entry.second].alive = false;
    std::map<Key, std::size_t> now;
    kept.last.clear();
    for (tavro::Candidate const& told : step.candidates) {
        std::size_t const story = storyOf(told);
        std::size_t nth = 0;
        while (now.count({told.id, story, nth}) > 0)
            ++nth;
        std::size_t const place = candidateOf(told, story, nth);
        now[{told.id, story, nth}] = place;
        kept.last.push_back(place);
        RunRecord::Candidate& candidate = kept.candidates[place];
        candidate.last = kept.time.size() - 1;
        candidate.alive = true;
        candidate.rank = told.rank;
        candidate.probability = told.probability;
        if (candidate.modes.empty() || candidate.modes.back().values != told.modes)
            candidate.modes.push_back({candidate.last, told.modes});
        if (keepsBounds)
            for (auto const& [name, known] : told.bounds) {
                auto const foretold = told.foretold.find(name);
                tavro::Bounds const& bounds =
                    foretold != told.foretold.end() ? foretold->second : known;
                candidate.bounds[name].lower.push_back(bounds.lower);
                candidate.bounds[name].upper.push_back(bounds.upper);
            }
    }
    followed = std::move(now);
    updateStories(step);
    weighStories(step);
}

// The candidates come with the best first, which speaks for its story.
void Recorder::updateStories(tavro::Step const& step) {
    for (RunRecord::Story& story : kept.stories)
        story.alive = story.agrees = false;
    for (std::size_t i = 0; i < step.candidates.size(); ++i) {
        tavro::Candidate const& told = step.candidates[i];
        RunRecord::Story& story = kept.stories[kept.candidates[kept.last[i]].story];
        if (!story.alive) {
            story.moves = told.moves;
            story.rank = told.rank;
            story.unknown = std::any_of(told.moves.begin(), told.moves.end(),
                                        [](auto const& move) { return move.unknown; });
            story.last = kept.time.size() - 1;
            story.alive = true;
        }
        for (std::size_t m = 0; m < std::min(told.moves.size(), story.moves.size()); ++m) {
            story.moves[m].earliest = std::min(story.moves[m].earliest, told.moves[m].earliest);
            story.moves[m].latest = std::max(story.moves[m].latest, told.moves[m].latest);
        }
        story.agrees = story.agrees || told.agrees;
        story.summary = summaryOf(story.moves);
    }
}

// Candidates split and merge as a run goes on, and take their probability with them: so stories are
// weighed where a search has found them, and from there on only by what is left of them.
void Recorder::weighStories(tavro::Step const& step) {
    if (step.diagnosed || plant.discrete()) {
        for (RunRecord::Story& story : kept.stories)
            story.weight = 0.0;
        for (std::size_t i = 0; i < step.candidates.size(); ++i)
            kept.stories[kept.candidates[kept.last[i]].story].weight +=
                step.candidates[i].probability;
    }
    double sum = 0.0;
    for (RunRecord::Story const& story : kept.stories)
        sum += story.alive ? story.weight : 0.0;
    for (RunRecord::Story& story : kept.stories)
        story.probability = story.alive && sum > 0.0 ? story.weight / sum : 0.0;
}

void Recorder::addDiagnosis(tavro::Step const& step) {
    RunRecord::Diagnosis diagnosis{kept.time.size() - 1, step.alarms, step.suspects, step.diagnosis,
                                   step.explanations,    {},          step.datesCut, false};
    diagnosis.healthyLeft =
        std::any_of(step.candidates.begin(), step.candidates.end(), [](auto const& candidate) {
            return std::none_of(candidate.moves.begin(), candidate.moves.end(),
                                [](auto const& move) { return move.failure; });
        });
    for (tavro::Explanation const& explanation : step.explanations) {
        assert(explanation.candidate < kept.last.size());
        diagnosis.stories.push_back(kept.candidates[kept.last[explanation.candidate]].story);
    }
    kept.diagnoses.push_back(std::move(diagnosis));
}

void Recorder::finish(tavro::Run const& run, std::size_t mostHistories) {
    for (std::size_t i = 0; i < std::min(kept.last.size(), mostHistories); ++i)
        kept.histories.push_back(run.history(i));
}
