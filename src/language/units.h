// Units of measurement, as products of powers of the base units with a factor.
//
// They are compared and multiplied, never converted: a plant may be in centimetres and minutes as
// long as it is so throughout.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "language/messages.h"
#include "language/syntax.h"

// What is written for people stays with the unit.
struct Unit {
    static constexpr int bases = 7;  // m, kg, s, A, K, mol, cd

    std::array<int, bases> powers{};
    double factor = 1.0;  // in base units

    friend bool operator==(Unit const& a, Unit const& b);
};

// Unknown, where nothing was written.
using MaybeUnit = std::optional<Unit>;

MaybeUnit operator*(MaybeUnit const& a, MaybeUnit const& b);
MaybeUnit operator/(MaybeUnit const& a, MaybeUnit const& b);

bool sameDimension(Unit const& a, Unit const& b);
Unit seconds();
// "cm^2", from base units where it has no name of its own.
std::string textOf(Unit const& unit);

// What is written; a name that is no unit is told, and the unit is unknown then.
MaybeUnit unitOf(std::optional<UnitNode> const& node, Messages& messages);
