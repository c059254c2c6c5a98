// Trying the dates of a failure.
#include "hybrid/dates.h"

#include <algorithm>
#include <cmath>

#include "continuous/bridge.h"
#include "continuous/sorn-runt.h"
#include "hybrid/answer.h"
#include "hybrid/merging.h"
#include "model/StateVar.h"
#include "model/Transitionrt.h"
#include "model/labels.h"
#include "support/run_stopped.h"

namespace {

// What one diagnosis may spend, in cycles of one candidate: some seconds. The dates that are left
// out when it is spent are the earliest, since a failure is mostly noticed soon.
constexpr int cyclesOfOneDiagnosis = 20000;
// Of the candidates that were dropped, those of the last switches: each costs a runtime.
constexpr std::size_t mostDropped = 20;

struct Failure {
    Transition* transition;
    double time;  // where the search placed it
};

// New failures that together explain what a candidate does not.
struct Case {
    std::vector<Failure> failures;  // by time
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

bool holds(Trajectory const& history, int step, Atom const* atom) {
    TrajEl const* element = history.getElt(atom->getId(), step, 0);
    return element != nullptr && element->evalTrajEl();
}

bool isIn(std::vector<Move> const& moves, Move const& move) {
    return std::any_of(moves.begin(), moves.end(), [&move](Move const& other) {
        return other.transition == move.transition && other.step == move.step;
    });
}

std::vector<Failure> newFailures(hybTrajectory const& candidate, Trajectory const& explanation) {
    std::vector<Move> const known = movesOf(*candidate.traj);
    std::vector<Failure> failures;
    if (!explanation.transByTime)
        return failures;
    for (Move const& move : movesOf(explanation))
        if (move.transition->type == transFail && !isIn(known, move))
            failures.push_back(
                {const_cast<Transition*>(move.transition), explanation.datesOf(move.step).from});
    return failures;
}

bool areTheSame(std::vector<Failure> const& a, std::vector<Failure> const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](Failure const& x, auto const& y) { return x.transition == y.transition; });
}

double valueBack(s_Objet const& present, History<s_Objet> const& history, int cycles) {
    if (cycles == 0 || history.size() == 0)
        return sn_infOf(present);
    return sn_infOf(history[std::min(cycles, history.size()) - 1]);
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

// How many cycles the runtime can be moved back by.
int cyclesKept(s_runtime const& rt) {
    int kept = rt.twc - 1;
    for (auto const& variable : rt.dico)
        if (!variable->isParam && variable->histLen() > 0)
            kept = std::min(kept, variable->histLen() - 1);
    return kept;
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
    Dating(RunState& run, int threshold, Source const& source, s_runtime const& lines, double now,
           int& budget)
        : run(run),
          stepping{RUN_DETECT, 0.0, CYCLE_DETECT, threshold, 1},
          source(source),
          candidate(source.candidate),
          lines(lines),
          Ts(lines.Ts),
          now(now),
          budget(budget) {}

    // Adds what agrees to *agreeing*.
    void tryDates(Case const& one, HybMap& agreeing);

private:
    double timeBack(int cycles) const { return source.time - cycles * Ts; }
    bool isAt(double time, double when) const { return std::fabs(time - when) < Ts / 2; }
    double dateOfLine(double time) const;
    std::optional<int> stateFor(Transition const& failure, double time) const;
    bool canLeave(Transition const& failure, int step, double time) const;
    bool fail(hybTrajectory& moved, Transition* failure, double time);
    std::unique_ptr<hybTrajectory> failedAt(Failure const& failure, int cycles);
    HybMap replay(std::unique_ptr<hybTrajectory> start, Case const& one, double from);
    void failLater(HybMap& followed, Case const& one, double time);

    RunState& run;
    RunOptions const stepping;
    Source const source;
    hybTrajectory const& candidate;
    s_runtime const& lines;
    double const Ts;
    double const now;
    int& budget;
};

// The scenario finds its events by the exact time.
double Dating::dateOfLine(double time) const {
    auto const event = run.scheduler.scenario.lower_bound(time - Ts / 4);
    bool const found = event != run.scheduler.scenario.end() && event->first <= time + Ts / 4;
    return found ? event->first : time;
}

// Whether everything of the guard but the conditions on values holds at the step.
bool Dating::canLeave(Transition const& failure, int step, double time) const {
    Trajectory const& history = *candidate.traj;
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
        if (time < given.from || time > given.to)
            return false;
    }
    return true;
}

// The latest step of the history that may have held at that time and that the failure can leave.
std::optional<int> Dating::stateFor(Transition const& failure, double time) const {
    Trajectory const& history = *candidate.traj;
    for (int step = history.getCurrentTime(); step >= history.firstTime; --step) {
        bool const begun = history.datesOf(step).from <= time;
        bool const ended = step < history.getCurrentTime() && history.datesOf(step + 1).to < time;
        if (begun && !ended && canLeave(failure, step, time))
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

// The candidate as it would be had the failure come that many cycles ago; null when it could not.
std::unique_ptr<hybTrajectory> Dating::failedAt(Failure const& failure, int cycles) {
    double const time = timeBack(cycles);
    std::optional<int> const step = stateFor(*failure.transition, time);
    if (!step)
        return nullptr;
    auto moved = std::make_unique<hybTrajectory>();
    moved->traj = std::make_unique<Trajectory>(candidate.traj.get(), *step + 1);
    moved->traj->eventTime = -1.0;
    moved->rt = sn_copyMovedBack(candidate.rt.get(), cycles);
    if (!fail(*moved, failure.transition, time))
        return nullptr;
    return moved;
}

void Dating::failLater(HybMap& followed, Case const& one, double time) {
    for (std::size_t i = 1; i < one.failures.size(); ++i)
        if (isAt(one.failures[i].time, time))
            std::erase_if(followed, [&](auto const& entry) {
                return !fail(*entry.second, one.failures[i].transition, time);
            });
}

// Runs from the start, at *from*, up to now. Empty when the measures disagree.
HybMap Dating::replay(std::unique_ptr<hybTrajectory> start, Case const& one, double from) {
    HybMap followed;
    double const rank = start->traj->rank;
    followed.emplace(rank, std::move(start));
    failLater(followed, one, from);
    int const cycles = static_cast<int>(std::lround((now - from) / Ts));
    for (int back = cycles - 1; back >= 0 && !followed.empty(); --back) {
        budget -= static_cast<int>(followed.size());
        if (budget <= 0)
            return {};
        recallLine(run.engine, &lines, back);
        double const time = dateOfLine(now - back * Ts);
        run.tracked_trajs = std::move(followed);
        stepAndCheck(run, stepping, time);
        followed = std::move(run.ntrajs);
        if (followed.size() > 1)
            mergeReplayed(followed, time);
        failLater(followed, one, time);
    }
    return followed;
}

void Dating::tryDates(Case const& one, HybMap& agreeing) {
    for (int cycles = source.latest; cycles <= source.earliest && budget > 0; ++cycles) {
        std::unique_ptr<hybTrajectory> start = failedAt(one.failures.front(), cycles);
        if (start == nullptr)
            continue;
        for (auto& entry : replay(std::move(start), one, timeBack(cycles)))
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

// The distinct sets of new failures among the explanations, in their order.
std::vector<Case> casesOf(hybTrajectory const& candidate, HybMap const& found) {
    std::vector<Case> cases;
    for (auto const& entry : found) {
        std::vector<Failure> failures = newFailures(candidate, *entry.second->traj);
        if (failures.empty())
            continue;
        auto const same = std::find_if(cases.begin(), cases.end(), [&failures](Case const& one) {
            return areTheSame(one.failures, failures);
        });
        double const proba = entry.second->traj->proba;
        if (same == cases.end())
            cases.push_back({std::move(failures), proba});
        else
            same->proba = std::max(same->proba, proba);
    }
    return cases;
}

}  // namespace

void keepDropped(RunState& run, double time) {
    for (auto& entry : run.misbtrajs)
        run.dropped.push_back({time, std::move(entry.second)});
    while (run.dropped.size() > mostDropped)
        run.dropped.pop_front();
    while (!run.dropped.empty() && run.dropped.front().time < time - run.tavro_rt->twc)
        run.dropped.pop_front();
}

void dateExplanations(RunState& run, hybTrajectory const& candidate, HybMap const& found,
                      int threshold, double now, HybMap& out) {
    int budget = cyclesOfOneDiagnosis;
    {
        KeptLine const line(run.engine);
        Hushed const out1(run.out);
        Hushed const err1(run.err);
        for (Case const& one : casesOf(candidate, found)) {
            HybMap agreeing;
            auto const tryOn = [&](Source const& source) {
                Dating(run, threshold, source, *candidate.rt, now, budget).tryDates(one, agreeing);
            };
            tryOn(wholeWindow(candidate, now));
            for (RunState::Dropped const& dropped : run.dropped)
                tryOn(lastStep(dropped));
            for (auto& entry : agreeing) {
                entry.second->traj->proba = one.proba;
                out.emplace(entry.first, std::move(entry.second));
            }
        }
    }
    if (budget <= 0)
        run.err << "answer: the dates were searched for " << cyclesOfOneDiagnosis
                << " cycles and no further: failures may have begun earlier\n";
}
