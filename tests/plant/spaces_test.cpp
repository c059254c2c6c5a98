// Intervals of conditions: what constants are worth, and what a set of intervals leaves out.
#include "plant/spaces.h"
#include "continuous/engine.h"

#include <gtest/gtest.h>

#include <cfloat>

#include "continuous/model_parts.h"
#include "continuous/sorn-runt.h"

namespace {

using Bounds = std::vector<std::string>;

std::string textOf(range const& r) {
    return (r.infClosed == 1 ? "[" : "]") + std::to_string(static_cast<int>(r.inf)) + " " +
           std::to_string(static_cast<int>(r.sup)) + (r.supClosed == 1 ? "]" : "[");
}

Bounds gaps(std::vector<Space> spaces, range const& domain) {
    Bounds texts;
    for (range const& gap : gapsBetween(std::move(spaces), domain))
        texts.push_back(textOf(gap));
    return texts;
}

Space within(double inf, double sup, unsigned char infClosed, unsigned char supClosed) {
    return {false, {inf, sup, infClosed, supClosed}};
}

constexpr range zeroToTen = {0.0, 10.0, 1, 1};

TEST(Gaps, NothingLeavesTheWholeDomain) {
    EXPECT_EQ(gaps({}, zeroToTen), (Bounds{"[0 10]"}));
    EXPECT_EQ(gaps({}, {0.0, 10.0, 0, 0}), (Bounds{"]0 10["}));
    EXPECT_EQ(gaps({{true, {0.0, 10.0, 1, 1}}}, zeroToTen), (Bounds{"[0 10]"})) << "an empty space";
}

TEST(Gaps, BracketsDecideAboutPoints) {
    EXPECT_EQ(gaps({within(0, 5, 1, 0), within(5, 10, 1, 1)}, zeroToTen), Bounds{});
    EXPECT_EQ(gaps({within(0, 5, 1, 1), within(5, 10, 0, 1)}, zeroToTen), Bounds{});
    EXPECT_EQ(gaps({within(0, 5, 1, 0), within(5, 10, 0, 1)}, zeroToTen), (Bounds{"[5 5]"}));
    EXPECT_EQ(gaps({within(0, 10, 0, 0)}, zeroToTen), (Bounds{"[0 0]", "[10 10]"}));
}

TEST(Gaps, InAnyOrderAndOneWithinTheOther) {
    EXPECT_EQ(gaps({within(6, 10, 1, 1), within(0, 2, 1, 1)}, zeroToTen), (Bounds{"]2 6["}));
    EXPECT_EQ(gaps({within(0, 8, 1, 0), within(2, 3, 1, 1)}, zeroToTen), (Bounds{"[8 10]"}));
}

TEST(Gaps, OutsideTheDomainNothingIsMissing) {
    EXPECT_EQ(gaps({within(-5, 4, 1, 1), within(4, 20, 1, 1)}, zeroToTen), Bounds{});
    EXPECT_EQ(gaps({within(20, 30, 1, 1)}, zeroToTen), (Bounds{"[0 10]"}));
}

// All intervals with bounds 0 to 3 against every half point from 0 to 3.
TEST(Gaps, BesideASearchPointByPoint) {
    auto const holds = [](range const& r, double x) {
        return (x > r.inf || (x == r.inf && r.infClosed == 1)) &&
               (x < r.sup || (x == r.sup && r.supClosed == 1));
    };
    std::vector<Space> all;
    for (int inf = 0; inf <= 3; ++inf)
        for (int sup = inf; sup <= 3; ++sup)
            for (int flags = 0; flags < 4; ++flags) {
                Space const space = within(inf, sup, flags & 1, flags >> 1);
                if (inf < sup || flags == 3)
                    all.push_back(space);
            }
    for (Space const& a : all)
        for (Space const& b : all) {
            auto const missing = gapsBetween({a, b}, {0.0, 3.0, 1, 1});
            Space const common = intersection(a, b);
            for (double x = 0.0; x <= 3.0; x += 0.5) {
                bool const inA = holds(a.where, x), inB = holds(b.where, x);
                int count = 0;
                for (range const& gap : missing)
                    count += holds(gap, x);
                EXPECT_EQ(count, inA || inB ? 0 : 1) << textOf(a.where) << textOf(b.where) << x;
                EXPECT_EQ(!common.empty && holds(common.where, x), inA && inB)
                    << textOf(a.where) << textOf(b.where) << x;
            }
        }
}

// ---- Constants ----

class ConstantsTest : public testing::Test {
protected:
    s_Expr* node(int op, s_Expr* left, s_Expr* right) {
        auto expr = std::make_unique<s_Expr>();
        expr->op = op;
        expr->left = left;
        expr->right = right;
        return adoptExpr(rt, std::move(expr));
    }
    s_Expr* constant(double value) {
        s_Expr* leaf = node(EXPR_CONST, nullptr, nullptr);
        leaf->gvar = mkConstant(rt, makeReal(value));
        return leaf;
    }
    double valueOf(int op, double left, double right) {
        auto const value = constantValue(*node(op, constant(left), constant(right)));
        EXPECT_TRUE(value.has_value());
        return value ? value->real : 0.0;
    }

    s_runtime rt;
};

TEST_F(ConstantsTest, AreWorkedOutAsTheEngineDoes) {
    EXPECT_EQ(valueOf(EXPR_ADD, 6.0, 3.0), 9.0);
    EXPECT_EQ(valueOf(EXPR_SUB, 6.0, 3.0), 3.0);
    EXPECT_EQ(valueOf(EXPR_MUL, 6.0, 3.0), 18.0);
    EXPECT_EQ(valueOf(EXPR_DIV, 6.0, 3.0), 2.0);
    EXPECT_NEAR(valueOf(EXPR_POW, 2.0, 3.0), 9.0, 1e-12) << "right to the power left";
    EXPECT_EQ(valueOf(EXPR_NEG, 6.0, 3.0), -6.0);
    s_Expr* nested = node(EXPR_ADD, node(EXPR_MUL, constant(2.0), constant(3.0)), constant(1.0));
    EXPECT_EQ(constantValue(*nested)->real, 7.0);
    EXPECT_EQ(constantValue(*constant(4.0))->real, 4.0);
    s_Expr const* both = node(EXPR_POW, constant(2.0), constant(3.0));
    Host host;
    s_engine engine(host);
    rt.engine = &engine;
    sn_evalSolFunc(&rt, both);
    EXPECT_EQ(constantValue(*both)->real, engine.TMP4.real);
}

TEST_F(ConstantsTest, AreNotKnownOfVariablesNorOfWhatLacksSomething) {
    s_Variable* x = mkVariable(rt, "x", 1);
    s_Expr* variable = node(EXPR_VAR, nullptr, nullptr);
    variable->gvar = mkConstraintVar(rt, x, makeReal(1.0));
    EXPECT_FALSE(constantValue(*variable));
    EXPECT_FALSE(constantValue(*node(EXPR_ADD, constant(1.0), variable)));
    EXPECT_FALSE(constantValue(*node(EXPR_ADD, variable, constant(1.0))));
    EXPECT_FALSE(constantValue(*node(EXPR_ADD, constant(1.0), nullptr)));
    EXPECT_FALSE(constantValue(*node(EXPR_CONST, nullptr, nullptr)));
    EXPECT_FALSE(constantValue(*node(8, constant(1.0), constant(1.0))));
}

}  // namespace
