// Rule `continuity`: what is integrated does not jump when a mode changes.
//
// The classic way. While detecting, a change of mode may have come now or one cycle ago. So the
// candidate's runtime is copied, moved back, jumped and stepped forward, and every variable becomes
// the union of both, and its whole history that union.
//
// What goes wrong. The copy is made from the histories, which hold what the candidate was before
// its validity space was split: a room that switches because it has just reached 10 degrees gets
// the whole range of its parent back, of which only the edge at 10 had led to the switch. So the
// bounds never gain by the one thing that is known for sure at a switch, and grow from each to the
// next. Besides, the copy is moved back one cycle too far, and a history that is filled with one
// value tells nothing of the past to what reads it at a delay, nor to a diagnosis that goes back.
//
// What this does. A variable that carries state (it is integrated, or answers with a lag) and that
// no mapping function assigned is continuous: it keeps the value that the split left it. Only where
// the flow into it depends on the mode, a jump one cycle ago has let it flow otherwise for that one
// cycle; then the copy, which is moved back by exactly one cycle, is first narrowed as the split
// narrowed its source: what flowed in since is taken off the value of now, and only what can have
// led there is stepped forward again, with the inputs and measures of now. The other variables
// become the union as before; inputs are what they are. Histories stay, since the past does.
//
// Why it is sound. The values kept are those of the cycle that has just been computed under the
// mode before; if the change came at its end they are the true ones, and if it came one cycle
// before, then the state at that time plus the flow under the mode before led into this part of the
// split, since otherwise the change would not have been seen here; that is what is inverted.
#pragma once

#include <memory>

#include "continuous/sorn-runt.h"

// Whether the variable's value comes from its value before.
bool carriesState(s_Variable const& variable);
// The runtime one cycle ago, where *rt* is what the split has left of it, before its jump.
std::unique_ptr<s_runtime> copyOfJumpBefore(s_runtime* rt);
// Covers in *rt*, whose mapping functions have been applied, the jump now and the jump one cycle
// ago that *copy*, jumped and stepped forward, stands for.
void coverJumpBefore(s_runtime* rt, s_runtime const* copy);
