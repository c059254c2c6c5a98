// The table of units and their prefixes.
#include "language/units.h"

#include <charconv>
#include <cmath>
#include <iterator>

namespace {

struct KnownUnit {
    char const* name;
    std::array<int, Unit::bases> powers;
    double factor;
    bool takesPrefix;
};

//                                   m  kg  s  A  K mol cd
constexpr KnownUnit knownUnits[] = {
    {"m", {1, 0, 0, 0, 0, 0, 0}, 1.0, true},     {"g", {0, 1, 0, 0, 0, 0, 0}, 1e-3, true},
    {"s", {0, 0, 1, 0, 0, 0, 0}, 1.0, true},     {"A", {0, 0, 0, 1, 0, 0, 0}, 1.0, true},
    {"K", {0, 0, 0, 0, 1, 0, 0}, 1.0, true},     {"mol", {0, 0, 0, 0, 0, 1, 0}, 1.0, true},
    {"cd", {0, 0, 0, 0, 0, 0, 1}, 1.0, false},   {"Hz", {0, 0, -1, 0, 0, 0, 0}, 1.0, true},
    {"N", {1, 1, -2, 0, 0, 0, 0}, 1.0, true},    {"Pa", {-1, 1, -2, 0, 0, 0, 0}, 1.0, true},
    {"bar", {-1, 1, -2, 0, 0, 0, 0}, 1e5, true}, {"J", {2, 1, -2, 0, 0, 0, 0}, 1.0, true},
    {"W", {2, 1, -3, 0, 0, 0, 0}, 1.0, true},    {"C", {0, 0, 1, 1, 0, 0, 0}, 1.0, true},
    {"V", {2, 1, -3, -1, 0, 0, 0}, 1.0, true},   {"ohm", {2, 1, -3, -2, 0, 0, 0}, 1.0, true},
    {"F", {-2, -1, 4, 2, 0, 0, 0}, 1.0, true},   {"H", {2, 1, -2, -2, 0, 0, 0}, 1.0, true},
    {"L", {3, 0, 0, 0, 0, 0, 0}, 1e-3, true},    {"min", {0, 0, 1, 0, 0, 0, 0}, 60.0, false},
    {"h", {0, 0, 1, 0, 0, 0, 0}, 3600.0, false}, {"d", {0, 0, 1, 0, 0, 0, 0}, 86400.0, false},
    {"rad", {0, 0, 0, 0, 0, 0, 0}, 1.0, false},  {"percent", {0, 0, 0, 0, 0, 0, 0}, 0.01, false},
    {"degC", {0, 0, 0, 0, 1, 0, 0}, 1.0, false},
};

struct Prefix {
    char letter;
    double factor;
};

constexpr Prefix prefixes[] = {{'n', 1e-9}, {'u', 1e-6}, {'m', 1e-3}, {'c', 1e-2},
                               {'d', 1e-1}, {'k', 1e3},  {'M', 1e6},  {'G', 1e9}};

KnownUnit const* find(std::string_view name) {
    for (KnownUnit const& unit : knownUnits)
        if (name == unit.name)
            return &unit;
    return nullptr;
}

MaybeUnit named(std::string const& name) {
    if (KnownUnit const* unit = find(name))
        return Unit{unit->powers, unit->factor};
    if (name.size() < 2)
        return std::nullopt;
    KnownUnit const* unit = find(std::string_view(name).substr(1));
    for (Prefix const& prefix : prefixes)
        if (unit != nullptr && unit->takesPrefix && prefix.letter == name.front())
            return Unit{unit->powers, unit->factor * prefix.factor};
    return std::nullopt;
}

Unit raised(Unit unit, int power) {
    for (int& base : unit.powers)
        base *= power;
    unit.factor = std::pow(unit.factor, power);
    return unit;
}

}  // namespace

// Factors are products of a few decimal numbers, worked out in different orders.
bool operator==(Unit const& a, Unit const& b) {
    return sameDimension(a, b) && std::abs(a.factor - b.factor) <= 1e-9 * std::abs(a.factor);
}

MaybeUnit operator*(MaybeUnit const& a, MaybeUnit const& b) {
    if (!a || !b)
        return std::nullopt;
    Unit product = *a;
    for (int i = 0; i < Unit::bases; ++i)
        product.powers[static_cast<std::size_t>(i)] += b->powers[static_cast<std::size_t>(i)];
    product.factor *= b->factor;
    return product;
}

MaybeUnit operator/(MaybeUnit const& a, MaybeUnit const& b) {
    return b ? a * MaybeUnit(raised(*b, -1)) : std::nullopt;
}

bool sameDimension(Unit const& a, Unit const& b) {
    return a.powers == b.powers;
}

Unit seconds() {
    return {{0, 0, 1, 0, 0, 0, 0}, 1.0};
}

std::string textOf(Unit const& unit) {
    for (KnownUnit const& known : knownUnits)
        if (Unit{known.powers, known.factor} == unit && std::string_view(known.name) != "rad")
            return known.name;
    static constexpr char const* names[] = {"m", "kg", "s", "A", "K", "mol", "cd"};
    std::string text;
    for (int i = 0; i < Unit::bases; ++i) {
        int const power = unit.powers[static_cast<std::size_t>(i)];
        if (power == 0)
            continue;
        if (!text.empty())
            text += "*";
        text += names[i];
        if (power != 1) {
            text += "^";
            text += std::to_string(power);
        }
    }
    if (text.empty())
        text.push_back('1');
    if (std::abs(unit.factor - 1.0) <= 1e-9)
        return text;
    char digits[32];
    auto const end =
        std::to_chars(digits, digits + sizeof digits, unit.factor, std::chars_format::general, 6);
    return std::string(digits, end.ptr) + " " + text;
}

MaybeUnit unitOf(std::optional<UnitNode> const& node, Messages& messages) {
    if (!node)
        return std::nullopt;
    MaybeUnit product = Unit{};
    for (UnitNode::Factor const& factor : node->factors) {
        MaybeUnit const unit = named(factor.name.text);
        if (!unit)
            messages.error(factor.name.range, "there is no unit " + factor.name.text,
                           "units are m g s A K mol cd Hz N Pa bar J W C V ohm F H L with their "
                           "prefixes, and min h d rad percent degC");
        product = product * (unit ? MaybeUnit(raised(*unit, factor.power)) : std::nullopt);
    }
    return product;
}
