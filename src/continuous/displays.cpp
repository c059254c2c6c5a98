// The rows of the display table.
#include "continuous/displays.h"

#include <cmath>

#include "support/numbers.h"

void tavro_setRTDisplays(int count, s_runtime* rt, double row) {
    int const index = truncateToInt(std::ceil(row));
    if (count == 0 || index < 1 || index > rt->extra.size() / (2 * count))
        return;
    int const start = (index - 1) * 2 * count;
    for (int j = 0; j < count; ++j) {
        rt->extra.set(start + 2 * j, rt->dinfval[static_cast<std::size_t>(j)]);
        rt->extra.set(start + 2 * j + 1, rt->dsupval[static_cast<std::size_t>(j)]);
    }
}

int initDispAll(s_runtime* rt, double rows) {
    constexpr double largest = 2147483647.0;
    double const values = static_cast<double>(rt->display.size()) * rows * 2.0;
    if (!(values < largest))
        return 0;
    if (!rt->display.empty())
        rt->extra.resize(truncateToInt(values));
    return 1;
}
