// Component constraints: both sides, sub-formulas, and printing.
#include "model/Formula.h"

#include "model/model_fixture.h"

using model_fixture::formulaOf;
using model_fixture::printed;

namespace {

class FormulaTest : public testing::Test {
protected:
    std::unique_ptr<Formula> implication(Atom* from, Atom* to) {
        return std::make_unique<Formula>(formulaOf({{true, from}}), formulaOf({{true, to}}),
                                         nullptr);
    }

    model_fixture::Valued<> variable{"v", {"x", "y"}};
    Atom* const x = variable["x"];
    Atom* const y = variable["y"];
};

TEST_F(FormulaTest, StartsEmpty) {
    Formula const formula;
    EXPECT_EQ(formula.getOperat(), "");
    EXPECT_EQ(formula.pre, nullptr);
    EXPECT_EQ(formula.post, nullptr);
    EXPECT_EQ(formula.formulas, nullptr);
    EXPECT_EQ(printed([&] { formula.showFormula(std::cout); }), "\n");
}

TEST_F(FormulaTest, OperatorIsFreeText) {
    Formula formula;
    formula.setOperat("whatever");
    EXPECT_EQ(formula.getOperat(), "whatever");
    formula.setOperat("");
    EXPECT_EQ(formula.getOperat(), "");
}

TEST_F(FormulaTest, TakesBothSidesAndIgnoresTheTrailingFlag) {
    for (bool const flag : {false, true}) {
        auto pre = formulaOf({{true, x}});
        auto post = formulaOf({{true, y}});
        StateFormula const* const preGiven = pre.get();
        StateFormula const* const postGiven = post.get();
        Formula const formula(std::move(pre), std::move(post), nullptr, flag);
        EXPECT_EQ(formula.pre.get(), preGiven);
        EXPECT_EQ(formula.post.get(), postGiven);
        EXPECT_EQ(formula.formulas, nullptr);
        EXPECT_EQ(formula.getOperat(), "");
        EXPECT_EQ(printed([&] { formula.showFormula(std::cout); }), "(v=x  ) => (v=y  )\n");
    }
}

TEST_F(FormulaTest, ShowsASideAlone) {
    Formula const left(formulaOf({{true, x}}), nullptr, nullptr);
    EXPECT_EQ(printed([&] { left.showFormula(std::cout); }), "(v=x  ) => \n");
    Formula const right(nullptr, formulaOf({{true, y}}), nullptr);
    EXPECT_EQ(printed([&] { right.showFormula(std::cout); }), "(v=y  )\n");
}

TEST_F(FormulaTest, SubFormulasAreAppended) {
    Formula formula;
    auto first = implication(x, y);
    auto second = implication(y, x);
    Formula const* const firstGiven = first.get();
    Formula const* const secondGiven = second.get();
    formula.addFormula(std::move(first));
    formula.addFormula(std::move(second));
    ASSERT_NE(formula.formulas, nullptr);
    ASSERT_EQ(formula.formulas->size(), 2u);
    EXPECT_EQ((*formula.formulas)[0].get(), firstGiven);
    EXPECT_EQ((*formula.formulas)[1].get(), secondGiven);
}

// Two tabs between sub-formulas and not after the last; each ends its own line, and the whole adds
// none of its own.
TEST_F(FormulaTest, ShowsSubFormulasWithTabsBetween) {
    auto subs = std::make_unique<Formula::Formulas>();
    subs->push_back(implication(x, y));
    subs->push_back(implication(y, x));
    Formula const formula(formulaOf({{false, x}}), nullptr, std::move(subs));
    EXPECT_EQ(printed([&] { formula.showFormula(std::cout); }),
              "(!v=x  ) => (v=x  ) => (v=y  )\n"
              "\t\t(v=y  ) => (v=x  )\n");
}

TEST_F(FormulaTest, EmptySetOfSubFormulasEndsNoLine) {
    Formula const formula(formulaOf({{true, x}}), nullptr, std::make_unique<Formula::Formulas>());
    EXPECT_EQ(printed([&] { formula.showFormula(std::cout); }), "(v=x  ) => ");
}

}  // namespace
