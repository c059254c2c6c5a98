// The continuous end of the bridge to the discrete side: what each half leaves for the other.
//
// All of it works on the conditions and the four bridge members of a runtime alone.
#pragma once

#include "continuous/records.h"

// Condition *c* entered the validity space: an event on its atom. Nothing happens when the atom has
// an event already, under either sign; otherwise c->val becomes *sign*. With a null atom there is
// no one to tell, here and below: c->val alone changes.
void addBridgeEvent(s_Condition* c, Atom* atom, bool sign, s_runtime* rt);
// Condition *c* left the space: its atom's event, if there is one, goes, and c->val becomes 0.
void removeBridgeEvent(s_Condition* c, Atom const* atom, s_runtime* rt);

// A transition fired on the discrete side.
void addBridgeTrans(Transition* transition, s_runtime* rt);
// The discrete side settled an atom. Duplicates stay.
void addBridgeCond(Atom* atom, bool sign, s_runtime* rt);

// Sets the value of a numbered condition, and of every atom condition of the runtime on the same
// atom: influences conditioned on a mode through an operand of their own take their truth here.
void setRTCondVal(s_runtime* rt, int index, bool value);

// A continuous conflict blames the atoms of a condition, if it has one: adds its atom sets to the
// runtime's bridgeConflicts, unless the condition stands in *existing*, where it is entered.
void addBridgeConflict(s_runtime* rt, s_Condition const* condition,
                       std::vector<s_Condition const*>& existing);
