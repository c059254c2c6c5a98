// The instance of one atom at one step of one candidate.
//
// The atom carries the truth of the model at start-up; the element carries its truth here and now.
// A State owns its elements; all pointers but the tables of transitions are borrowed, and the
// consequences are elements of the same state.
//
// Invariants (told broken by brokenInvariant, which debug builds ask after each change):
//   1. label is one of the three of labels.h, or "" for an element made empty;
//   2. lock is one of the five below;
//   3. a transition stands in nextTrans and nextTransNeg under its id.
#pragma once

#include <cassert>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "model/Atom.h"
#include "trajectory/TrajectoryBook.h"

class Clause;
class Transition;

// What conflict resolution may do with an element. Temporary locks last for one search.
enum LockStatus {
    LOCK_TRUE = 0,   // held at "true", temporary
    LOCK_FALSE = 1,  // held at "false", temporary: a sibling of a LOCK_TRUE
    LOCK_FREE = 2,
    LOCK_TRUE_PERM = 3,  // held at "true" for good
    LOCK_FALSE_PERM = 4  // held at "false" for good
};

class TrajEl {
public:
    using Transitions = std::map<int, Transition*>;

    explicit TrajEl(TrajectoryBook& book);
    // A copy without the consequences, which the copied state rebuilds.
    explicit TrajEl(TrajEl const* source);
    // *next* may be null; its null entries are left out.
    TrajEl(TrajectoryBook& book, Atom* atom, Transition* prev, Transitions const* next,
           std::string const& label);
    ~TrajEl();
    TrajEl(TrajEl const&) = delete;
    TrajEl& operator=(TrajEl const&) = delete;

    void setAtom(Atom* newAtom) { atom = newAtom; }
    char const* getId() const {
        assert(atom != nullptr);
        return atom->getId();
    }
    std::string getVarType() const { return atom->getVarType(); }
    StateVar* getStateVar() const { return atom->getStateVar(); }
    Atom* getAtomLink(std::string const& id) const { return atom->getAtomLink(id); }

    std::string const& getLabel() const { return label; }
    void setLabel(std::string const& newLabel) { label = newLabel; }
    bool isLabelled(char const* text) const { return label == text; }
    bool eq(TrajEl const& other) const { return atom == other.atom; }
    bool evalTrajEl() const;

    bool isHeldTrue() const { return lock == LOCK_TRUE || lock == LOCK_TRUE_PERM; }
    bool isHeldFalse() const { return lock == LOCK_FALSE || lock == LOCK_FALSE_PERM; }

    // Records a transition that leaves this element; it replaces any of the same mode variable.
    void addToNextTrans(Transition* transition);
    void addToNextTransNeg(Transition* transition);
    void updateProba(double const& factor) { proba *= factor; }

    // What does not hold of the invariants, or null.
    char const* brokenInvariant() const;

    void showAtom(std::ostream& out, bool const& full) const;
    void showTrajEl(std::ostream& out, bool const& full) const;

    Atom* atom = nullptr;
    int prevTime = 0;                 // shown only
    Transition* prevTrans = nullptr;  // the transition that made this element true here
    int index = -1;                   // the step at which a running transition set this element
    Transitions nextTrans;            // by id, what leaves this element; may hold nulls
    Transitions nextTransNeg;         // the same for the false side
    std::string label;
    Clause* support = nullptr;          // the justification of the label; null for a premise
    std::vector<TrajEl*> consequences;  // elements whose support uses this one
    int propagationNumber = 0;  // above those of the support when that is given; 0 without one
    int lock = LOCK_FREE;
    double proba = 1.0;
    TrajectoryBook& book;
};
