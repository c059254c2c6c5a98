// State formulas: operators, collection of literals, inclusion, and printing.
//
// The sign true is a positive literal. Walks follow the rule of signed_atoms_test.cpp.
#include "model/StateFormula.h"

#include "model/model_fixture.h"

using model_fixture::formulaOf;
using model_fixture::Literal;
using model_fixture::printed;
using model_fixture::valuesOf;
using model_fixture::walk;

namespace {

class StateFormulaTest : public testing::Test {
protected:
    model_fixture::Valued<> variable{"v", {"x", "y", "z", "w"}};
    Atom* const x = variable["x"];
    Atom* const y = variable["y"];
    Atom* const z = variable["z"];
    Atom* const w = variable["w"];
    StateFormula formula;
};

TEST_F(StateFormulaTest, StartsEmpty) {
    EXPECT_EQ(formula.getOperat(), "");
    EXPECT_TRUE(formula.getAtoms().empty());
    EXPECT_TRUE(formula.getStateFormulas().empty());
    EXPECT_FALSE(formula.negated);
    EXPECT_TRUE(formula.getAllAtoms().empty());
    EXPECT_TRUE(formula.getAllSignedAtoms().empty());
}

TEST_F(StateFormulaTest, OfOneLiteralIsPositiveUnlessTold) {
    StateFormula const positive(x);
    EXPECT_EQ(walk(positive.getAtoms()), "+x");
    EXPECT_EQ(positive.getOperat(), "");
    StateFormula const told(x, true);
    EXPECT_EQ(walk(told.getAtoms()), "+x");
    StateFormula const negative(y, false);
    EXPECT_EQ(walk(negative.getAtoms()), "-y");
    EXPECT_EQ(negative.getOperat(), "");
}

TEST_F(StateFormulaTest, AddsPositiveUnlessTold) {
    formula.addAtom(x);
    formula.addAtom(y, false);
    formula.addAtom(z, true);
    EXPECT_EQ(walk(formula.getAtoms()), "+z+x-y");
}

TEST_F(StateFormulaTest, TakesTheTwoOperatorsAndIgnoresOtherWords) {
    for (char const* word : {"", "xor", "AND", "and ", "non"}) {
        formula.setOperat(word);
        EXPECT_EQ(formula.getOperat(), "") << word;
    }
    formula.setOperat("or");
    EXPECT_EQ(formula.getOperat(), "or");
    for (char const* word : {"", "xor", "Or"}) {
        formula.setOperat(word);
        EXPECT_EQ(formula.getOperat(), "or") << word;
    }
    formula.setOperat("and");
    EXPECT_EQ(formula.getOperat(), "and");
}

TEST_F(StateFormulaTest, OwnLiteralsAreThoseOfThisLevelAlone) {
    formula.addStateFormula(formulaOf({{true, y}}));
    formula.addAtom(x);
    EXPECT_EQ(walk(formula.getAtoms()), "+x");
    ASSERT_EQ(formula.getStateFormulas().size(), 1u);
    EXPECT_EQ(walk(formula.getStateFormulas()[0]->getAtoms()), "+y");
}

TEST_F(StateFormulaTest, AllAtomsListThisLevelBeforeTheNestedOnes) {
    auto inner = formulaOf({{true, z}});
    inner->addStateFormula(formulaOf({{true, w}}));
    formula.addStateFormula(std::move(inner));
    formula.addStateFormula(formulaOf({{true, x}}));
    formula.addAtom(y);
    EXPECT_EQ(valuesOf(formula.getAllAtoms()), "yzwx");
}

TEST_F(StateFormulaTest, AllAtomsFollowTheWalkOfTheLevel) {
    formula.addAtom(x);
    formula.addAtom(y, false);
    formula.addAtom(z, false);
    EXPECT_EQ(walk(formula.getAtoms()), "+x-z-y");
    EXPECT_EQ(valuesOf(formula.getAllAtoms()), "xzy");
}

TEST_F(StateFormulaTest, AtomAddedTwiceIsListedTwice) {
    formula.addAtom(x);
    formula.addAtom(x);
    EXPECT_EQ(valuesOf(formula.getAllAtoms()), "xx");
    EXPECT_EQ(walk(formula.getAllSignedAtoms()), "+x+x");
}

// The literals go into a new bag in the order of the walk. Own walk x, z, y: x is the root, z goes
// right of it, and y right of x and left of z.
TEST_F(StateFormulaTest, AllSignedAtomsAreInsertedAnewInTheOrderOfTheWalk) {
    formula.addAtom(x);
    formula.addAtom(y, false);
    formula.addAtom(z, false);
    EXPECT_EQ(walk(formula.getAllSignedAtoms()), "+x-y-z");
}

// x is inserted first, then the nested y and z, walked z, y; of one sign the last comes first.
TEST_F(StateFormulaTest, AllSignedAtomsTakeInTheNestedOnes) {
    formula.addStateFormula(formulaOf({{true, y}, {true, z}}));
    formula.addAtom(x);
    EXPECT_EQ(walk(formula.getAllSignedAtoms()), "+y+z+x");
}

TEST_F(StateFormulaTest, CopyingAppendsToWhatIsThere) {
    formula.addAtom(x);
    formula.addStateFormula(formulaOf({{false, y}}));
    std::vector<Atom*> atoms = {w};
    formula.copyAtoms(&atoms);
    EXPECT_EQ(valuesOf(atoms), "wxy");
    SignedAtoms bag;
    bag.insert({true, w});
    formula.copyAtoms(&bag);
    EXPECT_EQ(walk(bag), "+x+w-y");
}

TEST_F(StateFormulaTest, IsIncludedInItself) {
    EXPECT_TRUE(formula.eq(&formula)) << "empty";
    formula.addAtom(x);
    formula.addAtom(y, false);
    formula.addStateFormula(formulaOf({{true, z}}));
    EXPECT_TRUE(formula.eq(&formula));
}

TEST_F(StateFormulaTest, InclusionIsOneWay) {
    auto const one = formulaOf({{true, x}});
    auto const two = formulaOf({{true, x}, {true, y}});
    EXPECT_TRUE(one->eq(two.get()));
    EXPECT_FALSE(two->eq(one.get()));
    EXPECT_TRUE(formula.eq(one.get())) << "the empty formula is included in every one";
    EXPECT_FALSE(one->eq(&formula));
}

TEST_F(StateFormulaTest, InclusionComparesSignsAndAtomsByPointer) {
    auto const positive = formulaOf({{true, x}});
    auto const negative = formulaOf({{false, x}});
    EXPECT_FALSE(positive->eq(negative.get()));
    EXPECT_FALSE(negative->eq(positive.get()));
    Atom twin(&variable.variable, "x", "v=x");
    EXPECT_FALSE(positive->eq(formulaOf({{true, &twin}}).get()));
}

TEST_F(StateFormulaTest, InclusionIgnoresOperatorNegationNestingAndRepetition) {
    auto const flat = formulaOf({{true, x}, {true, y}, {true, y}});
    flat->setOperat("and");
    auto const nested = formulaOf({{true, y}});
    nested->setOperat("or");
    nested->negated = true;
    nested->addStateFormula(formulaOf({{true, x}}));
    EXPECT_TRUE(flat->eq(nested.get()));
    EXPECT_TRUE(nested->eq(flat.get()));
}

TEST_F(StateFormulaTest, ShowsNothingWhenEmpty) {
    EXPECT_EQ(printed([&] { formula.showStateFormula(std::cout); }), "");
    formula.negated = true;
    EXPECT_EQ(printed([&] { formula.showStateFormula(std::cout); }), "non - ");
}

// Walk of y (true) and x (true): the last inserted first; the operator also follows the last atom.
TEST_F(StateFormulaTest, ShowsAtomsAlone) {
    formula.setOperat("and");
    formula.addAtom(x);
    formula.addAtom(y);
    formula.addAtom(z, false);
    EXPECT_EQ(printed([&] { formula.showStateFormula(std::cout); }), "(v=y and v=x and !v=z and )");
}

TEST_F(StateFormulaTest, ShowsTwoBlanksForTheEmptyOperator) {
    formula.addAtom(x);
    EXPECT_EQ(printed([&] { formula.showStateFormula(std::cout); }), "(v=x  )");
}

TEST_F(StateFormulaTest, ShowsNestedAlone) {
    formula.setOperat("or");
    formula.addStateFormula(formulaOf({{true, x}}));
    formula.addStateFormula(formulaOf({{false, y}}));
    formula.negated = true;
    EXPECT_EQ(printed([&] { formula.showStateFormula(std::cout); }),
              "non - (v=x  ) or (!v=y  ) or ");
}

TEST_F(StateFormulaTest, ShowsAtomsBesideNestedWithoutSeparator) {
    formula.setOperat("or");
    formula.addStateFormula(formulaOf({{true, x}}));
    formula.addAtom(y);
    formula.addAtom(z, false);
    EXPECT_EQ(printed([&] { formula.showStateFormula(std::cout); }), "(v=x  ) or (v=y!v=z)");
}

}  // namespace
