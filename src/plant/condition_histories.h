// How long an influence must remember its condition.
//
// When a measure misbehaves, the fault isolation walks up its causes, adding up the delays, and
// asks each influence whether it acted as many cycles ago as its effect takes to reach the measure.
// What lies behind the memory of an influence counts as not acting, so that a short one would take
// the influence, and all that is upstream of it, out of the suspects without a word.
//
// The walk ends at measures and at inputs, and passes a variable once. Where delays add up along a
// loop of variables that are not measured, what is answered may be more than any walk asks for; it
// is never less.
#pragma once

#include <vector>

#include "continuous/records.h"

// Per influence, by its slot, how many past values of its condition are asked for: at least 1. No
// influence may be null; those without cause or effect are passed over.
std::vector<int> askedConditionHistories(s_runtime const& rt);

// Makes the influence remember *length* past values, in all of which its condition has held.
void setConditionHistory(s_Influence& influence, int length);
