// A tap whose history is told step by step, for the tests of the search for candidates.
//
// The tap "c" has the mode m (shut, open, stuck); a controller "k" of its own has the command cmd
// (none, go, back), so that neither says anything of the other. A history begins shut and without a
// command at step 0, where every component stands and nothing leads in. Its probability is 1 there.
#pragma once

#include <iostream>

#include "reasoning/Diagnoser.h"
#include "reasoning/reasoning_fixture.h"

namespace diagnoser_fixture {

using reasoning_fixture::count;
using reasoning_fixture::SmallModel;

// Catches the error stream while it lives.
class ErrorTrace {
public:
    ErrorTrace() : errors(std::cerr.rdbuf(text.rdbuf())) {}
    ~ErrorTrace() { std::cerr.rdbuf(errors); }
    ErrorTrace(ErrorTrace const&) = delete;

    // What was written since the last call.
    std::string take();

private:
    std::ostringstream text;
    std::streambuf* errors;
};

class Tap : public testing::Test {
protected:
    Tap();
    ~Tap() override;

    // ---- Building, before start() ----

    // A transition under a name.
    Transition* move(std::string const& name, std::string const& pre, std::string const& post,
                     double proba, std::string const& type = transNominal, bool idle = false,
                     std::string const& owner = "c");
    // One with several effects and so without a post-condition.
    Transition* manyEffects(std::string const& name, std::string const& pre,
                            std::string const& effect, double proba);
    // A sensor "d" that shows lo, or hi while the tap is open.
    void addSensor();
    // A second mode of the controller, which goes on by itself. It speaks for whatever is held in
    // other components, where no clause would: without it a mode that is held at an observed step
    // makes the likelihood 0, and a search has no probabilities to share out.
    void addPulse();
    // Ends the construction; the history then goes up to step *last*.
    void start(int last = 0);

    // ---- Telling the history ----

    // A step that holds every component with the labels of the one before, free but for the
    // command, which is none and held for good.
    State* addStep();
    void label(int t, std::string const& literals);
    // The command given at step t, held for good.
    void command(int t, std::string const& value);
    // The transition was taken into step t: its guard is left by it, its effect holds.
    void takes(Transition* transition, int t);
    // The labels of m at step t, with none of its values held.
    void mode(int t, std::string const& value);
    // Everything of a component leaves step t.
    void forget(std::string const& comp, int t);

    // ---- Reading ----

    Trajectory* history() const { return model.history.get(); }
    State* state(int t) const { return history()->getState(t); }
    TrajEl* elt(std::string const& name, int t) const { return elt(name, *history(), t); }
    TrajEl* elt(std::string const& name, Trajectory const& in, int t) const {
        return model.elt(name, in.getState(t));
    }
    std::string labels(std::string const& names, Trajectory const& in, int t) const {
        return model.labels(names, in.getState(t));
    }
    // Locks of elements, a digit each.
    std::string locks(std::string const& names, Trajectory const& in, int t) const;
    // What a search recorded: "1:opens 2:keeps".
    std::string moves(Trajectory const& in) const;
    // The transitions told behind each such line of the trace.
    std::string toldBehind(std::string const& line, std::string const& text) const;
    std::string chosen(std::string const& text) const {
        return toldBehind("[immediateSuccessors] --> transition chosen : \n", text);
    }
    std::string nameOf(Transition const* transition) const;

    // ---- Searching ----

    // A conflict on an element of step *from*, told with position p.
    disConflict conflict(std::string const& name, int from, int p, bool mark = true) const {
        return {elt(name, from), p, mark};
    }
    ConflictSet conflicts(std::vector<disConflict> const& members) const;
    // Explains conflicts by other transitions; the history goes with it.
    TrajectoryMap explain(ConflictSet const& set, int t, double rank, bool post);
    // The conflict of an effect at the last step.
    TrajectoryMap explainEffect(std::string const& name, double rank);
    Observations observed(std::string const& literals) const;

    reasoning_fixture::Trace quiet;
    ErrorTrace errors;
    SmallModel model;
    Diagnoser& diagnoser = theRun().scheduler;

private:
    std::map<Transition const*, std::string> names;
};

// A tap with its transitions. It opens on command; it sticks by itself, or by the command; without
// a command it stays shut. What is open or stuck is kept.
class MovingTap : public Tap {
protected:
    MovingTap();

    // Up to step 1: believed open there by `opens`, and yet shut. Nothing is held at step 1.
    void believedOpen();
    // Up to step 2: open at step 1, and yet `stays` is recorded into step 2, shut.
    void believedShut();

    Transition *opens, *sticks, *jams, *stays, *keeps, *remains;
};

// A tap with a sensor that has opened by itself, or so it is believed, while a command was given
// that does nothing. It shows lo all the same, which it does only beside q or r. So of what can be
// assumed for step 1, stuck with q and stuck with r can be explained, both by `sticks` alone; and
// as that is a failure without a command, one search expands it for the first of them only. A move
// that leads to *likely*, q or r, makes that one the likelier.
class ForkedTap : public MovingTap {
protected:
    void start(std::string const& likely);
    // One history was found, which sticks, with those labels of q and r.
    void expectFound(TrajectoryMap const& results, std::string const& expected) const;
};

}  // namespace diagnoser_fixture
