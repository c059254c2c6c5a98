// The notation in which the tests of the value objects write their values, and its own tests.
//
// "2.5" is a number; "[1, 2[" an interval whose brackets turn away from an open end; MAX stands for
// DBL_MAX. text() gives every double so that equal texts mean equal bits (but for NaN), so that a
// comparison of texts is exact. The other objets tests declare the two functions again.

#include <gtest/gtest.h>

#include <charconv>
#include <cstdlib>
#include <string>

#include "continuous/objets.h"

namespace objets_test {

s_Objet obj(char const* notation);
std::string text(s_Objet const& o);

namespace {

double parseDouble(char const** at) {
    std::string const rest = *at;
    if (rest.starts_with("MAX") || rest.starts_with("-MAX")) {
        bool const negative = rest.front() == '-';
        *at += negative ? 4 : 3;
        return negative ? -DBL_MAX : DBL_MAX;
    }
    char* end;
    double const value = std::strtod(*at, &end);
    *at = end;
    return value;
}

std::string doubleText(double value) {
    if (value == DBL_MAX || value == -DBL_MAX)
        return value > 0 ? "MAX" : "-MAX";
    char buffer[32];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

}  // namespace

s_Objet obj(char const* notation) {
    char const* at = notation;
    if (*at != '[' && *at != ']')
        return makeReal(parseDouble(&at));
    unsigned char const infClosed = *at++ == '[';
    double const inf = parseDouble(&at);
    at += 2;  // comma and blank
    double const sup = parseDouble(&at);
    return makeRange(inf, sup, infClosed, *at == ']');
}

std::string text(s_Objet const& o) {
    if (o.type == OBJ_REAL)
        return doubleText(o.real);
    if (o.type != OBJ_RANGE)
        return "type " + std::to_string(o.type);
    std::string result = o.rng.infClosed == 1 ? "[" : "]";
    result += doubleText(o.rng.inf) + ", " + doubleText(o.rng.sup);
    return result + (o.rng.supClosed == 1 ? "]" : "[");
}

TEST(ObjetsNotation, ANumberIsRead) {
    s_Objet const o = obj("-2.5");
    EXPECT_EQ(o.type, OBJ_REAL);
    EXPECT_EQ(o.real, -2.5);
}

TEST(ObjetsNotation, AnIntervalIsReadWithItsBrackets) {
    s_Objet const o = obj("[-1, 2.5[");
    EXPECT_EQ(o.type, OBJ_RANGE);
    EXPECT_EQ(o.rng.inf, -1.0);
    EXPECT_EQ(o.rng.sup, 2.5);
    EXPECT_EQ(o.rng.infClosed, 1);
    EXPECT_EQ(o.rng.supClosed, 0);
    EXPECT_EQ(obj("]1, 2]").rng.infClosed, 0);
    EXPECT_EQ(obj("]1, 2]").rng.supClosed, 1);
}

TEST(ObjetsNotation, WhatIsReadIsWrittenTheSame) {
    for (char const* notation : {"0", "-0", "0.1", "1e-300", "MAX", "-MAX", "[1, 2]", "]1, 2[",
                                 "[1, 2[", "]1, 2]", "]-MAX, MAX["})
        EXPECT_EQ(text(obj(notation)), notation);
}

TEST(ObjetsNotation, NeighbouringDoublesAreToldApart) {
    EXPECT_NE(text(makeReal(0.1 + 0.2)), text(makeReal(0.3)));
    EXPECT_NE(text(makeReal(0.0)), text(makeReal(-0.0)));
}

}  // namespace objets_test
