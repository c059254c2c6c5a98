// What the tests of remembered flags share. A number keeps the flags of the interval that stood in
// its place before; they show again only when the place becomes an interval and nothing else tells
// its flags.
#pragma once

#include <string>
#include <utility>

#include "dynamic_fixture.h"

namespace flags_test {

using dynamic_test::Plant;
using objets_test::obj;
using objets_test::text;

// Makes *o* a number that remembers the flags of *before*, an interval.
inline void becomeNumberAfter(s_Objet* o, char const* before, char const* number) {
    s_Objet const interval = obj(before), value = obj(number);
    sn_putObjet(&interval, o);
    sn_putObjet(&value, o);
}

// The brackets that a number remembers, as "[]", "[[", "]]" or "][".
inline std::string remembered(s_Objet const& number) {
    std::string const inf = number.rng.infClosed == 1 ? "[" : "]";
    return inf + (number.rng.supClosed == 1 ? "]" : "[");
}

// What *a* becomes when it grows to *number*.
inline std::string grownTo(s_Objet* a, char const* number) {
    s_Objet const value = obj(number);
    sn_uniObjet(a, &value);
    return text(*a);
}

}  // namespace flags_test
