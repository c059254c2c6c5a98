// Trying the dates of a failure.
#include "hybrid/dates.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "continuous/bridge.h"
#include "continuous/sorn-runt.h"
#include "hybrid/answer.h"
#include "hybrid/continuity.h"
#include "hybrid/merging.h"
#include "model/Comprt.h"
#include "model/StateVar.h"
#include "model/Transitionrt.h"
#include "model/labels.h"
#include "support/run_stopped.h"

namespace {

constexpr int noStep = std::numeric_limits<int>::max();
// Of the candidates that were dropped, those of the last switches: each costs a runtime.
constexpr std::size_t mostDropped = 20;

struct Failure {
    Transition* transition;
    int step;     // where the search, or an earlier diagnosis, placed it
    double time;  // the same
    // The failure that is told in place of this one, which leads to the same mode; null for none.
    Transition* named = nullptr;
};

// New failures that together explain what a candidate does not.
struct Case {
    std::vector<Failure> failures;  // by time
    std::vector<Failure> kept;      // of the candidate's own, those that stay in the explanation
    int firstLost;                  // the step of the candidate's first failure that does not
    double proba;                   // of the likeliest explanation with them
};

// Nothing is told while it lives: a replay is thought, not news.
class Hushed {
public:
    explicit Hushed(std::ostream& stream)
        : stream(stream), state(stream.rdstate()), buffer(stream.rdbuf(nullptr)) {}
    Hushed(Hushed const&) = delete;
    Hushed& operator=(Hushed const&) = delete;
    ~Hushed() {
        stream.rdbuf(buffer);
        stream.setstate(state);
    }

private:
    std::ostream& stream;
    std::ios_base::iostate state;
    std::streambuf* buffer;
};

// The current data line, which replays overwrite.
class KeptLine {
public:
    explicit KeptLine(s_engine& engine) : engine(engine), inps(engine.inps), meas(engine.meas) {}
    KeptLine(KeptLine const&) = delete;
    KeptLine& operator=(KeptLine const&) = delete;
    ~KeptLine() {
        std::copy(inps.begin(), inps.end(), engine.inps.begin());
        std::copy(meas.begin(), meas.end(), engine.meas.begin());
    }

private:
    s_engine& engine;
    std::vector<double> inps, meas;
};

// What the scheduler keeps from step to step. Transitions that fire in a replay have given their
// commands already.
class KeptEvents {
public:
    explicit KeptEvents(Scheduler& scheduler)
        : scheduler(scheduler), commands(scheduler.contCommands) {
        for (auto const& [date, event] : scheduler.scenario)
            if (event != nullptr)
                events[date] = *event;
    }
    KeptEvents(KeptEvents const&) = delete;
    KeptEvents& operator=(KeptEvents const&) = delete;
    ~KeptEvents() {
        scheduler.contCommands.swap(commands);
        std::erase_if(scheduler.scenario,
                      [this](auto const& entry) { return events.count(entry.first) == 0; });
        for (auto& [date, event] : scheduler.scenario)
            *event = std::move(events[date]);
    }

private:
    Scheduler& scheduler;
    std::vector<Atom*> commands;
    std::map<double, scenarEvent> events;
};

bool holds(Trajectory const& history, int step, Atom const* atom) {
    TrajEl const* element = history.getElt(atom->getId(), step, 0);
    return element != nullptr && element->evalTrajEl();
}

bool isIn(std::vector<Move> const& moves, Move const& move) {
    return std::any_of(moves.begin(), moves.end(), [&move](Move const& other) {
        return other.transition == move.transition && other.step == move.step;
    });
}

std::vector<Move> failuresOf(Trajectory const& history) {
    std::vector<Move> failures = movesOf(history);
    std::erase_if(failures, [](Move const& move) { return move.transition->type != transFail; });
    return failures;
}

// What the explanation adds to the failures of the candidate, and what it takes from them.
Case caseOf(Trajectory const& candidate, Trajectory const& explanation) {
    std::vector<Move> const known = failuresOf(candidate), all = failuresOf(explanation);
    Case one{{}, {}, noStep, explanation.proba};
    for (Move const& move : all)
        if (!isIn(known, move))
            one.failures.push_back(
                {move.transition, move.step, explanation.datesOf(move.step).from});
    for (Move const& move : known)
        if (isIn(all, move))
            one.kept.push_back({move.transition, move.step, candidate.datesOf(move.step).from});
        else
            one.firstLost = std::min(one.firstLost, move.step);
    return one;
}

// The other failures that lead to the same mode, each where a history with it was found first.
std::vector<Failure> alikeTo(Failure const& failure, Trajectory const& explanation) {
    std::vector<Failure> alike;
    StateVar const* mode = failure.transition->modeVar;
    if (mode == nullptr)
        return alike;
    for (auto const& other : mode->getComp()->getCompTransitions()) {
        auto const steps = explanation.failureSteps.find(other->id);
        if (other.get() == failure.transition || steps == explanation.failureSteps.end() ||
            other->modeVar != mode || other->postMode != failure.transition->postMode)
            continue;
        int const step = *steps->second.begin();
        alike.push_back({other.get(), step, explanation.datesOf(step).from, failure.transition});
    }
    return alike;
}

// The search answers histories that end in the same modes as one, and names the failures of the
// likeliest. The case, and with every other choice of failures that leads to the same modes.
std::vector<Case> withAlike(Case const& one, Trajectory const& explanation) {
    std::vector<Case> cases{one};
    for (std::size_t i = 0; i < one.failures.size(); ++i)
        for (std::size_t known = cases.size(), j = 0; j < known; ++j)
            for (Failure const& other : alikeTo(one.failures[i], explanation)) {
                cases.push_back(cases[j]);
                cases.back().failures[i] = other;
            }
    for (Case& each : cases)
        std::stable_sort(each.failures.begin(), each.failures.end(),
                         [](Failure const& a, Failure const& b) { return a.step < b.step; });
    return cases;
}

// The same case on another history, which may have other steps.
Case caseOn(Trajectory const& history, Case const& one) {
    Case other{one.failures, {}, noStep, one.proba};
    for (Move const& move : failuresOf(history)) {
        bool const stays = std::any_of(
            one.kept.begin(), one.kept.end(),
            [&move](Failure const& kept) { return kept.transition == move.transition; });
        if (stays)
            other.kept.push_back({move.transition, move.step, history.datesOf(move.step).from});
        else
            other.firstLost = std::min(other.firstLost, move.step);
    }
    return other;
}

bool areTheSame(std::vector<Failure> const& a, std::vector<Failure> const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](Failure const& x, auto const& y) { return x.transition == y.transition; });
}

bool areTheSame(Case const& a, Case const& b) {
    return areTheSame(a.failures, b.failures) && areTheSame(a.kept, b.kept) &&
           a.firstLost == b.firstLost;
}

double valueBack(s_Objet const& present, History<s_Objet> const& history, int cycles) {
    if (cycles == 0 || history.size() == 0)
        return sn_numberOf(present);
    return sn_numberOf(history[std::min(cycles, history.size()) - 1]);
}

// The line that was current *cycles* ago becomes so again.
void recallLine(s_engine& engine, s_runtime const* rt, int cycles) {
    for (std::size_t i = 0; i < rt->input.size(); ++i)
        engine.inps[i] = valueBack(rt->input[i]->old, rt->input[i]->histo, cycles);
    for (std::size_t i = 0; i < rt->measure.size(); ++i)
        engine.meas[i] = valueBack(rt->measure[i]->mes, rt->measure[i]->mesHisto, cycles);
}

// How many cycles ago every measure was inside its bounds for the last time.
int cyclesOutside(s_runtime const& rt) {
    int outside = 0;
    for (s_Variable const* measure : rt.measure) {
        if (measure->lowalarm == 0 && measure->highalarm == 0)
            continue;
        int cycles = 1;
        while (cycles <= measure->lowHisto.size() &&
               (measure->lowHisto[cycles - 1] != 0 || measure->highHisto[cycles - 1] != 0))
            ++cycles;
        outside = std::max(outside, cycles);
    }
    return outside;
}

// Whether a replay needs to know what the variable was: its lines are given again, and what carries
// state begins with its value.
bool isNeededBack(s_runtime const& rt, s_Variable const& variable) {
    return variable.histLen() > 0 || carriesState(variable) || sn_isInput(&rt, &variable) ||
           sn_isMeasure(&rt, &variable);
}

// How many cycles the runtime can be moved back by.
int cyclesKept(s_runtime const& rt) {
    int kept = rt.twc - 1;
    for (auto const& variable : rt.dico)
        if (!variable->isParam && isNeededBack(rt, *variable))
            kept = std::min(kept, variable->histLen() - 1);
    return kept;
}

// The history up to that step, as if nothing had come after it.
std::unique_ptr<Trajectory> historyUpTo(Trajectory const& source, int step) {
    auto history = std::make_unique<Trajectory>(&source, step + 1);
    history->eventTime = -1.0;
    for (auto const& [t, state] : source.states)
        if (t > step)
            history->rank -= source.getStateRank(state);
    std::erase_if(history->timeCorr, [step](auto const& entry) { return entry.first > step; });
    std::erase_if(history->stepDates, [step](auto const& entry) { return entry.first > step; });
    for (auto* moves : {&history->transByTime, &history->settled})
        if (*moves)
            std::erase_if(**moves, [step](auto const& entry) { return entry.first > step; });
    return history;
}

// The bounds are cut to where the condition holds; false where it cannot hold.
bool enterSpace(s_runtime* rt, s_Condition const* condition) {
    if (condition->kind == COND_AND)
        return enterSpace(rt, condition->left) && enterSpace(rt, condition->right);
    for (int const index : condition->acIdx) {
        s_Expr* constraint = rt->aC[static_cast<std::size_t>(index)];
        sn_evalSolFunc(rt, constraint);
        s_Variable* variable = constraint->gvar->var;
        if (sn_interObjet(&variable->old, &rt->engine->TMP4) != 1)
            return false;
        variable->new_ = variable->old;
    }
    return true;
}

bool enterSpaceOf(s_runtime* rt, Atom const* atom) {
    for (s_GVar* gvar : rt->gV)
        if (gvar->kind == GV_VARIABLE)
            gvar->value = gvar->var->old;
    for (s_Condition const* condition : rt->condi)
        if (condition->atom == atom &&
            (condition->kind == COND_EXPR || condition->kind == COND_AND))
            return enterSpace(rt, condition);
    return true;
}

// Conditions and validity space become what the history says.
void follow(Trajectory const& history, s_runtime* rt) {
    std::fill(rt->valSpc.begin(), rt->valSpc.end(), 0);
    std::fill(rt->ccAgenda.begin(), rt->ccAgenda.end(), 0);
    for (std::size_t i = 0; i < rt->condi.size(); ++i) {
        s_Condition* condition = rt->condi[i];
        if (condition->atom == nullptr)
            continue;
        bool const held = holds(history, history.getCurrentTime(), condition->atom);
        setRTCondVal(rt, static_cast<int>(i), held);
        if (held)
            sn_setInValSpc(rt, condition);
    }
}

// The influences have always acted as they do now.
void fillActivity(s_runtime* rt) {
    for (auto const& influence : rt->influ)
        if (influence->cond != nullptr)
            std::fill(influence->condHisto.begin(), influence->condHisto.end(),
                      sn_evalCond(influence->cond, rt));
}

// A candidate as it stood at some time; the cycles of its dates are counted back from then.
struct Source {
    hybTrajectory const& candidate;
    double time;
    int latest, earliest;  // the cycles to be tried
};

// One candidate, one case, tried at one date after the other.
class Dating {
public:
    // The lines of the past are read from *lines*, a candidate of *now*.
    Dating(RunState& run, int threshold, Source const& source, Case const& one,
           s_runtime const& lines, double now, int& budget)
        : run(run),
          stepping{RUN_DETECT, 0.0, CYCLE_DETECT, threshold, 1},
          source(source),
          candidate(source.candidate),
          one(one),
          lines(lines),
          Ts(lines.Ts),
          now(now),
          budget(budget) {}

    // Adds what agrees to *agreeing*.
    void tryDates(HybMap& agreeing);

private:
    double timeBack(int cycles) const { return source.time - cycles * Ts; }
    // Times of steps are sums of periods, and as exact as these.
    bool isAt(double time, double when) const { return std::fabs(time - when) < Ts / 2; }
    bool isBefore(double time, double when) const { return time < when - Ts / 2; }
    double dateOfLine(double time) const;
    std::optional<int> stateFor(Trajectory const& history, Transition const& failure, double time,
                                int before) const;
    bool canLeave(Trajectory const& history, Transition const& failure, int step,
                  double time) const;
    bool fail(hybTrajectory& moved, Transition* failure, double time);
    bool failFromState(hybTrajectory& moved, Transition* failure, double time);
    std::unique_ptr<hybTrajectory> failedAt(int cycles, std::vector<Failure>& later);
    std::vector<Failure> failuresAfter(int step, double start) const;
    void failLater(HybMap& followed, std::vector<Failure> const& later, double time);
    HybMap step(HybMap followed, double time);
    HybMap replay(std::unique_ptr<hybTrajectory> start, std::vector<Failure> const& later,
                  double from);

    RunState& run;
    RunOptions const stepping;
    Source const source;
    hybTrajectory const& candidate;
    Case const one;
    s_runtime const& lines;
    double const Ts;
    double const now;
    int& budget;
};

// The scenario finds its events by the exact time. One that the run has not met is none.
double Dating::dateOfLine(double time) const {
    auto event = run.scheduler.scenario.lower_bound(time - Ts / 4);
    for (; event != run.scheduler.scenario.end() && event->first <= time + Ts / 4; ++event)
        if (event->second != nullptr && event->second->met)
            return event->first;
    return time;
}

// Whether everything of the guard but the conditions on values holds at the step.
bool Dating::canLeave(Trajectory const& history, Transition const& failure, int step,
                      double time) const {
    for (auto const& [sign, atom] : failure.pre->getAllSignedAtoms()) {
        if (atom->getVarType() == typeCond)
            continue;
        if (holds(history, step, atom) != sign)
            return false;
        if (atom->getVarType() != typeCommand || !sign)
            continue;
        // A command acts at the one time at which it was given.
        if (step == history.getCurrentTime())
            return false;
        Trajectory::DateRange const given = history.datesOf(step + 1);
        if (isBefore(time, given.from) || isBefore(given.to, time))
            return false;
    }
    return true;
}

// The latest step of the history, below *before*, that may have held at that time and that the
// failure can leave.
std::optional<int> Dating::stateFor(Trajectory const& history, Transition const& failure,
                                    double time, int before) const {
    int const last = history.getCurrentTime();
    for (int step = std::min(last, before - 1); step >= history.firstTime; --step) {
        bool const begun = !isBefore(time, history.datesOf(step).from);
        bool const ended = step < last && isBefore(history.datesOf(step + 1).to, time);
        if (begun && !ended && canLeave(history, failure, step, time))
            return step;
    }
    return std::nullopt;
}

bool Dating::fail(hybTrajectory& moved, Transition* failure, double time) {
    SignedAtoms events;
    for (auto const& [sign, atom] : failure->pre->getAllSignedAtoms()) {
        if (atom->getVarType() != typeCond || !sign)
            continue;
        if (!enterSpaceOf(moved.rt.get(), atom))
            return false;
        if (!holds(*moved.traj, moved.traj->getCurrentTime(), atom))
            events.insert({true, atom});
    }
    clearRunTime(moved.rt.get());
    try {
        if (!run.scheduler.takeFailure(moved.traj.get(), moved.rt.get(), failure, events, time))
            return false;
    } catch (RunStopped const& why) {
        if (why.reason != RunStopped::eventImpossible)
            throw;
        run.scheduler.contEvents.clear();
        return false;
    }
    moved.traj->dated[failure->id] = {time, time};
    follow(*moved.traj, moved.rt.get());
    if (!failure->mapFuncs.empty())
        tavro_reinitialize(run, moved.rt.get(), time, RUN_DETECT, stepping.threshold);
    clearRunTime(moved.rt.get());
    clearAlarms(moved.rt.get());
    return true;
}

// The same from the step of the candidate's own history that the failure can leave at that time,
// instead of what was taken at that very time.
bool Dating::failFromState(hybTrajectory& moved, Transition* failure, double time) {
    std::optional<int> const step = stateFor(*moved.traj, *failure, time, noStep);
    if (!step)
        return false;
    if (*step < moved.traj->getCurrentTime())
        moved.traj = historyUpTo(*moved.traj, *step);
    return fail(moved, failure, time);
}

// The failures that follow the first one of a start at that time, from that step: the other new
// ones, and those of the candidate's own that the start has not reached. Where they were placed
// before the start they come with it.
std::vector<Failure> Dating::failuresAfter(int step, double start) const {
    std::vector<Failure> later(one.failures.begin() + 1, one.failures.end());
    for (Failure const& failure : one.kept)
        if (failure.step > step)
            later.push_back(failure);
    for (Failure& failure : later)
        if (failure.time == Trajectory::noTime || failure.time < start)
            failure.time = start;
    return later;
}

// The candidate as it would be had the first failure come that many cycles ago, and what is to
// fail *later*; null when it could not.
std::unique_ptr<hybTrajectory> Dating::failedAt(int cycles, std::vector<Failure>& later) {
    double const time = timeBack(cycles);
    Transition* failure = one.failures.front().transition;
    std::optional<int> const step = stateFor(*candidate.traj, *failure, time, one.firstLost);
    if (!step)
        return nullptr;
    auto moved = std::make_unique<hybTrajectory>();
    moved->traj = historyUpTo(*candidate.traj, *step);
    moved->rt = sn_copyMovedBack(candidate.rt.get(), cycles);
    follow(*moved->traj, moved->rt.get());
    fillActivity(moved->rt.get());
    run.scheduler.contCommands.clear();
    later = failuresAfter(*step, time);
    if (!fail(*moved, failure, time))
        return nullptr;
    return moved;
}

void Dating::failLater(HybMap& followed, std::vector<Failure> const& later, double time) {
    for (Failure const& failure : later)
        if (isAt(failure.time, time))
            std::erase_if(followed, [&](auto const& entry) {
                return !failFromState(*entry.second, failure.transition, time);
            });
}

// One step of all. A state in which a run cannot go on ends the start, not the run.
HybMap Dating::step(HybMap followed, double time) {
    run.tracked_trajs = std::move(followed);
    try {
        stepAndCheck(run, stepping, time);
    } catch (RunStopped const&) {
        for (HybMap* left : {&run.tracked_trajs, &run.ntrajs, &run.misbtrajs})
            left->clear();
        run.scheduler.contEvents.clear();
        run.scheduler.contCommands.clear();
    }
    return std::exchange(run.ntrajs, {});
}

// Runs from the start, at *from*, up to now. Empty when the measures disagree.
HybMap Dating::replay(std::unique_ptr<hybTrajectory> start, std::vector<Failure> const& later,
                      double from) {
    HybMap followed;
    double const rank = start->traj->rank;
    followed.emplace(rank, std::move(start));
    failLater(followed, later, from);
    int const cycles = static_cast<int>(std::lround((now - from) / Ts));
    for (int back = cycles - 1; back >= 0 && !followed.empty(); --back) {
        budget -= static_cast<int>(followed.size());
        if (budget <= 0)
            return {};
        recallLine(run.engine, &lines, back);
        double const time = dateOfLine(now - back * Ts);
        followed = step(std::move(followed), time);
        if (followed.size() > 1)
            mergeReplayed(followed, time);
        failLater(followed, later, time);
    }
    return followed;
}

void Dating::tryDates(HybMap& agreeing) {
    int const dropped = static_cast<int>(std::lround((now - source.time) / Ts));
    int const earliest = std::min(source.earliest, cyclesKept(lines) - dropped);
    for (int cycles = source.latest; cycles <= earliest && budget > 0; ++cycles) {
        std::vector<Failure> later;
        std::unique_ptr<hybTrajectory> start = failedAt(cycles, later);
        if (start == nullptr)
            continue;
        for (auto& entry : replay(std::move(start), later, timeBack(cycles)))
            agreeing.emplace(entry.second->traj->rank, std::move(entry.second));
        if (agreeing.size() > 1)
            mergeReplayed(agreeing, now);
    }
}

Source wholeWindow(hybTrajectory const& candidate, double now) {
    int const elapsed = static_cast<int>(std::lround(now / candidate.rt->Ts));
    return {candidate, now, std::max(1, cyclesOutside(*candidate.rt)),
            std::min(elapsed, cyclesKept(*candidate.rt))};
}

// Of a dropped candidate, its last step alone: what came before it, it has in common with one that
// stayed. A cycle more, since a failure may have come before what led to the step was seen.
Source lastStep(RunState::Dropped const& dropped) {
    hybTrajectory const& candidate = *dropped.candidate;
    double const begun = candidate.traj->datesOf(candidate.traj->getCurrentTime()).from;
    double const Ts = candidate.rt->Ts;
    int const cycles = static_cast<int>(std::lround((dropped.time - begun) / Ts)) + 1;
    Source source = wholeWindow(candidate, dropped.time);
    source.earliest = std::min(source.earliest, cycles);
    return source;
}

// Adds the case, unless it is there already.
void addCase(std::vector<Case>& cases, Case const& one) {
    auto const same = std::find_if(cases.begin(), cases.end(),
                                   [&one](Case const& other) { return areTheSame(other, one); });
    if (same == cases.end())
        cases.push_back(one);
    else
        same->proba = std::max(same->proba, one.proba);
}

// The distinct cases among the explanations that add a failure, in their order; what is told by
// another name comes last.
std::vector<Case> casesOf(hybTrajectory const& candidate, HybMap const& found) {
    std::vector<Case> cases, alike;
    for (auto const& entry : found) {
        std::vector<Case> const all =
            withAlike(caseOf(*candidate.traj, *entry.second->traj), *entry.second->traj);
        if (all.front().failures.empty())
            continue;
        addCase(cases, all.front());
        alike.insert(alike.end(), all.begin() + 1, all.end());
    }
    for (Case const& one : alike)
        addCase(cases, one);
    return cases;
}

// The range of a failure that is told by another name becomes that of the name.
void nameAlike(Case const& one, Trajectory& history) {
    for (Failure const& failure : one.failures)
        if (auto const range = history.dated.find(failure.transition->id);
            failure.named != nullptr && range != history.dated.end())
            history.dated.try_emplace(failure.named->id, range->second);
}

}  // namespace

void keepDropped(RunState& run, double time) {
    for (auto& entry : run.misbtrajs)
        run.dropped.push_back({time, std::move(entry.second)});
    while (run.dropped.size() > mostDropped)
        run.dropped.pop_front();
    double const window = run.tavro_rt->twc * run.tavro_rt->Ts;
    while (!run.dropped.empty() && run.dropped.front().time < time - window)
        run.dropped.pop_front();
}

bool dateExplanations(RunState& run, hybTrajectory const& candidate, HybMap const& found,
                      int threshold, double now, int budget, HybMap& out) {
    KeptLine const line(run.engine);
    KeptEvents const events(run.scheduler);
    Hushed const out1(run.out);
    Hushed const err1(run.err);
    std::vector<Case> const cases = casesOf(candidate, found);
    bool whole = true;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        int const share = budget / static_cast<int>(cases.size() - i);
        int left = share;
        HybMap agreeing;
        auto const tryOn = [&](Source const& source) {
            Case const one = caseOn(*source.candidate.traj, cases[i]);
            Dating(run, threshold, source, one, *candidate.rt, now, left).tryDates(agreeing);
        };
        tryOn(wholeWindow(candidate, now));
        for (RunState::Dropped const& dropped : run.dropped)
            tryOn(lastStep(dropped));
        for (auto& entry : agreeing) {
            // Its dates and the ways that it went from them have the weight of the case in common.
            double const ways = run.rules.likelihood ? static_cast<double>(agreeing.size()) : 1.0;
            entry.second->traj->proba = cases[i].proba / ways;
            nameAlike(cases[i], *entry.second->traj);
            out.emplace(entry.first, std::move(entry.second));
        }
        whole = whole && left > 0;
        budget -= share - std::max(left, 0);
    }
    return whole;
}
