// From a record to JSON.
#include "report/document.h"

#include <cmath>

using Json = nlohmann::ordered_json;

namespace {

constexpr int documentVersion = 1;

Json textOrNull(std::string const& text) {
    return text.empty() ? Json() : Json(text);
}

Json numberOrNull(double value) {
    return std::isfinite(value) ? Json(value) : Json();
}

Json pairOf(tavro::Bounds const& bounds) {
    return Json::array({numberOrNull(bounds.lower), numberOrNull(bounds.upper)});
}

// A list of values, which may hold what is no number.
Json listOf(std::vector<double> const& values) {
    Json list = Json::array();
    for (double const value : values)
        list.push_back(numberOrNull(value));
    return list;
}

char const* wordOf(tavro::Side side) {
    return side == tavro::Side::high ? "high" : "low";
}

Json alarmOf(tavro::Alarm const& alarm) {
    return {{"measure", alarm.measure}, {"side", wordOf(alarm.side)}};
}

Json alarmsOf(std::vector<tavro::Alarm> const& alarms) {
    Json list = Json::array();
    for (tavro::Alarm const& alarm : alarms)
        list.push_back(alarmOf(alarm));
    return list;
}

Json suspectsOf(std::vector<tavro::SuspectSet> const& sets) {
    Json list = Json::array();
    for (tavro::SuspectSet const& set : sets) {
        Json told = Json::array();
        for (tavro::Suspect const& suspect : set)
            told.push_back({{"influence", suspect.influence},
                            {"delay", suspect.delay},
                            {"condition", suspect.condition}});
        list.push_back(std::move(told));
    }
    return list;
}

Json moveOf(tavro::Explanation const& move) {
    return {{"component", move.component}, {"from", move.from},         {"to", move.to},
            {"time", move.time},           {"earliest", move.earliest}, {"latest", move.latest},
            {"rank", move.rank},           {"failure", move.failure},   {"unknown", move.unknown},
            {"summary", move.summary}};
}

Json movesOf(std::vector<tavro::Explanation> const& moves) {
    Json list = Json::array();
    for (tavro::Explanation const& move : moves)
        list.push_back(moveOf(move));
    return list;
}

Json plantOf(tavro::Plant const& plant, RunFacts const& facts) {
    Json modes = Json::object();
    for (std::string const& mode : plant.modes())
        modes[mode] = plant.values(mode);
    Json influences = Json::array();
    for (tavro::Influence const& influence : plant.influences())
        influences.push_back({{"name", influence.name},
                              {"cause", influence.cause},
                              {"effect", influence.effect},
                              {"kind", influence.kind},
                              {"condition", influence.condition}});
    return {{"name", plant.name()},           {"file", facts.plantFile},
            {"discrete", plant.discrete()},   {"period", plant.period()},
            {"inputs", plant.inputs()},       {"measures", plant.measures()},
            {"variables", plant.variables()}, {"components", plant.components()},
            {"modes", std::move(modes)},      {"influences", std::move(influences)}};
}

Json factsOf(RunFacts const& facts) {
    Json noise = Json::object();
    for (auto const& [name, bound] : facts.options.noise)
        noise[name] = bound;
    return {{"rules", facts.options.rules},
            {"isolation", facts.options.isolation},
            {"threshold", facts.options.threshold},
            {"candidates", facts.options.candidates},
            {"noise", std::move(noise)},
            {"measures", textOrNull(facts.measureFile)},
            {"inputs", textOrNull(facts.inputFile)},
            {"scenario", textOrNull(facts.scenarioFile)}};
}

Json noticedOf(RunRecord const& record, Outcome const& outcome) {
    if (!outcome.noticed)
        return {};
    Json alarms = Json::array();
    for (RunRecord::Alarm const& alarm : record.alarms)
        if (alarm.step == *outcome.noticed)
            alarms.push_back(alarmOf(alarm.told));
    return {{"step", *outcome.noticed},
            {"time", record.time[*outcome.noticed]},
            {"alarms", std::move(alarms)}};
}

Json outcomeOf(RunRecord const& record, Outcome const& outcome, RunFacts const& facts) {
    Json pastUse = Json::array();
    for (RunRecord::PastUse const& past : record.pastUse)
        pastUse.push_back({{"measure", past.measure}, {"time", record.time[past.step]}});
    return {{"status", static_cast<int>(outcome.verdict)},
            {"verdict", wordOf(outcome.verdict)},
            {"answer", outcome.answer},
            {"noticed", noticedOf(record, outcome)},
            {"stopped", textOrNull(outcome.stopped)},
            {"pastUse", std::move(pastUse)},
            {"notes", facts.notes}};
}

Json listsOf(std::map<std::string, std::vector<double>> const& lists) {
    Json object = Json::object();
    for (auto const& [name, values] : lists)
        object[name] = listOf(values);
    return object;
}

Json alarmsOf(RunRecord const& record) {
    Json list = Json::array();
    for (RunRecord::Alarm const& alarm : record.alarms)
        list.push_back({{"step", alarm.step},
                        {"time", record.time[alarm.step]},
                        {"measure", alarm.told.measure},
                        {"side", wordOf(alarm.told.side)}});
    return list;
}

Json diagnosesOf(RunRecord const& record) {
    Json list = Json::array();
    for (RunRecord::Diagnosis const& diagnosis : record.diagnoses) {
        Json explanations = Json::array();
        for (std::size_t i = 0; i < diagnosis.explanations.size(); ++i) {
            Json told = {{"hypothesis", diagnosis.stories[i]}};
            told.update(moveOf(diagnosis.explanations[i]));
            explanations.push_back(std::move(told));
        }
        list.push_back({{"step", diagnosis.step},
                        {"time", record.time[diagnosis.step]},
                        {"alarms", alarmsOf(diagnosis.alarms)},
                        {"suspects", suspectsOf(diagnosis.suspects)},
                        {"text", diagnosis.text},
                        {"datesCut", diagnosis.datesCut},
                        {"explanations", std::move(explanations)}});
    }
    return list;
}

Json storiesOf(RunRecord const& record) {
    Json list = Json::array();
    for (RunRecord::Story const& story : record.stories)
        list.push_back({{"summary", story.summary},
                        {"moves", movesOf(story.moves)},
                        {"rank", story.rank},
                        {"probability", story.probability},
                        {"first", story.first},
                        {"last", story.last},
                        {"alive", story.alive},
                        {"agrees", story.agrees},
                        {"unknown", story.unknown}});
    return list;
}

Json candidateOf(RunRecord::Candidate const& candidate, std::size_t number) {
    Json modes = Json::array();
    for (RunRecord::Modes const& change : candidate.modes)
        modes.push_back({{"step", change.step}, {"values", change.values}});
    Json bounds = Json::object();
    for (auto const& [name, series] : candidate.bounds)
        bounds[name] = {{"lower", listOf(series.lower)}, {"upper", listOf(series.upper)}};
    return {{"id", number},
            {"hypothesis", candidate.story},
            {"first", candidate.first},
            {"last", candidate.last},
            {"alive", candidate.alive},
            {"rank", candidate.rank},
            {"probability", candidate.probability},
            {"modes", std::move(modes)},
            {"bounds", std::move(bounds)}};
}

Json historyOf(std::vector<tavro::HistoryStep> const& history) {
    Json list = Json::array();
    for (tavro::HistoryStep const& step : history) {
        Json moves = Json::array();
        for (tavro::Move const& move : step.moves)
            moves.push_back({{"component", move.component},
                             {"from", move.from},
                             {"to", move.to},
                             {"failure", move.failure},
                             {"unknown", move.unknown}});
        list.push_back({{"step", step.step},
                        {"time", step.time},
                        {"values", step.modes},
                        {"moves", std::move(moves)}});
    }
    return list;
}

Json historiesOf(RunRecord const& record) {
    Json list = Json::array();
    for (std::size_t i = 0; i < record.histories.size(); ++i)
        list.push_back({{"candidate", record.last[i]}, {"steps", historyOf(record.histories[i])}});
    return list;
}

}  // namespace

Json documentOf(RunRecord const& record, Outcome const& outcome, tavro::Plant const& plant,
                RunFacts const& facts) {
    Json candidates = Json::array();
    for (std::size_t i = 0; i < record.candidates.size(); ++i)
        candidates.push_back(candidateOf(record.candidates[i], i));
    Json document;
    document["format"] = "tavro-run";
    document["version"] = documentVersion;
    document["tavro"] = tavro::version();
    document["plant"] = plantOf(plant, facts);
    document["run"] = factsOf(facts);
    document["outcome"] = outcomeOf(record, outcome, facts);
    document["time"] = record.time;
    document["inputs"] = listsOf(record.inputs);
    document["measures"] = listsOf(record.measures);
    document["followed"] = record.followed;
    document["alarms"] = alarmsOf(record);
    document["diagnoses"] = diagnosesOf(record);
    document["hypotheses"] = storiesOf(record);
    document["candidates"] = std::move(candidates);
    document["histories"] = historiesOf(record);
    return document;
}

Json stepDocument(std::size_t number, tavro::Line const& line, tavro::Step const& step,
                  tavro::Plant const& plant, std::vector<std::size_t> const& numbers) {
    auto const named = [](std::vector<std::string> const& names,
                          std::vector<double> const& values) {
        Json object = Json::object();
        for (std::size_t i = 0; i < std::min(names.size(), values.size()); ++i)
            object[names[i]] = numberOrNull(values[i]);
        return object;
    };
    Json candidates = Json::array();
    for (std::size_t i = 0; i < step.candidates.size(); ++i) {
        tavro::Candidate const& candidate = step.candidates[i];
        Json bounds = Json::object();
        for (auto const& [name, between] : candidate.bounds)
            bounds[name] = pairOf(between);
        Json foretold = Json::object();
        for (auto const& [name, between] : candidate.foretold)
            foretold[name] = pairOf(between);
        candidates.push_back({{"id", numbers[i]},
                              {"agrees", candidate.agrees},
                              {"rank", candidate.rank},
                              {"probability", candidate.probability},
                              {"moves", movesOf(candidate.moves)},
                              {"modes", candidate.modes},
                              {"bounds", std::move(bounds)},
                              {"foretold", std::move(foretold)}});
    }
    Json document = {{"step", number},
                     {"time", step.time},
                     {"inputs", named(plant.inputs(), line.inputs)},
                     {"measures", named(plant.measures(), line.measures)},
                     {"alarms", alarmsOf(step.alarms)},
                     {"diagnosed", step.diagnosed}};
    if (step.diagnosed) {
        document["suspects"] = suspectsOf(step.suspects);
        document["explanations"] = movesOf(step.explanations);
    }
    document["candidates"] = std::move(candidates);
    return document;
}

std::string textOf(Json const& document) {
    return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}
