// Slow twins: the operations on value objects against sets of points.
//
// All numbers and all intervals with bounds among five integers and any brackets are enumerated. A
// value stands for its points on a grid of eighths, so that each open unit interval has seven of
// them; its points are checked one by one, or pair by pair. Relations are certain: whatever they
// answer 1 must hold for all points. Where they answer 0 although it does, the exception is named
// in the test. Sums, products and points are exact in doubles; quotients are rounded monotonically.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "continuous/objets.h"

namespace objets_test {

std::string text(s_Objet const& o);

namespace {

constexpr double step = 0.125;

bool has(s_Objet const& o, double x) {
    if (o.type == OBJ_REAL)
        return x == o.real;
    return (o.rng.inf < x && x < o.rng.sup) || (x == o.rng.inf && o.rng.infClosed == 1) ||
           (x == o.rng.sup && o.rng.supClosed == 1);
}

std::vector<double> points(s_Objet const& o) {
    std::vector<double> result;
    for (double x = -3; x <= 3; x += step)
        if (has(o, x))
            result.push_back(x);
    return result;
}

struct Sample {
    s_Objet value;
    std::vector<double> points;
};

// Every number and every interval of non-zero width with integer bounds from -2 to 2.
std::vector<Sample> const& samples() {
    static std::vector<Sample> const all = [] {
        std::vector<Sample> made;
        for (int inf = -2; inf <= 2; ++inf) {
            made.push_back({makeReal(inf), {}});
            for (int sup = inf + 1; sup <= 2; ++sup)
                for (int flags = 0; flags < 4; ++flags)
                    made.push_back({makeRange(inf, sup, flags >> 1, flags & 1), {}});
        }
        for (Sample& sample : made)
            sample.points = points(sample.value);
        return made;
    }();
    return all;
}

void forPairs(std::function<void(Sample const&, Sample const&)> const& check) {
    for (Sample const& a : samples()) {
        for (Sample const& b : samples()) {
            SCOPED_TRACE(text(a.value) + " with " + text(b.value));
            check(a, b);
        }
    }
}

bool forAll(Sample const& a, Sample const& b, std::function<bool(double, double)> const& holds) {
    return std::all_of(a.points.begin(), a.points.end(), [&](double p) {
        return std::all_of(b.points.begin(), b.points.end(), [&](double q) { return holds(p, q); });
    });
}

bool isSubset(s_Objet const& a, s_Objet const& b) {
    std::vector<double> const inside = points(a);
    return std::all_of(inside.begin(), inside.end(), [&](double p) { return has(b, p); });
}

bool isInterval(s_Objet const& o) {
    return o.type == OBJ_RANGE;
}

// The bounds of a set of results, to compare with those of the object computed.
struct Hull {
    double inf = DBL_MAX, sup = -DBL_MAX;
    void add(double x) {
        inf = std::min(inf, x);
        sup = std::max(sup, x);
    }
};

// The exact bounds of op over the closed operands. Each op here is monotone in each argument, or
// the divisor keeps its sign, so the bounds are reached at points of the grid.
Hull hullOf(Sample const& a, Sample const& b, std::function<double(double, double)> const& op) {
    Hull hull;
    for (double p = sn_infOf(a.value); p <= sn_supOf(a.value); p += step)
        for (double q = sn_infOf(b.value); q <= sn_supOf(b.value); q += step)
            hull.add(op(p, q));
    return hull;
}

// Bounds of the result, its kind, and its flags: those of a, or those of b when a is a number.
void expectResult(s_Objet const& result, Hull const& hull, Sample const& a, Sample const& b) {
    EXPECT_EQ(sn_infOf(result), hull.inf);
    EXPECT_EQ(sn_supOf(result), hull.sup);
    EXPECT_EQ(isInterval(result), isInterval(a.value) || isInterval(b.value));
    if (!isInterval(result))
        return;
    range const& flags = isInterval(a.value) ? a.value.rng : b.value.rng;
    EXPECT_EQ(result.rng.infClosed, flags.infClosed);
    EXPECT_EQ(result.rng.supClosed, flags.supClosed);
}

TEST(ObjetsTwin, Sum) {
    forPairs([](Sample const& a, Sample const& b) {
        s_Objet result = a.value;
        sn_addObjet(&result, &b.value);
        expectResult(result, hullOf(a, b, std::plus<>()), a, b);
    });
}

// Exception: a number minus an interval has its bounds exchanged.
TEST(ObjetsTwin, Difference) {
    forPairs([](Sample const& a, Sample const& b) {
        s_Objet result = a.value;
        sn_subObjet(&result, &b.value);
        Hull hull = hullOf(a, b, std::minus<>());
        if (!isInterval(a.value))
            std::swap(hull.inf, hull.sup);
        expectResult(result, hull, a, b);
    });
}

// Exception: an interval with the number 0 for the other factor gives the number 0.
TEST(ObjetsTwin, Product) {
    forPairs([](Sample const& a, Sample const& b) {
        s_Objet result = a.value;
        sn_mulObjet(&result, &b.value);
        bool const byZero = (isInterval(a.value) && text(b.value) == "0") ||
                            (text(a.value) == "0" && isInterval(b.value));
        if (byZero)
            EXPECT_EQ(text(result), "0");
        else
            expectResult(result, hullOf(a, b, std::multiplies<>()), a, b);
    });
}

TEST(ObjetsTwin, Quotient) {
    forPairs([](Sample const& a, Sample const& b) {
        s_Objet result = a.value;
        bool const zeroInOrAtB = sn_infOf(b.value) <= 0 && 0 <= sn_supOf(b.value);
        ASSERT_EQ(sn_divObjet(&result, &b.value), zeroInOrAtB ? 0 : 1);
        if (zeroInOrAtB)
            EXPECT_EQ(text(result), text(a.value));
        else
            expectResult(result, hullOf(a, b, std::divides<>()), a, b);
    });
}

// Exception: an interval that ends at 0 has a sign even when 0 belongs to it.
TEST(ObjetsTwin, Sign) {
    for (Sample const& a : samples()) {
        auto const all = [&](auto holds) {
            return std::all_of(a.points.begin(), a.points.end(), holds);
        };
        bool const exempt = isInterval(a.value);
        bool const positive = all([&](double p) { return p > 0 || (exempt && p == 0); });
        bool const negative = all([&](double p) { return p < 0 || (exempt && p == 0); });
        EXPECT_EQ(sn_sgnObjet(&a.value), positive - negative) << text(a.value);
    }
}

// Equality of intervals is that of the sets, not that of all their points.
TEST(ObjetsTwin, Equal) {
    forPairs([](Sample const& a, Sample const& b) {
        EXPECT_EQ(sn_eqObjet(&a.value, &b.value), a.points == b.points);
    });
}

// Exceptions: overlapping intervals with different flags differ; values that touch at an open end
// do not.
TEST(ObjetsTwin, Different) {
    forPairs([](Sample const& a, Sample const& b) {
        bool expected = forAll(a, b, std::not_equal_to<>());
        if (sn_supOf(a.value) == sn_infOf(b.value) || sn_infOf(a.value) == sn_supOf(b.value))
            expected = false;
        if (isInterval(a.value) && isInterval(b.value))
            expected = expected || a.value.rng.infClosed != b.value.rng.infClosed ||
                       a.value.rng.supClosed != b.value.rng.supClosed;
        EXPECT_EQ(sn_diffObjet(&a.value, &b.value), expected);
    });
}

// Exception: an interval that touches the other value at an open end is not below it.
TEST(ObjetsTwin, Less) {
    forPairs([](Sample const& a, Sample const& b) {
        bool const certain = forAll(a, b, std::less<>());
        bool const touching = sn_supOf(a.value) == sn_infOf(b.value);
        EXPECT_EQ(sn_ltObjet(&a.value, &b.value), certain && !touching);
    });
}

// Exceptions: values that touch at an open end of b, and an interval with an open end at a number.
TEST(ObjetsTwin, GreaterOrEqual) {
    forPairs([](Sample const& a, Sample const& b) {
        bool const certain = forAll(a, b, std::greater_equal<>());
        bool const touching = sn_infOf(a.value) == sn_supOf(b.value);
        bool const openThere = isInterval(b.value)
                                   ? b.value.rng.supClosed == 0
                                   : isInterval(a.value) && a.value.rng.infClosed == 0;
        EXPECT_EQ(sn_geObjet(&a.value, &b.value), certain && !(touching && openThere));
    });
}

// Exceptions: nothing is inside a number, and no interval inside one with the same bounds.
TEST(ObjetsTwin, Inside) {
    forPairs([](Sample const& a, Sample const& b) {
        bool const sameBounds =
            sn_infOf(a.value) == sn_infOf(b.value) && sn_supOf(a.value) == sn_supOf(b.value);
        bool const expected = isSubset(a.value, b.value) && isInterval(b.value) && !sameBounds;
        EXPECT_EQ(sn_inObjet(&a.value, &b.value), expected);
    });
}

// Exception: the result keeps the flags of a where its bound comes from b, so it may hold a bound
// that is outside b. Seen without its bounds it is exact.
TEST(ObjetsTwin, Intersection) {
    forPairs([](Sample const& a, Sample const& b) {
        std::vector<double> common;
        std::copy_if(a.points.begin(), a.points.end(), std::back_inserter(common),
                     [&](double p) { return has(b.value, p); });
        s_Objet result = a.value;
        ASSERT_EQ(sn_interObjet(&result, &b.value), common.empty() ? 0 : 1);
        if (common.empty())
            return;
        EXPECT_EQ(isInterval(result), common.size() > 1);
        auto const inner = [&](double p) {
            return !isInterval(result) || (sn_infOf(result) < p && p < sn_supOf(result));
        };
        for (double p = -3; p <= 3; p += step)
            EXPECT_TRUE(has(result, p) == (has(a.value, p) && has(b.value, p)) || !inner(p)) << p;
        EXPECT_LE(std::abs(sn_infOf(result) - common.front()), step);
        EXPECT_LE(std::abs(sn_supOf(result) - common.back()), step);
    });
}

// Exception: a number on the open sup of an interval collapses their union. Flags are left out: a
// bound that comes from b takes the flag of a.
TEST(ObjetsTwin, Union) {
    forPairs([](Sample const& a, Sample const& b) {
        s_Objet result = a.value;
        sn_uniObjet(&result, &b.value);
        bool const collapse = !isInterval(a.value) && isInterval(b.value) &&
                              a.value.real == b.value.rng.sup && b.value.rng.supClosed == 0;
        double const inf = std::min(sn_infOf(a.value), sn_infOf(b.value));
        EXPECT_EQ(sn_infOf(result), collapse ? a.value.real : inf);
        EXPECT_EQ(sn_supOf(result), std::max(sn_supOf(a.value), sn_supOf(b.value)));
    });
}

// The pieces hold all points of b outside a, but for end points of a, as the pieces are open.
// Exceptions, without pieces: a not within the bounds of b or equal to them, a number strictly
// inside or on an open end, and flags that differ at a shared bound.
TEST(ObjetsTwin, Remainder) {
    forPairs([](Sample const& a, Sample const& b) {
        SpacePieces const pieces = sn_inSpObjet(&a.value, &b.value);
        auto const inPieces = [&](double p) {
            return (pieces.first && has(*pieces.first, p)) ||
                   (pieces.second && has(*pieces.second, p));
        };
        if (!pieces.any)
            return;
        for (double p = -3; p <= 3; p += step) {
            bool const isEnd = p == sn_infOf(a.value) || p == sn_supOf(a.value) ||
                               p == b.value.rng.inf || p == b.value.rng.sup;
            if (!isEnd) {
                EXPECT_EQ(inPieces(p), has(b.value, p) && !has(a.value, p)) << p;
            }
        }
    });
}

TEST(ObjetsTwin, RemainderExists) {
    forPairs([](Sample const& a, Sample const& b) {
        bool expected = false;
        if (isInterval(b.value)) {
            range const& r = b.value.rng;
            double const inf = sn_infOf(a.value), sup = sn_supOf(a.value);
            bool const within = r.inf <= inf && sup <= r.sup && !(r.inf == inf && r.sup == sup);
            bool const number = !isInterval(a.value);
            int const infFlag = number ? 1 : a.value.rng.infClosed;
            int const supFlag = number ? 1 : a.value.rng.supClosed;
            bool const flagsAgree = (inf != r.inf || r.infClosed == infFlag) &&
                                    (sup != r.sup || r.supClosed == supFlag);
            bool const strictNumber = number && r.inf < inf && sup < r.sup;
            expected = within && flagsAgree && !strictNumber;
        }
        EXPECT_EQ(sn_inSpObjet(&a.value, &b.value).any, expected);
    });
}

}  // namespace
}  // namespace objets_test
