// One nominal step of a discrete trajectory.
//
// Commands are asserted in the current state; the transitions that they trigger, and those that the
// settled elements trigger, fire into the next state. Only the first result of each propagation is
// followed, and only transitions reachable from what changed are examined, never all of the model.
#include <cassert>
#include <optional>
#include <utility>

#include "continuous/bridge.h"
#include "model/StateVar.h"
#include "model/labels.h"
#include "reasoning/Scheduler.h"
#include "support/run_stopped.h"

namespace {

// The effect of a plain transition comes at the next step, not at a delay.
constexpr int noDelay = -1;

std::unique_ptr<State> exactCopy(State const* state) {
    auto copy = std::make_unique<State>(state, true);
    copy->locked = state->locked;
    return copy;
}

void reportNoState(std::ostream& err) {
    err << "Error update the current state: no valid state found.\n";
}

// Of a list of results that is not empty, the first alone is followed.
std::unique_ptr<ItmsRes> firstOf(ItmsResults& results) {
    assert(!results.empty() && results.front() != nullptr);
    return std::move(results.front());
}

}  // namespace

// What one call of constructNextNominalStateLarge works on.
struct Scheduler::NominalStep {
    Trajectory* traj;
    int t;
    std::vector<Atom*>& commands;
    bool keepUnlocked;
    PendingTransitions& pending;
    std::unique_ptr<State> next;
    std::unique_ptr<ItmsRes> settled;  // its table: what changed in the current state
    hash_map<int, bool> seen;          // transitions already examined

    State* current() const { return traj->getState(t); }
};

void Scheduler::constructNextNominalStateLarge(Trajectory* traj, std::vector<Atom*>& commands,
                                               bool keepUnlocked, PendingTransitions& pending) {
    int const t = traj->getCurrentTime();
    assert(traj->getState(t) != nullptr);
    NominalStep step{traj, t, commands, keepUnlocked, pending, nullptr, nullptr, {}};
    traj->addState(t + 1, std::make_unique<State>(book));
    step.next = traj->takeState(t + 1);
    states_cover[t + 1] = 0.0;
    std::unique_ptr<State> before = exactCopy(step.current());
    if (!settleCommands(step)) {
        traj->putState(t, std::move(before));
        step.next->clear();
        closeStep(step);
        return;
    }
    // A copy: a transition that fires may give a command for the step that runs.
    for (Atom const* atom : std::vector<Atom*>(step.commands))
        fireTransitionsOf(atom, step);
    for (auto const& entry : step.settled->already_changed)
        fireTransitionsOf(entry.second->atom, step);
    endPendingTransitions(step);
    closeStep(step);
}

// A delayed command stays asserted as long as its transition runs.
void Scheduler::assertPendingCommands(NominalStep& step) {
    for (auto const& entry : step.pending) {
        Atom* command = entry.second.command;
        assert(command != nullptr && command->getVarType() == typeCommand);
        StateSite const site{step.current(), step.traj, step.t};
        if (TrajEl* element = getElt(command->getId(), site))
            lockTrajElsPerm(element, step.current());
        step.commands.push_back(command);
    }
}

// Asserts the commands in the current state, which becomes the first result's. On failure the place
// of the current state is left empty.
bool Scheduler::settleCommands(NominalStep& step) {
    assertPendingCommands(step);
    SignedElements props;
    StateSite const site{step.current(), step.traj, step.t};
    for (Atom const* atom : step.commands) {
        TrajEl* element = getElt(atom->getId(), site);
        if (element == nullptr)
            continue;
        props.insert({true, element});
        if (!step.keepUnlocked)
            lockTrajElsPerm(element, site.state);
    }
    std::unique_ptr<State> current = step.traj->takeState(step.t);
    ItmsResults results =
        addPropositions(props, current, {true, step.traj->rank}, step.traj, step.t, false);
    if (results.empty()) {
        reportNoState(err);
        return false;
    }
    step.settled = firstOf(results);
    if (!discretemdl)
        addBridgeConditions(step.settled->already_changed);
    step.traj->putState(step.t, std::move(step.settled->state));
    return true;
}

void Scheduler::fireTransitionsOf(Atom const* atom, NominalStep& step) {
    for (Transition* transition : atom->getRefTransPre()) {
        if (transition->type != transNominal || transition->idle ||
            step.seen.count(transition->id) != 0)
            continue;
        step.seen[transition->id] = true;
        if (evalStateFormula(transition->pre.get(), step.traj, step.t))
            triggerTransition(transition, step.current(), step.next, step.traj, step.pending,
                              step.t);
    }
}

void Scheduler::endPendingTransitions(NominalStep& step) {
    std::vector<int> ended;
    for (auto const& entry : step.pending)
        if (entry.second.getEnd(step.t)) {
            entry.second.trans->showTransition(out);
            ended.push_back(entry.first);
        }
    for (int const id : ended)
        step.pending.erase(id);
}

// With nothing in the next state no transition fired, and the trajectory stays where it was.
void Scheduler::closeStep(NominalStep& step) {
    assert(step.next != nullptr && step.current() != nullptr);
    bool const fired = !step.next->elts.empty();
    if (fired) {
        noteUnknown(step.next.get());
        step.traj->addState(step.t + 1, std::move(step.next));
        step.traj->setTimeCorr(simTime);
    } else {
        step.traj->putState(step.t + 1, std::move(step.next));
        step.traj->removeLastState();
        assert(step.traj->getCurrentTime() == step.t);
    }
}

// One transition that fires into the next state.
struct Scheduler::Firing {
    Transition* transition;
    State* current;
    std::unique_ptr<State>& next;
    Trajectory* traj;
    PendingTransitions& pending;
    int now;
    // Commands that it gives and their steps. They become events once every effect holds.
    std::vector<std::pair<Atom*, int>> given;
};

// What the effects before an impossible one leave behind in the history and in what runs, to be
// taken back. Borrows the elements of the history.
class Scheduler::Takeback {
public:
    explicit Takeback(Firing const& firing) : comps(firing.current->comps) {
        for (auto const& entry : firing.traj->states)
            for (auto const& element : entry.second->elts)
                if (element.second != nullptr)
                    links.emplace_back(element.second, element.second->nextTrans);
        if (auto const found = firing.pending.find(firing.transition->id);
            found != firing.pending.end())
            running = found->second;
    }
    // The components go first: those that were pulled into the current state are not in the list.
    void apply(Firing const& firing) const {
        string_map<Comp*> const held = firing.current->comps;
        for (auto const& [name, comp] : held)
            if (comps.count(name) == 0)
                firing.traj->removeComp(comp, firing.now);
        for (auto const& [element, transitions] : links)
            element->nextTrans = transitions;
        firing.pending.erase(firing.transition->id);
        if (running)
            firing.pending.insert({firing.transition->id, *running});
    }

private:
    string_map<Comp*> comps;  // of the current state
    std::vector<std::pair<TrajEl*, TrajEl::Transitions>> links;
    std::optional<transitionCM> running;
};

// The elements of the effect to be asserted. Commands among the atoms become events instead.
SignedElements Scheduler::effectsOf(Firing& firing, StateFormula const* formula, int delay) {
    SignedElements props;
    bool const delayed = delay != noDelay;
    bool const running = delayed && firing.pending.count(firing.transition->id) != 0;
    int const now = firing.now;
    for (Atom* atom : formula->getAllAtoms()) {
        // A command's element is fetched too: the next state then holds its component.
        TrajEl* element = getElt(atom->getId(), {firing.next.get(), firing.traj, now + 1}, false);
        if (atom->getVarType() == typeCommand) {
            firing.given.emplace_back(atom, delayed ? now + delay : now + 1);
            continue;
        }
        if (element == nullptr)
            continue;
        if (!running) {
            element->prevTrans = firing.transition;
            element->index = now;
        }
        if (!delayed || element->index + delay == now + 1)
            props.insert({true, element});
        else
            firing.given.emplace_back(atom, now + delay);
    }
    return props;
}

// Asserts the effect in the next state, which is lost when there is no result.
bool Scheduler::settleNext(SignedElements const& props, std::unique_ptr<State>& next,
                           Trajectory* traj, int now) {
    ItmsResults results = addPropositions(props, next, {true, traj->rank}, traj, now + 1, false);
    if (results.empty()) {
        reportNoState(err);
        return false;
    }
    std::unique_ptr<ItmsRes> const settled = firstOf(results);
    if (!discretemdl)
        addBridgeConditions(settled->already_changed);
    for (auto const& entry : settled->already_changed)
        if (entry.second->isLabelled(labelFalse))
            entry.second->prevTrans = nullptr;
    next = std::move(settled->state);
    return true;
}

// The guard's elements in the current state remember what leaves them.
void Scheduler::linkGuard(Firing const& firing) {
    for (Atom const* atom : firing.transition->pre->getAllAtoms()) {
        if (firing.current->getElt(atom->getId()) == nullptr)
            firing.traj->addComp(atom->getVarComp(), firing.current, firing.now, true, false);
        if (TrajEl* element = firing.current->getElt(atom->getId()))
            element->addToNextTrans(firing.transition);
    }
}

bool Scheduler::fireEffect(Firing& firing, StateFormula const* formula, int delay) {
    SignedElements const props = effectsOf(firing, formula, delay);
    if (!settleNext(props, firing.next, firing.traj, firing.now))
        return false;
    linkGuard(firing);
    return true;
}

// The effects of a multi-valued transition. The first that no state can hold takes back what those
// before it did outside the next state.
bool Scheduler::fireDelayedEffects(Firing& firing) {
    Takeback const takeback(firing);
    Transition* transition = firing.transition;
    for (auto const& [delay, formula] : *transition->posts) {
        assert(delay != noDelay && formula != nullptr);
        if (!fireEffect(firing, formula, delay)) {
            takeback.apply(firing);
            return false;
        }
        for (Atom* atom : transition->pre->getAllAtoms())
            if (atom->getVarType() == typeCommand) {
                firing.pending.erase(transition->id);
                firing.pending.insert({transition->id, transitionCM{transition, firing.now, atom}});
            }
    }
    return true;
}

void Scheduler::triggerTransition(Transition* transition, State* current,
                                  std::unique_ptr<State>& next, Trajectory* traj,
                                  PendingTransitions& pending, int now) {
    if (!transition->post && !transition->posts)
        return;
    assert(current != nullptr && next != nullptr && transition->pre != nullptr);
    assert(discretemdl || runtime != nullptr);
    std::unique_ptr<State> before = exactCopy(next.get());
    BridgeAtoms conditions;
    if (!discretemdl) {
        conditions = runtime->bridgeConds;
        addBridgeTrans(transition, runtime);
    }
    Firing firing{transition, current, next, traj, pending, now, {}};
    bool const fired = transition->post ? fireEffect(firing, transition->post.get(), noDelay)
                                        : fireDelayedEffects(firing);
    if (fired) {
        for (auto const& [command, step] : firing.given)
            addCommandEvent(command, step);
        if (transition->post)
            transition->showMove(out, err);
        return;
    }
    next = std::move(before);
    if (!discretemdl) {
        assert(!runtime->bridgeTrans.empty() && runtime->bridgeTrans.back() == transition);
        runtime->bridgeTrans.pop_back();  // it did not fire
        runtime->bridgeConds = std::move(conditions);
    }
}

void Scheduler::addBridgeConditions(ElementTable const& table) {
    for (auto const& entry : table)
        if (entry.second->atom->bridged) {
            assert(runtime != nullptr);
            addBridgeCond(entry.second->atom, entry.second->isLabelled(labelTrue), runtime);
        }
}

int Scheduler::syncPreviousState(Trajectory* traj) {
    State const* last = traj->getLastState();
    assert(last != nullptr);
    if (last->elts.empty() || !last->locked)
        return 0;
    traj->addState(traj->getCurrentTime() + 1, std::make_unique<State>(book));
    traj->setTimeCorr(simTime);
    return 1;
}

// A state that was added for commands is empty still when they failed. It may not stay: candidates
// are compared by their last states, and two without elements are equal.
void Scheduler::takeBackEmptyState(Trajectory* traj) {
    if (!traj->getLastState()->elts.empty())
        return;
    assert(!traj->timeCorr.empty() && traj->timeCorr.back().first == traj->getCurrentTime());
    traj->removeLastState();
    traj->timeCorr.pop_back();
}

void Scheduler::addContEvents(Trajectory* traj) {
    int const t = traj->getCurrentTime();
    StateSite const site{traj->getState(t), traj, t};
    assert(site.state != nullptr);
    SignedElements props;
    for (auto const& [sign, atom] : contEvents) {
        TrajEl* element = getElt(atom->getId(), site);
        if (element == nullptr)
            continue;
        if (sign)
            lockTrajElsPerm(element, site.state);
        else
            element->lock = LOCK_FALSE_PERM;
        props.insert({sign, element});
    }
    std::unique_ptr<State> state = traj->takeState(t);
    ItmsResults results = addPropositions(props, state, {true, traj->rank}, traj, t, false);
    if (results.empty()) {
        err << "Error adding continuous events: no valid state found.\n";
        throw RunStopped(RunStopped::eventImpossible,
                         "an event of the continuous side fits no state");
    }
    std::unique_ptr<ItmsRes> const settled = firstOf(results);
    for (auto const& entry : settled->already_changed)
        if (entry.second->evalTrajEl() && !entry.second->atom->getRefTransPre().empty())
            contCommands.push_back(entry.second->atom);
    traj->putState(t, std::move(settled->state));
    contEvents.clear();
}

// The commands of this cycle: those of the scenario's event, if it is one of commands, and those of
// the continuous side, which wait for a later cycle when the event is one of observations. A
// candidate takes an event once: a copy made in the same step carries that it was taken.
std::vector<Atom*> Scheduler::commandsAt(double when, Trajectory* traj) {
    auto const found = scenario.find(when);
    scenarEvent* event = found == scenario.end() ? nullptr : found->second.get();
    if (event != nullptr) {
        event->met = true;
        if (!event->isCommand)
            return {};
    }
    if (event == nullptr || traj->eventTime == when)
        return contCommands;
    traj->eventTime = when;
    std::vector<Atom*> commands = event->atoms;
    commands.insert(commands.end(), contCommands.begin(), contCommands.end());
    return commands;
}

void Scheduler::doCycle(Trajectory* traj, s_runtime* rt, double when) {
    PendingTransitions pending;
    int const before = traj->getCurrentTime();
    simTime = when;
    runtime = rt;
    if (!contEvents.empty()) {
        syncPreviousState(traj);
        addContEvents(traj);
    }
    std::vector<Atom*> commands = commandsAt(when, traj);
    if (!commands.empty()) {
        bool const added = syncPreviousState(traj) == 1;
        for (Atom const* command : commands)
            err << command->getId() << "\n";
        constructNextNominalStateLarge(traj, commands, false, pending);
        if (added)
            takeBackEmptyState(traj);
        contCommands.clear();
    }
    weighSteps(traj, before);
    assert(traj->brokenInvariant() == nullptr && contEvents.empty());
    if (rt != nullptr)
        rt->tStart = traj->getCurrentTime();
}
