// Defined conversions of doubles to whole numbers and to text.
#include "support/numbers.h"

#include <algorithm>
#include <charconv>
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

std::string shortText(double value) {
    char text[32];
    auto const end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6).ptr;
    return {text, end};
}

namespace {

std::string blanksBeside(std::string const& text, int width) {
    int const missing = width - static_cast<int>(text.size());
    return std::string(static_cast<std::size_t>(std::max(missing, 0)), ' ');
}

}  // namespace

std::string flushRight(std::string const& text, int width) {
    return blanksBeside(text, width) + text;
}

std::string flushLeft(std::string const& text, int width) {
    return text + blanksBeside(text, width);
}
