// The intervals in which the conditions on a variable hold, as far as they are known before a run.
#pragma once

#include <optional>
#include <vector>

#include "continuous/records.h"

// Where a condition holds: an interval, or nowhere.
struct Space {
    bool empty = false;
    range where{};
};

// What *expr* is worth when it is made of constants alone; nothing otherwise.
std::optional<s_Objet> constantValue(s_Expr const& expr);

// Where *condition* holds, when it compares *variable* alone with constants.
std::optional<Space> spaceOf(s_Condition const& condition, s_Variable const* variable);

Space intersection(Space const& a, Space const& b);

// The parts of *domain* that no space covers, from below. At the ends of the scale, brackets mean
// nothing.
std::vector<range> gapsBetween(std::vector<Space> spaces, range const& domain);
