// The window of states: adding, replacing, folding and searching.
#include "trajectory/Trajectoryrt.h"

#include <algorithm>
#include <cassert>

#include "model/Comprt.h"
#include "model/Transitionrt.h"
#include "model/labels.h"

Trajectory::Trajectory(TrajectoryBook& book) : book(book) {
    ++book.traj_created;
}

// Both take over what Trajectory() has made: an object that exists is destroyed when what follows
// fails.
Trajectory::Trajectory(TrajectoryBook& book, string_map<Atom*> const* atoms) : Trajectory(book) {
    putState(0, std::make_unique<State>(book, atoms));
    setTimeCorr(0.0);
    assert(brokenInvariant() == nullptr);
}

Trajectory::Trajectory(Trajectory const* source, int upTo) : Trajectory(source->book) {
    currentTime = stepCount = upTo - 1;
    firstTime = source->firstTime;
    rank = source->rank;
    proba = source->proba;
    transByTime = source->transByTime;
    settled = source->settled;
    timeCorr = source->timeCorr;
    dated = source->dated;
    stepDates = source->stepDates;
    unknown = source->unknown;
    eventTime = source->eventTime;
    represented = source->represented;
    failureSteps = source->failureSteps;
    for (auto const& [t, state] : source->states)
        if (t < upTo && state != nullptr)
            putState(t, std::make_unique<State>(state, true));
}

Trajectory::~Trajectory() {
    ++book.traj_del;
    for (auto const& entry : states)
        delete entry.second;
}

void Trajectory::advanceTo(int t) {
    if (t != currentTime + 1)
        return;
    ++currentTime;
    ++stepCount;
}

// The reduction comes before the rank here and after it in addCopyState.
std::unique_ptr<State> Trajectory::addState(int t, std::unique_ptr<State> state) {
    assert(state != nullptr && t >= firstTime);
    advanceTo(t);
    std::unique_ptr<State> before = takeState(t);
    State* added = state.get();
    putState(t, std::move(state));
    if (static_cast<int>(states.size()) > book.twd)
        reduceTrajectory();
    rank += getStateRank(added);
    if (added->unknown)
        setUnknown();
    assert(brokenInvariant() == nullptr);
    return before;
}

void Trajectory::addCopyState(int t, State const* source, bool full) {
    assert(source != nullptr && t >= firstTime);
    auto copy = std::make_unique<State>(source, full);
    bool const reachedUnknown = source->unknown;
    takeState(t);  // may be the source itself
    rank += getStateRank(copy.get());
    putState(t, std::move(copy));
    advanceTo(t);
    if (reachedUnknown)
        setUnknown();
    if (static_cast<int>(states.size()) > book.twd)
        reduceTrajectory();
    assert(brokenInvariant() == nullptr);
}

void Trajectory::removeLastState() {
    assert(getLastState() != nullptr);
    takeState(currentTime);
    --currentTime;
}

std::unique_ptr<State> Trajectory::takeState(int t) {
    std::unique_ptr<State> taken(getState(t));
    states.erase(t);
    return taken;
}

void Trajectory::putState(int t, std::unique_ptr<State> state) {
    assert(state != nullptr && getState(t) == nullptr);
    State*& place = states[t];  // made before the state is given away
    place = state.release();
}

void Trajectory::reduceTrajectory() {
    int const oldest = currentTime - book.twd;
    State* next = getState(oldest + 1);
    assert(oldest == firstTime && getState(oldest) != nullptr && next != nullptr);
    for (auto const& [name, comp] : getState(oldest)->comps)
        if (next->comps.count(name) == 0)
            addComp(comp, next, oldest + 1, true, false);
    next->lockStatePerm();
    ++firstTime;
    std::unique_ptr<State> const folded = takeState(oldest);
    assert(holdsAll(folded->comps));
    stepDates.erase(oldest);
    if (!timeCorr.empty())
        timeCorr.erase(timeCorr.begin());
}

State* Trajectory::getState(int t) const {
    auto const found = states.find(t);
    return found == states.end() ? nullptr : found->second;
}

State* Trajectory::getLastNonEmptyState() const {
    for (int t = sizeStart(); t >= 0; --t)
        if (State* state = getState(t); state != nullptr && !state->elts.empty())
            return state;
    return nullptr;
}

TrajEl* Trajectory::searchBack(char const* id, int start, int* found) const {
    for (int t = start; t >= firstTime; --t) {
        State const* state = getState(t);
        TrajEl* element = state != nullptr ? state->getElt(id) : nullptr;
        if (element == nullptr)
            continue;
        if (found != nullptr)
            *found = t;
        return element;
    }
    book.out << "Error: atom not found... " << id << "\n";
    return nullptr;
}

TrajEl* Trajectory::getElt(int t, char const* id) const {
    State const* state = getState(t);
    return state != nullptr ? state->getElt(id) : nullptr;
}

TrajEl* Trajectory::getElt(char const* id) const {
    return searchBack(id, sizeStart(), nullptr);
}

TrajEl* Trajectory::getElt(char const* id, int& found) const {
    return searchBack(id, sizeStart(), &found);
}

TrajEl* Trajectory::getElt(char const* id, int const& offset) const {
    return searchBack(id, sizeStart() + offset, nullptr);
}

TrajEl* Trajectory::getElt(char const* id, int t, int offset) const {
    return searchBack(id, t + offset, nullptr);
}

TrajEl* Trajectory::getElt(char const* id, int t, int offset, int& found) const {
    return searchBack(id, t + offset, &found);
}

void Trajectory::insertElt(TrajEl* element, int t, bool recurse) {
    State* state = getState(t);
    assert(state != nullptr);
    state->addElt(element, false);
    // Required: the source, not the copy, takes the idle transition.
    if (element->getVarType() == typeMode && element->evalTrajEl())
        element->prevTrans = element->atom->idleTrans;
    if (!recurse)
        return;
    for (TrajEl* consequence : element->consequences)
        if (state->getElt(consequence->getId()) == nullptr)
            insertElt(consequence, t, false);
}

int Trajectory::getNext(StateVar const* variable, int t) const {
    if (variable == nullptr || variable->getAtomLinks().empty())
        return 0;  // of a transition without a mode
    char const* id = variable->getAtomLinks().front()->getId();
    for (int u = t + 1; u <= currentTime; ++u)
        if (getElt(u, id) != nullptr)
            return u;
    return 0;
}

namespace {

// A mode that holds goes on by its idle transition, if the model has one.
void continueIdle(TrajEl* source, TrajEl* copy) {
    if (source->getVarType() != typeMode || !source->evalTrajEl())
        return;
    Transition* idle = source->atom->idleTrans;
    copy->prevTrans = idle;
    if (idle != nullptr)
        source->addToNextTrans(idle);
}

// Support links inside the component carry over to the copies. The state may hold those of a whole
// plant, so it is the component that is walked.
void carryConsequences(State* state, string_map<TrajEl*> const& sources) {
    for (auto const& [id, source] : sources) {
        TrajEl* element = state->getElt(id);
        if (element == nullptr)
            continue;
        for (TrajEl const* consequence : source->consequences)
            if (sources.count(consequence->getId()) != 0)
                element->consequences.push_back(state->getElt(consequence->getId()));
    }
}

}  // namespace

void Trajectory::addComp(Comp* comp, State* state, int t, bool idle, bool keepLocks) {
    assert(comp != nullptr && state != nullptr);
    book.out << "[addComp] --> timestep : " << t << " -- " << comp->getName()
             << (keepLocks ? " (locked)" : "") << "\n";
    string_map<TrajEl*> found;
    for (auto const& entry : comp->atoms) {
        TrajEl* source = getElt(entry.first, t, -1);
        if (source == nullptr)
            continue;
        found[entry.first] = source;
        bool const keep = keepLocks && source->getVarType() == typeObservable;
        TrajEl* copy = state->addElt(source, keep);
        copy->prevTrans = nullptr;
        if (idle)
            continueIdle(source, copy);
    }
    carryConsequences(state, found);
    state->comps[comp->getName()] = comp;
    state->prevTransCount += comp->compSize;
    assert(state->brokenInvariant() == nullptr);
}

void Trajectory::removeComp(Comp* comp, int t) {
    State* state = getState(t);
    assert(state != nullptr);
    for (auto const& entry : comp->atoms)
        state->removeElt(entry.second->getId());
    state->comps.erase(comp->getName());
    state->prevTransCount -= comp->compSize;
}

double Trajectory::getStateRank(State const* state) const {
    assert(state != nullptr);
    double rankOfState = 0.0;
    for (auto const& entry : state->elts)
        if (entry.second != nullptr && entry.second->prevTrans != nullptr &&
            entry.second->prevTrans->type == transFail)
            rankOfState += 1.0;
    return rankOfState;
}

bool Trajectory::holdsUnknown() const {
    return std::any_of(states.begin(), states.end(), [](auto const& entry) {
        return entry.second != nullptr && entry.second->unknown;
    });
}

char const* Trajectory::brokenInvariant() const {
    for (int t = firstTime; t <= currentTime; ++t)
        if (getState(t) == nullptr)
            return "a step of the window has no state";
    for (auto const& entry : states)
        if (entry.first < firstTime)
            return "a state stands before the window";
    if (static_cast<int>(states.size()) > book.twd)
        return "the window holds more states than it may";
    return nullptr;
}

bool Trajectory::holdsAll(string_map<Comp*> const& comps) const {
    return std::all_of(comps.begin(), comps.end(), [this](auto const& wanted) {
        return wanted.second == nullptr ||
               std::any_of(states.begin(), states.end(), [&wanted](auto const& entry) {
                   return entry.second != nullptr && entry.second->comps.count(wanted.first) != 0;
               });
    });
}
