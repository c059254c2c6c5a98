// The contractor of one cycle: the relations that hold in it, over the values that they read.
//
// A box is made after a cycle has computed `new_` of every variable and before these move to `old`.
// It holds copies: what it finds about the past is worth something only to the present, so nothing
// but `new_` is written back (see narrow.cpp for the reason).
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "continuous/outward.h"
#include "continuous/records.h"

// One value of one variable: of this cycle (age 0), the one before (age 1), and so on.
struct BoxSlot {
    s_Variable* variable = nullptr;
    int age = 0;
    bool fixed = false;     // given, or not one value alone: read and never narrowed
    bool observed = false;  // `value` lies within a measure as well
    Outward value{};        // what is known of it
    Outward predicted{};    // what its causes alone tell; of an observed slot only
};

// One cause of an effect: coefficient times slot. An open one may act or not.
struct BoxTerm {
    std::size_t slot = 0;
    Outward coefficient;
    bool open = false;
};

// effect = sum of terms; with a mix a, effect = a previous + (1 - a) (sum of terms).
struct BoxRelation {
    std::size_t effect = 0;
    std::vector<BoxTerm> terms{};
    std::optional<Outward> mix;
    std::size_t previous = 0;  // a slot; meaningless without a mix
};

struct Box {
    std::vector<BoxSlot> slots;
    std::vector<BoxRelation> relations;  // in the order of evaluation
};

// The box of this cycle, with the measures that have entered. A measure takes part when it is
// trusted, meets the prediction, and is not that of *without*.
Box makeBox(s_runtime* rt, s_Variable const* without = nullptr);

// Narrows every slot by every relation, back and forth, until nothing moves any more or the rounds
// are used up. False when the relations contradict each other; the box then means nothing.
bool contract(Box& box);
