// Clauses: literals, tests on labels, truth, opposites, supports, and printing.
//
// The sign true is a negated literal. Walks follow the rule of signed_atoms_test.cpp: of one sign,
// the last inserted comes first.
#include "model/Clause.h"

#include "model/model_fixture.h"

using model_fixture::Literal;
using model_fixture::printed;
using model_fixture::valuesOf;
using model_fixture::walk;

namespace {

class ClauseTest : public testing::Test {
protected:
    Atom* atom(std::string const& value) { return variable[value]; }
    // Inserts the literals in order.
    void fill(Clause& clause, std::vector<std::pair<std::string, bool>> const& literals) {
        for (auto const& [value, sign] : literals)
            clause.addAtom(atom(value), sign);
    }

    Comp comp{"c"};
    model_fixture::Valued<> variable{"v", {"x", "y", "z", "w"}};
    Clause clause{&comp};
};

TEST_F(ClauseTest, StartsEmptyAndNotInternal) {
    EXPECT_TRUE(clause.atoms.empty());
    EXPECT_EQ(clause.comp, &comp);
    EXPECT_FALSE(clause.getInternal());
}

TEST_F(ClauseTest, OfOneLiteralEntersNoReference) {
    Clause const single(atom("x"), true, &comp);
    EXPECT_EQ(walk(single.atoms), "+x");
    EXPECT_EQ(single.comp, &comp);
    EXPECT_FALSE(single.getInternal());
    EXPECT_TRUE(atom("x")->clauses.empty());
    Clause const positive(atom("y"), false, nullptr);
    EXPECT_EQ(walk(positive.atoms), "-y");
    EXPECT_EQ(positive.comp, nullptr);
}

TEST_F(ClauseTest, CopyTakesLiteralsAndComponentButIsNeverInternal) {
    fill(clause, {{"x", true}, {"y", false}, {"z", false}});
    clause.setInternal(true);
    Clause copy(&clause);
    EXPECT_EQ(walk(copy.atoms), "+x-z-y");
    EXPECT_EQ(copy.comp, &comp);
    EXPECT_FALSE(copy.getInternal());
    EXPECT_TRUE(clause.getInternal());
    copy.addAtom(atom("w"), true);
    EXPECT_EQ(clause.atoms.size(), 3u) << "the copy has its own literals";
}

TEST_F(ClauseTest, InternalFlag) {
    clause.setInternal(true);
    EXPECT_TRUE(clause.getInternal());
    clause.setInternal(false);
    EXPECT_FALSE(clause.getInternal());
}

TEST_F(ClauseTest, OnlyAddAtomRefEntersTheClauseInTheAtom) {
    clause.addAtom(atom("x"), true);
    EXPECT_TRUE(atom("x")->clauses.empty());
    clause.addAtomRef(atom("y"), false);
    EXPECT_EQ(atom("y")->clauses, std::vector<Clause*>{&clause});
    EXPECT_EQ(walk(clause.atoms), "+x-y");
    Clause second(&comp);
    second.addAtomRef(atom("y"), true);
    EXPECT_EQ(atom("y")->clauses, (std::vector<Clause*>{&clause, &second}));
}

TEST_F(ClauseTest, SignOfAnAtom) {
    fill(clause, {{"x", true}, {"y", false}});
    EXPECT_TRUE(clause.getSign(atom("x")));
    EXPECT_FALSE(clause.getSign(atom("y")));
    EXPECT_FALSE(clause.getSign(atom("z"))) << "absent";
}

TEST_F(ClauseTest, SignIsThatOfTheFirstLiteralOfTheAtom) {
    fill(clause, {{"x", true}, {"x", false}});
    EXPECT_EQ(walk(clause.atoms), "+x-x");
    EXPECT_TRUE(clause.getSign(atom("x")));
    Clause reversed(&comp);
    fill(reversed, {{"x", false}, {"x", true}});
    EXPECT_EQ(walk(reversed.atoms), "-x+x");
    EXPECT_FALSE(reversed.getSign(atom("x")));
}

TEST_F(ClauseTest, FirstUnknownAtomInTheOrderOfTheWalk) {
    fill(clause, {{"x", true}, {"y", true}, {"z", false}});
    EXPECT_EQ(walk(clause.atoms), "+y+x-z");
    EXPECT_EQ(clause.getUnknown(), atom("y"));
    atom("y")->setLabel("true");
    EXPECT_EQ(clause.getUnknown(), atom("x"));
    atom("x")->setLabel("false");
    EXPECT_EQ(clause.getUnknown(), atom("z"));
    atom("z")->setLabel("true");
    EXPECT_EQ(clause.getUnknown(), nullptr);
}

TEST_F(ClauseTest, LiteralsByLabelKeepTheirSigns) {
    fill(clause, {{"x", true}, {"y", false}, {"z", true}, {"w", false}});
    atom("x")->setLabel("true");
    atom("y")->setLabel("true");
    atom("z")->setLabel("false");
    auto const contents = [](SignedAtoms const& bag) {
        return std::multiset<Literal>(bag.begin(), bag.end());
    };
    using Contents = std::multiset<Literal>;
    EXPECT_EQ(contents(clause.getTrueAtoms()), (Contents{{true, atom("x")}, {false, atom("y")}}));
    EXPECT_EQ(contents(clause.getFalseAtoms()), (Contents{{true, atom("z")}}));
    EXPECT_EQ(contents(clause.getNotUnknown()),
              (Contents{{true, atom("x")}, {false, atom("y")}, {true, atom("z")}}));
}

// The literals are inserted in a new bag in the order of the walk, and so come out in another one:
// z, y, x all true are walked from the last to the first.
TEST_F(ClauseTest, LiteralsByLabelAreInsertedInTheOrderOfTheWalk) {
    fill(clause, {{"x", true}, {"y", true}, {"z", true}});
    EXPECT_EQ(walk(clause.atoms), "+z+y+x");
    for (char const* value : {"x", "y", "z"})
        atom(value)->setLabel("true");
    EXPECT_EQ(walk(clause.getTrueAtoms()), "+x+y+z");
    EXPECT_EQ(walk(clause.getNotUnknown()), "+x+y+z");
}

TEST_F(ClauseTest, EmptyHasNoUnknownAndNoLiterals) {
    EXPECT_EQ(clause.getUnknown(), nullptr);
    EXPECT_TRUE(clause.getTrueAtoms().empty());
    EXPECT_TRUE(clause.getFalseAtoms().empty());
    EXPECT_TRUE(clause.getNotUnknown().empty());
    EXPECT_FALSE(clause.getSign(atom("x")));
    EXPECT_TRUE(clause.getOpposites(atom("x")).empty());
}

TEST_F(ClauseTest, TruthOfALiteral) {
    Clause const negated(atom("x"), true, &comp);
    Clause const positive(atom("x"), false, &comp);
    variable.variable.setCurrentState("x");
    EXPECT_EQ(negated.evalAtom(negated.atoms.begin()), "false");
    EXPECT_EQ(positive.evalAtom(positive.atoms.begin()), "true");
    variable.variable.setCurrentState("y");
    EXPECT_EQ(negated.evalAtom(negated.atoms.begin()), "true");
    EXPECT_EQ(positive.evalAtom(positive.atoms.begin()), "false");
}

// not x, or y, or z: walked x, z, y.
TEST_F(ClauseTest, OppositesOfTheOnlyLiteralOfItsSign) {
    fill(clause, {{"x", true}, {"y", false}, {"z", false}});
    EXPECT_EQ(valuesOf(clause.getOpposites(atom("x"))), "zy");
}

TEST_F(ClauseTest, NoOppositesBesideAnotherLiteralOfTheSameSign) {
    fill(clause, {{"x", true}, {"y", true}});
    EXPECT_TRUE(clause.getOpposites(atom("x")).empty());
    EXPECT_TRUE(clause.getOpposites(atom("y")).empty());
}

// The walk x, z, y asked of y: x is collected before z stops the walk, and is given up.
TEST_F(ClauseTest, WhatWasCollectedBeforeTheStopIsGivenUp) {
    fill(clause, {{"x", true}, {"y", false}, {"z", false}});
    EXPECT_EQ(walk(clause.atoms), "+x-z-y");
    EXPECT_TRUE(clause.getOpposites(atom("y")).empty());
}

TEST_F(ClauseTest, RepeatedLiteralDoesNotStopTheWalk) {
    fill(clause, {{"x", true}, {"x", true}, {"y", false}});
    EXPECT_EQ(valuesOf(clause.getOpposites(atom("x"))), "y");
}

TEST_F(ClauseTest, AbsentAtomCountsAsPositive) {
    fill(clause, {{"x", true}, {"y", true}});
    EXPECT_EQ(valuesOf(clause.getOpposites(atom("z"))), "yx") << "no positive literal stops it";
    clause.addAtom(atom("w"), false);
    EXPECT_TRUE(clause.getOpposites(atom("z")).empty()) << "w is positive and stops it";
}

TEST_F(ClauseTest, SupportMakesTheAtomAConsequenceOfTheOthers) {
    fill(clause, {{"x", true}, {"y", false}, {"z", false}});
    clause.setSupport(atom("y"));
    EXPECT_EQ(atom("y")->support, &clause);
    EXPECT_EQ(atom("x")->support, nullptr);
    EXPECT_TRUE(atom("y")->consequences.empty());
    EXPECT_EQ(valuesOf(atom("x")->consequences), "y");
    EXPECT_EQ(valuesOf(atom("z")->consequences), "y");
    EXPECT_TRUE(atom("w")->consequences.empty());
}

TEST_F(ClauseTest, RepeatedSupportAppendsAgain) {
    fill(clause, {{"x", true}, {"y", false}});
    clause.setSupport(atom("y"));
    clause.setSupport(atom("y"));
    EXPECT_EQ(valuesOf(atom("x")->consequences), "yy");
    Clause other(&comp);
    fill(other, {{"y", false}, {"z", false}});
    other.setSupport(atom("y"));
    EXPECT_EQ(atom("y")->support, &other) << "the later support replaces the earlier one";
}

TEST_F(ClauseTest, ShowsAnEmptyClause) {
    EXPECT_EQ(printed([&] { clause.showClause(std::cout, true); }), "null\ncl size: 0\n\n");
}

TEST_F(ClauseTest, ShowsLiteralsInTheOrderOfTheWalkWhateverTheArgument) {
    fill(clause, {{"x", true}, {"y", false}, {"z", false}});
    std::string const text = "cl size: 3\nnon - v=x \\/ v=z \\/ v=y\n";
    EXPECT_EQ(printed([&] { clause.showClause(std::cout, true); }), text);
    EXPECT_EQ(printed([&] { clause.showClause(std::cout, false); }), text);
}

TEST_F(ClauseTest, ShowsASingleLiteralWithoutSeparator) {
    fill(clause, {{"x", false}});
    EXPECT_EQ(printed([&] { clause.showClause(std::cout, true); }), "cl size: 1\nv=x\n");
}

}  // namespace
