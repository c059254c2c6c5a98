// What a candidate knows at one time step: its elements, their probabilities, its observations.
//
// A state holds elements only for the components that it was given; for the others the truth stands
// in an earlier state of the trajectory. It owns its elements; one that another of the same id
// replaced is kept until the state goes, since supports may still point at it.
//
// Invariants (told broken by brokenInvariant, which debug builds ask after each change; where one
// element alone has changed they ask brokenElement):
//   1. every element stands under the id of its atom, and its own invariants hold;
//   2. a consequence of an element is an element of this state, or one that another replaced;
//   3. every component of `comps` stands under its name.
#pragma once

#include <cassert>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/hash_map.h"
#include "trajectory/TrajElrt.h"

class Comp;
class StateFormula;

class State {
public:
    using Elements = string_map<TrajEl*>;
    // Weight of each transition of the state's components, by transition id. Looked up and never
    // walked for an order, so these tables need not be hash tables: most states have empty ones.
    using PostProbs = std::map<int, double>;
    using AtomPostProbs = std::map<std::string, std::shared_ptr<PostProbs>>;
    // Required: ordered by >=, so that equal keys stand in front of one another.
    using SortedPostProbs = std::multimap<double, int, std::greater_equal<double>>;

    explicit State(TrajectoryBook& book);
    // The initial state, from the atoms' own labels and supports.
    State(TrajectoryBook& book, string_map<Atom*> const* atoms);
    // A copy: with *full* all of it, and locked whatever the source holds; without, only labels and
    // supports, with no locks and no transitions.
    State(State const* source, bool full);
    ~State();
    State(State const&) = delete;
    State& operator=(State const&) = delete;

    // The element, or null; enters nothing.
    TrajEl* getElt(char const* id) const;
    // Enters a copy of *element* and returns it; without *keep* the copy is free and has no
    // previous transition.
    TrajEl* addElt(TrajEl const* element, bool const& keep);
    // Destroys the element of that id, if there is one.
    void removeElt(char const* id);
    void setPrevTrans(char const* id, Transition* transition);
    void setPrevTrans(TrajEl* element, Transition* transition) {
        assert(element == getElt(element->getId()));
        element->prevTrans = transition;
    }
    // Fixes what is true and free, for good, and the siblings at false.
    void lockStatePerm();
    // 0.0 when the transition has no entry; enters nothing.
    double getTransitionPostProb(Transition const* transition) const;
    // Truth of this level of *formula* on the labels of *state*. The atoms must have elements.
    bool evalStateFormula(StateFormula const* formula, State const* state) const;

    // Products over the transitions into this state; 1.0 when there is none. The first stores its
    // result in prevTransProb.
    void computePrevTransProb();
    double computePrevTransGuard() const;
    // Product of the guard probabilities of the transitions that leave, each counted once.
    double computeNextTransGuard() const;

    void setUnknown() { unknown = true; }
    // Destroys every element.
    void clear();
    // What does not hold of the invariants, or null.
    char const* brokenInvariant() const;

    void showState(std::ostream& out) const;
    void showFullState(std::ostream& out) const;

    Elements elts;
    double failCount = 0.0;      // failures added in this state
    double cover = 0.0;          // how much of the choices that can lead here has been taken
    double proba = 0.0;          // of the trajectory up to this state
    double prevTransProb = 0.0;  // product over the transitions into this state
    double obsProb = 1.0;        // of this state's observations
    int prevTransCount = 0;      // elements with a prevTrans at construction from atoms
    PostProbs postProbs;
    SortedPostProbs sortedPostProbs;
    AtomPostProbs atomPostProbs;  // what the entropy computed, by atom id
    string_map<Comp*> comps;      // components whose elements this state holds
    bool locked = false;
    bool observed = false;
    bool unknown = false;  // reached through an unknown mode
    std::vector<Atom*> observations;

    TrajectoryBook& book;

private:
    void copyHistory(State const& source);
    void copyElements(State const& source, bool full);
    char const* brokenElement(char const* id, TrajEl const* element) const;
    bool owns(TrajEl const* element) const;
    void enter(char const* id, std::unique_ptr<TrajEl> element);

    std::vector<std::unique_ptr<TrajEl>> replaced;
};
