// The search for candidate histories. This release holds its locks: what a search, an observation or
// a command fixes in a state, so that conflict resolution leaves it alone.
#pragma once

#include "reasoning/itmsrt.h"

class Diagnoser : public itms {
public:
    // Temporary: a free element is held at true and its siblings at false.
    static void lockTrajEls(TrajEl* element, State* state);
    // Permanent, the same.
    static void lockTrajElsPerm(TrajEl* element, State* state);
    // Permanent, this element alone, at false.
    static void lockTrajElsNegPerm(TrajEl* element, State* state);
    static void lockTrajElsPerm(TrajEl* element, State* state, bool negative);
    // Releases the temporary locks of a state.
    static void unlockState(State* state);
    // Releases those of a whole trajectory, and forgets its failures.
    static void unlockTrajectory(Trajectory* trajectory);
};
