// What a run was: everything that an answer, a document or a page tells of it.
//
// A Recorder is given each line that went into a run and the step that came out, and keeps of them
// what is looked at afterwards. It knows the public interface alone, so that whatever it shows
// could be shown by any other program.
//
// A candidate is one prediction, which is followed for some steps, splits, and ends; a run may have
// thousands. A story is what a reader thinks in: all candidates that tell the same moves, whenever
// they were followed. "Nothing failed" is one.
//
// Invariants of a record:
//   1. time, candidates (per step), and each list of measures and inputs have an entry per step;
//   2. the steps of a candidate are first to last, and so many entries have its bounds;
//   3. each candidate is of one story, whose steps cover its own.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "tavro/tavro.hpp"

struct RunRecord {
    struct Series {
        std::vector<double> lower, upper;
    };
    struct Modes {
        std::size_t step;
        std::map<std::string, std::string> values;
    };
    struct Story {
        std::string summary;
        std::vector<tavro::Explanation> moves;  // as the likeliest candidate told them last
        double rank = 0.0;
        double weight = 0.0;       // the probability of its candidates at the last diagnosis
        double probability = 0.0;  // its share of that of all stories alive; 0 when not alive
        std::size_t first = 0, last = 0;
        bool alive = false;    // followed in the last step
        bool agrees = false;   // with the measures, in the last step
        bool unknown = false;  // it ends in a mode of which the plant tells nothing
    };
    // Its place in the list is its number in everything that is told.
    struct Candidate {
        std::size_t story = 0;
        std::size_t first = 0, last = 0;
        bool alive = false;
        double rank = 0.0, probability = 0.0;  // in its last step
        std::vector<Modes> modes;              // where something changes
        // Of a measure what was foretold. Empty when they are not kept.
        std::map<std::string, Series> bounds;
    };
    struct Alarm {
        std::size_t step;
        tavro::Alarm told;
    };
    struct Diagnosis {
        std::size_t step;
        std::vector<tavro::Alarm> alarms;
        std::vector<tavro::SuspectSet> suspects;
        std::string text;
        std::vector<tavro::Explanation> explanations;
        std::vector<std::size_t> stories;  // of each explanation
        bool datesCut;
        bool healthyLeft;  // some candidate that has come out of it tells no failure
    };
    struct PastUse {
        std::size_t step;
        std::string measure;
    };
    // How wide the bounds of a measure were, of all candidates together.
    struct Width {
        double sum = 0.0;
        std::size_t steps = 0;               // in which they were bounded at all
        double least = 0.0, greatest = 0.0;  // of what was measured
        std::size_t measured = 0;
        double mean() const { return steps > 0 ? sum / static_cast<double>(steps) : 0.0; }
    };

    std::vector<double> time;
    std::map<std::string, std::vector<double>> inputs, measures;  // NaN: missing
    std::vector<std::size_t> followed;                            // candidates per step
    std::vector<Alarm> alarms;
    std::vector<Diagnosis> diagnoses;
    std::vector<Story> stories;
    std::vector<Candidate> candidates;
    std::vector<PastUse> pastUse;
    std::map<std::string, Width> widths;  // by measure
    std::size_t dropped = 0;
    // Of the candidates of the last step, the best first: places in `candidates`, and histories.
    std::vector<std::size_t> last;
    std::vector<std::vector<tavro::HistoryStep>> histories;
};

class Recorder {
public:
    // Without the bounds a record takes next to nothing.
    Recorder(tavro::Plant const& plant, bool keepsBounds)
        : plant(plant), keepsBounds(keepsBounds) {}

    // One step: the line that it was given, with NaN for what is missing, and what it told.
    void add(tavro::Line const& line, tavro::Step const& step);
    // To be called once, behind the last step: the histories of the candidates that are left.
    void finish(tavro::Run const& run, std::size_t mostHistories);

    RunRecord const& record() const { return kept; }

private:
    using Key = std::tuple<int, std::size_t, std::size_t>;  // id, story, which of the same step

    void addValues(tavro::Line const& line);
    void addWidths(tavro::Line const& line, tavro::Step const& step);
    void addCandidates(tavro::Step const& step);
    std::size_t candidateOf(tavro::Candidate const& told, std::size_t story, std::size_t nth);
    std::size_t storyOf(tavro::Candidate const& told);
    void addDiagnosis(tavro::Step const& step);
    void updateStories(tavro::Step const& step);
    void weighStories(tavro::Step const& step);

    tavro::Plant const& plant;
    bool const keepsBounds;
    RunRecord kept;
    std::map<std::string, std::size_t> storyByKey;
    std::map<Key, std::size_t> followed;  // candidates of the last step
};

// "thermostat on -> stuck_on", and that with its dates: "at 24", "between 22 and 26".
std::string nameOf(tavro::Explanation const& move);
std::string summaryOf(tavro::Explanation const& move);
// "nothing failed", or the failures of a story.
std::string summaryOf(std::vector<tavro::Explanation> const& moves);
