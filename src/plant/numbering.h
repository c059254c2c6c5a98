// The numbers that a plant holds, worked out from the references that it holds: what the builder
// writes, and what the check compares with.
#pragma once

#include <algorithm>
#include <vector>

#include "continuous/records.h"

// Where *record* stands, or -1.
template <typename Record>
int positionIn(std::vector<Record*> const& list, Record const* record) {
    auto const found = std::find(list.begin(), list.end(), record);
    return found == list.end() ? -1 : static_cast<int>(found - list.begin());
}

// What a node with these causes is worked out as: a coupling is static but for its gain and delay.
influType kindOfCauses(std::vector<s_Influence*> const& causes);

// The longest delay at which some influence reads *variable*, in cycles.
int longestDelayFrom(s_runtime const& rt, s_Variable const* variable);

// *condition* is a comparison of *variable*, or a conjunction with one. Others bound nothing.
bool bounds(s_Condition const* condition, s_Variable const* variable);
// The numbered conditions with an atom that bound *variable*.
std::vector<int> conditionsBounding(s_runtime const& rt, s_Variable const* variable);

// The entries of aC on *gvar*, behind their count; nothing when there are none.
std::vector<int> constraintsOn(s_runtime const& rt, s_GVar const* gvar);
// The entries of gC that have *gvar* on their right side, behind their count; nothing without any.
std::vector<int> constraintsReading(s_runtime const& rt, s_GVar const* gvar);
