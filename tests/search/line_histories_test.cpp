// The rules `histories` and `likelihood` on the feed line, also with `derived`, beside every
// history of up to two failures, enumerated.
//
//   completeness  What a search answers are the ends of all histories of least failure, with all
//                 their failures, at all steps at which these can have been.
//   order         The probability of an answer is that of its histories, by the tables of the line
//                 alone, and the likeliest comes first.
//   posterior     So it is after each later line, as long as one of them agrees.
//   classic       Without the rules: how much of that comes out.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "fixtures/line.h"
#include "fixtures/the_run.h"
#include "model/StateVar.h"
#include "search/line_fixture.h"
#include "search/search_fixture.h"

namespace {

using namespace feed_line;

// The engine on the line, a step at a time.
class LineRun {
public:
    explicit LineRun(RunSettings const& settings) : engine("line", settings) {
        buildLine(engine.scheduler, parts - 1);
        engine.start();
        engine.scheduler->beginSteps();
    }
    // Whether there was a search.
    bool take(Line const& line) {
        static char const* const names[] = {"pump", "valve1", "valve2"};
        static char const* const values[][3] = {
            {"none", "start", "stop"}, {"none", "open", "close"}, {"none", "open", "close"}};
        scenarEvent commands{true, {}};
        for (std::size_t part = 0; part < parts; ++part)
            commands.atoms.push_back(
                atom(std::string(names[part]) + ".cmd=" + values[part][line.commands[part]]));
        engine.scheduler->step(commands);
        checkProbabilities();
        if (!line.seen)
            return false;
        if (!tracked().empty())
            windowStart = tracked().begin()->second->firstTime;
        scenarEvent seen{false,
                         {atom(line.positive ? "sensor.flow=positive" : "sensor.flow=zero")}};
        bool const searched = engine.scheduler->step(seen);
        checkProbabilities();
        return searched;
    }
    // What is followed, in its order.
    std::vector<std::pair<std::string, Answer>> answers() const {
        std::vector<std::pair<std::string, Answer>> all;
        for (auto const& entry : tracked())
            all.push_back({endOf(*entry.second), answerOf(*entry.second)});
        return all;
    }
    std::string told() const { return streams.errors.str(); }
    static TrajectoryMap const& tracked() { return theRun().scheduler.tracked_traj; }

    int windowStart = 0;    // when the last observation came
    bool checking = false;  // whether the rule `likelihood` is in force

private:
    static Atom* atom(std::string const& id) { return theAtom(id.c_str()); }
    static std::string endOf(Trajectory const& history) {
        std::string text;
        for (char const* name : {"pump.mode", "valve1.mode", "valve2.mode"})
            for (StateVar const* variable : thePlant().stateVars)
                if (variable->name == name)
                    for (Atom const* each : variable->getAtomLinks())
                        if (history.getElt(each->getId(), history.getCurrentTime(), 0)
                                ->evalTrajEl())
                            text += (text.empty() ? "" : " ") + each->value;
        return text;
    }
    static Answer answerOf(Trajectory const& history) {
        Answer answer;
        answer.proba = history.proba;
        for (auto const& [id, steps] : history.failureSteps) {
            Transition const* failure = thePlant().active_trans.find(id)->second;
            std::string const comp = failure->modeVar->getComp()->getName();
            std::string const part = comp == "pump" ? "0" : comp == "valve1" ? "1" : "2";
            answer.steps[part + " " + failure->preMode->value + " -> " + failure->postMode->value] =
                steps;
        }
        return answer;
    }
    void checkProbabilities() const {
        if (!checking || tracked().empty())
            return;
        double sum = 0.0;
        double before = 2.0;
        for (auto const& entry : tracked()) {
            EXPECT_TRUE(std::isfinite(entry.second->proba));
            EXPECT_LE(entry.second->proba, before);
            EXPECT_EQ(entry.first, entry.second->proba);
            before = entry.second->proba;
            sum += entry.second->proba;
        }
        EXPECT_NEAR(sum, 1.0, 1e-12);
    }

    search_fixture::QuietStreams streams;
    search_fixture::Engine engine;
};

void compare(LineRun const& run, Answers const& wanted) {
    auto const told = run.answers();
    std::set<std::string> ends;
    for (auto const& [end, answer] : told) {
        EXPECT_TRUE(ends.insert(end).second) << end << " is told twice";
        auto const same = wanted.find(end);
        if (same == wanted.end()) {
            ADD_FAILURE() << end << " explains nothing";
            continue;
        }
        EXPECT_NEAR(answer.proba, same->second.proba, 1e-12) << end;
        EXPECT_EQ(answer.steps, same->second.steps) << end;
    }
    for (auto const& entry : wanted)
        EXPECT_EQ(ends.count(entry.first), 1U) << entry.first << " is missed";
}

struct Tally {
    int searches = 0, pairs = 0, later = 0, found = 0, wanted = 0;
    unsigned widest = 0;  // transitions tried in one search
};

// However a state is settled (rule `derived`), the answers are the same.
char const* const exactRules[] = {"histories,likelihood", "histories,likelihood,derived"};

// Up to the search, and what it answers.
void follow(Day const& day, Tally& tally, char const* rules) {
    LineRun run(withRules(rules));
    run.checking = true;
    bool searched = false;
    for (Line const& line : day.lines)
        searched = run.take(line);
    if (!searched)
        return;
    int const failures = day.leastFailures(run.windowStart);
    if (day.histories(failures, run.windowStart, 1000, day.lines.size()).empty())
        return;  // it takes three
    tally.widest = std::max(tally.widest, theRun().scheduler.transitions_checked);
    ++tally.searches;
    tally.pairs += failures == 2 ? 1 : 0;
    int const first = run.windowStart;
    compare(run, day.leastAnswers(first));
    for (std::size_t i = 0; i < day.later.size(); ++i) {
        std::size_t const count = day.lines.size() + i + 1;
        Answers const left = day.answersAfter(failures, first, count);
        bool const again = run.take(day.later[i]);
        EXPECT_EQ(again, left.empty());
        if (left.empty())
            break;
        compare(run, left);
        ++tally.later;
    }
}

// How much of the same the classic search finds.
void followClassic(Day const& day, Tally& tally) {
    LineRun run(withRules("classic"));
    bool searched = false;
    for (Line const& line : day.lines)
        searched = run.take(line);
    if (!searched)
        return;
    Answers const wanted = day.leastAnswers(run.windowStart);
    ++tally.searches;
    std::set<std::string> ends;
    for (auto const& entry : run.answers())
        ends.insert(entry.first);
    tally.pairs += day.leastFailures(run.windowStart) == 2 ? 1 : 0;
    tally.found += static_cast<int>(ends.size());
    tally.wanted += static_cast<int>(wanted.size());
}

constexpr unsigned daysOfAKind = 60;

template <typename Test>
void forDays(Day (*draw)(unsigned seed, int commands, int faults), int commands, int faults,
             Test test) {
    for (unsigned seed = 0; seed < daysOfAKind; ++seed) {
        Day const day = draw(seed, commands, faults);
        test(day);
        ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << "\n" << day.describe();
    }
}

Day drawPair(unsigned seed, int, int) {
    return pairDay(seed);
}

// With as many lines of commands before the search, or more.
class FeedLineHistories : public testing::TestWithParam<int> {
protected:
    Tally tally;
};

TEST_P(FeedLineHistories, AreAllThereInTheirOrder) {
    for (char const* rules : exactRules) {
        SCOPED_TRACE(rules);
        tally = {};
        for (int const faults : {1, 2})
            forDays(randomDay, GetParam(), faults,
                    [&](Day const& day) { follow(day, tally, rules); });
        EXPECT_GT(tally.searches, 30);
        EXPECT_GT(tally.later, 60);
    }
}

// Each failure is found once, at its latest step or not at all.
TEST_P(FeedLineHistories, ClassicFindsAPart) {
    for (int const faults : {1, 2})
        forDays(randomDay, GetParam(), faults,
                [this](Day const& day) { followClassic(day, tally); });
    EXPECT_GT(tally.searches, 30);
    EXPECT_GT(tally.found, tally.wanted / 2);
    EXPECT_LT(tally.found, tally.wanted);
}

INSTANTIATE_TEST_SUITE_P(Commands, FeedLineHistories, testing::Values(3, 4, 6, 8));

TEST(FeedLinePairs, AreAllThereInTheirOrder) {
    for (char const* rules : exactRules) {
        SCOPED_TRACE(rules);
        Tally tally;
        forDays(drawPair, 0, 0, [&](Day const& day) { follow(day, tally, rules); });
        EXPECT_EQ(tally.pairs, static_cast<int>(daysOfAKind));
        EXPECT_GT(tally.later, static_cast<int>(daysOfAKind));
        EXPECT_LT(tally.widest, 1000U) << "far from the bound of a search";
    }
}

// The round for one failure has used up both.
TEST(FeedLinePairs, ClassicFindsNone) {
    Tally tally;
    forDays(drawPair, 0, 0, [&tally](Day const& day) { followClassic(day, tally); });
    EXPECT_EQ(tally.pairs, static_cast<int>(daysOfAKind));
    EXPECT_EQ(tally.found, 0);
}

}  // namespace
