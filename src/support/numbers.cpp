// Defined conversion of doubles to whole numbers.
#include "support/numbers.h"

#include <cmath>
#include <limits>

int truncateToInt(double value) {
    using Limits = std::numeric_limits<int>;
    if (std::isnan(value))
        return 0;
    if (value >= static_cast<double>(Limits::max()))
        return Limits::max();
    if (value <= static_cast<double>(Limits::min()))
        return Limits::min();
    return static_cast<int>(value);
}
