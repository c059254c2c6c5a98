// From a record to a verdict and sentences.
#include "report/outcome.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "support/numbers.h"

namespace {

constexpr std::size_t mostListed = 5;

std::string counted(std::size_t number, std::string const& one, std::string const& many) {
    return std::to_string(number).append(" ").append(number == 1 ? one : many);
}

// Three digits say enough to a reader.
std::string brief(double value) {
    if (value == 0.0 || !std::isfinite(value))
        return shortText(value);
    double const scale = std::pow(10.0, 2.0 - std::floor(std::log10(std::fabs(value))));
    return shortText(std::round(value * scale) / scale);
}

// ---- Stories ----

bool isFault(RunRecord::Story const& story) {
    return std::any_of(story.moves.begin(), story.moves.end(),
                       [](auto const& move) { return move.failure; });
}

// By rank, those that end in an unknown mode behind their equals, then by probability.
bool isBetter(RunRecord::Story const& a, RunRecord::Story const& b) {
    if (a.agrees != b.agrees)
        return a.agrees;
    if (a.unknown != b.unknown)
        return b.unknown;
    if (a.rank != b.rank)
        return a.rank < b.rank;
    return a.probability > b.probability;
}

std::vector<std::size_t> aliveStories(RunRecord const& record) {
    std::vector<std::size_t> alive;
    for (std::size_t i = 0; i < record.stories.size(); ++i)
        if (record.stories[i].alive)
            alive.push_back(i);
    std::stable_sort(alive.begin(), alive.end(), [&](std::size_t a, std::size_t b) {
        return isBetter(record.stories[a], record.stories[b]);
    });
    return alive;
}

// ---- The verdict ----

std::optional<std::size_t> noticedIn(RunRecord const& record, tavro::Plant const& plant) {
    if (!plant.discrete())
        return record.alarms.empty() ? std::nullopt : std::optional(record.alarms.front().step);
    // A search may well find that nothing failed, where something happened that nobody told of.
    for (RunRecord::Diagnosis const& diagnosis : record.diagnoses)
        if (!diagnosis.healthyLeft)
            return diagnosis.step;
    return std::nullopt;
}

// Whether the best of what is left explains what was noticed.
bool isExplained(RunRecord const& record, Outcome const& outcome) {
    if (outcome.stories.empty())
        return false;
    RunRecord::Story const& best = record.stories[outcome.stories.front()];
    return best.agrees && !best.unknown && !best.moves.empty();
}

Verdict verdictOn(RunRecord const& record, Outcome const& outcome, EarlyEnd::Kind end) {
    if (end == EarlyEnd::interrupted)
        return Verdict::interrupted;
    if (end == EarlyEnd::memory)
        return Verdict::limited;
    if (end == EarlyEnd::plant)
        return Verdict::plantIsSilent;
    if (end == EarlyEnd::noDiagnosis)
        return Verdict::unexplained;
    if (!outcome.noticed)
        return Verdict::healthy;
    if (isExplained(record, outcome))
        return Verdict::explained;
    // What would have explained it may have been among what was dropped.
    return record.dropped > 0 ? Verdict::limited : Verdict::unexplained;
}

// ---- Sentences ----

class Words {
public:
    Words(RunRecord const& record, tavro::Plant const& plant, Outcome& outcome)
        : record(record), plant(plant), outcome(outcome) {}

    void tell(EarlyEnd const& end) {
        tellVerdict();
        if (end.kind != EarlyEnd::none)
            tellEnd(end);
        if (outcome.noticed) {
            tellNoticed();
            tellSuspects();
            tellStories();
        }
        tellDropped();
        tellTrust();
    }

private:
    void say(std::string sentence) { outcome.answer.push_back(std::move(sentence)); }

    std::string at(std::size_t step) const {
        if (plant.discrete())
            return "step " + shortText(record.time[step]);
        return seconds(record.time[step]);
    }
    // Hours are no number of seconds to a reader: "6180 s (1:43:00)".
    static std::string seconds(double time) {
        std::string text = shortText(time).append(" s");
        long const whole = std::lround(time);
        if (whole < 3600)
            return text;
        auto const two = [](long value) {
            return std::string(value < 10 ? ":0" : ":").append(std::to_string(value));
        };
        return text.append(" (")
            .append(std::to_string(whole / 3600))
            .append(two(whole / 60 % 60))
            .append(two(whole % 60))
            .append(")");
    }
    std::string dates(tavro::Explanation const& move) const {
        std::string const unit = plant.discrete() ? "" : " s";
        std::string const from = shortText(move.earliest), to = shortText(move.latest);
        if (move.earliest < 0.0)
            return "before the steps that are kept";
        if (from == to)
            return std::string(plant.discrete() ? "at step " : "at ").append(from).append(unit);
        return std::string(plant.discrete() ? "between steps " : "between ")
            .append(from)
            .append(" and ")
            .append(to)
            .append(unit);
    }

    void tellVerdict() {
        std::string const run = record.time.empty()
                                    ? "No step was made"
                                    : counted(record.time.size() - 1, "step", "steps")
                                          .append(", up to ")
                                          .append(at(record.time.size() - 1));
        switch (outcome.verdict) {
            case Verdict::healthy:
                return say("Healthy: " + run +
                           (plant.discrete() ? ", and nothing that needs a failure."
                                             : ", and some healthy behaviour of the plant agrees "
                                               "with all that was measured."));
            case Verdict::explained:
                return say("A fault, explained: " + explanationOf(best()) + ".");
            case Verdict::unexplained:
                return say("A fault that nothing in the plant explains.");
            case Verdict::limited:
                return say("No answer: a limit was met.");
            case Verdict::plantIsSilent:
                return say("No answer: the plant does not tell what holds.");
            case Verdict::interrupted:
                return say("Interrupted: " + run + (outcome.noticed ? "." : ", nothing noticed."));
        }
    }

    void tellEnd(EarlyEnd const& end) {
        say("The run stopped" +
            (record.time.empty() ? std::string() : " after " + at(record.time.size() - 1)) + ": " +
            end.reason + ".");
    }

    std::string sides(std::size_t step) const {
        std::string text;
        for (RunRecord::Alarm const& alarm : record.alarms)
            if (alarm.step == step)
                text.append(text.empty() ? "" : ", ")
                    .append(alarm.told.measure)
                    .append(alarm.told.side == tavro::Side::high ? " above" : " below");
        return text;
    }
    void tellNoticed() {
        if (plant.discrete())
            return say("Noticed at " + at(*outcome.noticed) + ".");
        say("Noticed at " + at(*outcome.noticed) + ": measured " + sides(*outcome.noticed) +
            " all bounds.");
    }

    std::string nameOfSuspect(tavro::Suspect const& suspect) const {
        for (tavro::Influence const& influence : plant.influences())
            if (influence.name == suspect.influence && !influence.name.empty())
                return suspect.influence + " (" + influence.cause + " to " + influence.effect + ")";
        return suspect.influence.empty() ? "an influence without a name" : suspect.influence;
    }
    // Sets that name the same influences, at whatever delays, are one to a reader.
    std::vector<std::string> suspectTexts() const {
        std::vector<std::string> texts;
        for (tavro::SuspectSet const& set : record.diagnoses.front().suspects) {
            std::set<std::string> names;
            for (tavro::Suspect const& suspect : set)
                names.insert(nameOfSuspect(suspect));
            std::string text;
            for (std::string const& name : names)
                text.append(text.empty() ? "" : " with ").append(name);
            if (std::find(texts.begin(), texts.end(), text) == texts.end())
                texts.push_back(text);
        }
        return texts;
    }
    void tellSuspects() {
        if (record.diagnoses.empty() || record.diagnoses.front().suspects.empty())
            return;
        std::vector<std::string> const texts = suspectTexts();
        std::string sentence = "Suspects: ";
        for (std::size_t i = 0; i < std::min(texts.size(), mostListed); ++i)
            sentence.append(i == 0 ? "" : "; or ").append(texts[i]);
        if (texts.size() > mostListed)
            sentence.append("; and ").append(
                counted(texts.size() - mostListed, "further set", "further sets"));
        say(sentence.append("."));
    }

    RunRecord::Story const& best() const { return record.stories[outcome.stories.front()]; }

    std::string explanationOf(RunRecord::Story const& story) const {
        if (story.moves.empty())
            return "nothing failed";
        std::string text;
        bool const failures = isFault(story);
        for (tavro::Explanation const& move : story.moves)
            if (move.failure || !failures)
                text.append(text.empty() ? "" : ", and ")
                    .append(nameOf(move))
                    .append(" ")
                    .append(dates(move));
        if (!failures)
            text.append(" without a failure");
        if (story.probability > 0.0)
            text.append(" (probability ").append(brief(story.probability)).append(")");
        return text;
    }

    void tellStories() {
        std::size_t const first = outcome.verdict == Verdict::explained ? 1 : 0;
        if (outcome.stories.size() <= first)
            return;
        std::string sentence = first == 1 ? "It may also be: " : "Still followed: ";
        for (std::size_t i = first; i < std::min(outcome.stories.size(), first + mostListed); ++i) {
            RunRecord::Story const& story = record.stories[outcome.stories[i]];
            sentence.append(i == first ? "" : "; ").append(explanationOf(story));
            if (story.unknown)
                sentence.append(", of which the plant tells nothing more");
            if (!story.agrees)
                sentence.append(", though it does not agree");
        }
        if (outcome.stories.size() > first + mostListed)
            sentence.append("; and ").append(
                std::to_string(outcome.stories.size() - first - mostListed).append(" more"));
        say(sentence.append("."));
        tellDates();
    }
    void tellDates() {
        if (std::any_of(record.diagnoses.begin(), record.diagnoses.end(),
                        [](auto const& diagnosis) { return diagnosis.datesCut; }))
            say("Not every date was tried: failures may have begun earlier.");
    }

    void tellDropped() {
        if (record.dropped > 0)
            say(counted(record.dropped, "candidate was", "candidates were") +
                " dropped by the limit on their number, the least likely ones.");
    }

    // Whether bounds were narrow enough to trust the silence.
    void tellTrust() {
        for (RunRecord::PastUse const& past : record.pastUse)
            say("Do not trust a silence from " + at(past.step) + " on: the bounds of " +
                past.measure + " have grown past use.");
        if (outcome.verdict != Verdict::healthy || !record.pastUse.empty())
            return;
        for (auto const& [measure, width] : record.widths) {
            if (width.measured == 0)
                say(measure + " was never measured, and was not watched.");
            else if (width.steps > 0)
                say("The bounds of " + measure + " were " + brief(width.mean()) +
                    " wide on average; it was measured from " + brief(width.least) + " to " +
                    brief(width.greatest) + ".");
            else
                say("Nothing bounds " + measure + ": it was not watched.");
        }
    }

    RunRecord const& record;
    tavro::Plant const& plant;
    Outcome& outcome;
};

}  // namespace

char const* wordOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::healthy:
            return "healthy";
        case Verdict::explained:
            return "explained";
        case Verdict::unexplained:
            return "unexplained";
        case Verdict::interrupted:
            return "interrupted";
        default:
            return "stopped";
    }
}

Outcome outcomeOf(RunRecord const& record, tavro::Plant const& plant, EarlyEnd const& end) {
    Outcome outcome{
        Verdict::healthy, noticedIn(record, plant), aliveStories(record), end.reason, {}};
    outcome.verdict = verdictOn(record, outcome, end.kind);
    Words(record, plant, outcome).tell(end);
    return outcome;
}
