// What follows from given facts: by hand, and beside all assignments of clauses that are drawn.
#include "reasoning/clause_net.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "model/Atom.h"
#include "model/Clause.h"
#include "model/StateVar.h"

namespace {

constexpr int count = 8;

// Eight propositions, each the only value of a variable. i + 1 stands for the i-th, its negative
// for the negation.
class ClauseNetTest : public testing::Test {
protected:
    ClauseNetTest() {
        for (int i = 0; i < count; ++i) {
            std::string const name = "p" + std::to_string(i);
            variables.push_back(
                std::make_unique<StateVar>(name, std::set<std::string>{"on"}, "on", nullptr));
            atoms.push_back(std::make_unique<Atom>(variables.back().get(), "on", name + "=on"));
        }
    }
    void clause(std::vector<int> const& literals) {
        clauses.push_back(std::make_unique<Clause>(static_cast<Comp*>(nullptr)));
        for (int const literal : literals)
            clauses.back()->addAtom(atomOf(literal), literal < 0);
    }
    Atom* atomOf(int literal) const {
        return atoms[static_cast<std::size_t>(std::abs(literal) - 1)].get();
    }
    static void take(Entailment& facts, ClauseNet const& net, int literal, Atom const* atom) {
        facts.take(net.placeOf(atom), literal > 0);
    }
    // What follows from the literals.
    Entailment entailed(ClauseNet const& net, std::vector<int> const& given) const {
        Entailment facts(net);
        for (int const literal : given)
            take(facts, net, literal, atomOf(literal));
        facts.propagate();
        return facts;
    }
    // Of a given set that contradicts itself, those on which that rests.
    std::vector<int> blamed(ClauseNet const& net, std::vector<int> const& given) const {
        std::vector<int> const places = entailed(net, given).blamed();
        std::vector<int> found;
        for (int const literal : given)
            if (std::count(places.begin(), places.end(), net.placeOf(atomOf(literal))) != 0)
                found.push_back(literal);
        EXPECT_EQ(found.size(), places.size()) << "something is blamed that was not given";
        return found;
    }
    char truth(ClauseNet const& net, Entailment const& facts, int literal) const {
        return "n?y"[facts.truthOf(net.placeOf(atomOf(literal))) + 1];
    }

    std::vector<std::unique_ptr<StateVar>> variables;
    std::vector<std::unique_ptr<Atom>> atoms;
    std::vector<std::unique_ptr<Clause>> clauses;
};

TEST_F(ClauseNetTest, WhatIsLeftOfAClauseHolds) {
    clause({-1, 2});
    clause({-2, -3, 4});
    ClauseNet const net(clauses);
    Entailment const one = entailed(net, {1});
    EXPECT_EQ(truth(net, one, 2), 'y');
    EXPECT_EQ(truth(net, one, 3), '?');  // two literals of the second clause are open
    EXPECT_EQ(truth(net, one, 4), '?');
    Entailment const two = entailed(net, {1, -4});
    EXPECT_EQ(truth(net, two, 3), 'n');
    EXPECT_FALSE(two.isContradicted());
}

TEST_F(ClauseNetTest, AClauseOfOneLiteralHoldsWithoutAnythingGiven) {
    clause({3});
    clause({-3, 1});
    ClauseNet const net(clauses);
    EXPECT_EQ(truth(net, entailed(net, {}), 1), 'y');
}

TEST_F(ClauseNetTest, ALiteralThatStandsTwiceIsOne) {
    clause({-1, 2, 2});
    ClauseNet const net(clauses);
    EXPECT_EQ(truth(net, entailed(net, {1}), 2), 'y');
}

TEST_F(ClauseNetTest, FactsMayBeAddedBehindAPropagation) {
    clause({-1, 2});
    clause({-2, -3, 4});
    ClauseNet const net(clauses);
    Entailment facts = entailed(net, {1});
    take(facts, net, 3, atomOf(3));
    facts.propagate();
    EXPECT_EQ(truth(net, facts, 4), 'y');
}

// 1 makes 2 hold, which contradicts 5; 3 and 4 have nothing to do with it.
TEST_F(ClauseNetTest, OnlyWhatIsNeededIsBlamed) {
    clause({-1, 2});
    clause({-2, -5});
    clause({-3, 4});
    ClauseNet const net(clauses);
    EXPECT_EQ(blamed(net, {3, 1, 5}), (std::vector<int>{1, 5}));
}

TEST_F(ClauseNetTest, AFactWhoseOppositeIsKnownIsBlamedWithWhatMakesItKnown) {
    clause({-1, 2});
    clause({-3, 4});
    ClauseNet const net(clauses);
    Entailment facts = entailed(net, {1, 3});
    take(facts, net, -2, atomOf(2));
    ASSERT_TRUE(facts.isContradicted());
    EXPECT_EQ(facts.blamed(), (std::vector<int>{net.placeOf(atomOf(1)), net.placeOf(atomOf(2))}));
}

TEST_F(ClauseNetTest, WhatNoClauseMentionsIsOpen) {
    clause({-1, 2});
    ClauseNet const net(clauses);
    EXPECT_EQ(net.placeOf(atomOf(7)), ClauseNet::unmentioned);
    Entailment const facts = entailed(net, {7});
    EXPECT_EQ(truth(net, facts, 7), '?');
    EXPECT_FALSE(net.isShared(ClauseNet::unmentioned) || net.isConcluded(ClauseNet::unmentioned));
}

TEST_F(ClauseNetTest, AnAtomIsConcludedByAClauseOverSeveralVariables) {
    clause({-1, 2});
    clause({3});
    ClauseNet const net(clauses);
    EXPECT_FALSE(net.isConcluded(net.placeOf(atomOf(1))));
    EXPECT_TRUE(net.isConcluded(net.placeOf(atomOf(2))));
    EXPECT_FALSE(net.isConcluded(net.placeOf(atomOf(3))));
    EXPECT_TRUE(net.isShared(net.placeOf(atomOf(1))));
    EXPECT_FALSE(net.isShared(net.placeOf(atomOf(3))));
}

// Beside all 256 assignments.
class DrawnClauses : public ClauseNetTest {
protected:
    static bool agrees(unsigned bits, int literal) {
        return ((bits >> (std::abs(literal) - 1)) % 2 == 1) == (literal > 0);
    }
    void draw() {
        clauses.clear();
        texts.clear();
        for (int i = 6 + upTo(10); i > 0; --i) {
            std::vector<int> literals;
            for (int j = 1 + upTo(2); j > 0; --j)
                literals.push_back(drawnLiteral());
            texts.push_back(literals);
            clause(literals);
        }
    }
    int drawnLiteral() { return (1 + upTo(count - 1)) * (upTo(1) == 0 ? 1 : -1); }
    int upTo(int last) { return static_cast<int>(dice() % static_cast<unsigned>(last + 1)); }
    // The assignments in which all clauses and the given literals hold.
    std::vector<unsigned> possible(std::vector<int> const& given) const {
        std::vector<unsigned> found;
        for (unsigned bits = 0; bits < 1U << count; ++bits) {
            auto const holds = [bits](int literal) { return agrees(bits, literal); };
            if (std::all_of(given.begin(), given.end(), holds) &&
                std::all_of(texts.begin(), texts.end(), [&](std::vector<int> const& literals) {
                    return std::any_of(literals.begin(), literals.end(), holds);
                }))
                found.push_back(bits);
        }
        return found;
    }

    std::mt19937 dice{7};
    std::vector<std::vector<int>> texts;
};

TEST_F(DrawnClauses, WhatIsEntailedHoldsInEveryAssignment) {
    int contradictions = 0, conclusions = 0;
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE(round);
        draw();
        ClauseNet const net(clauses);
        std::vector<int> given;
        for (int literal = 1; literal <= count; ++literal)
            if (upTo(3) == 0)
                given.push_back(upTo(1) == 0 ? literal : -literal);
        std::vector<unsigned> const assignments = possible(given);
        Entailment const facts = entailed(net, given);
        if (facts.isContradicted()) {
            ++contradictions;
            ASSERT_TRUE(assignments.empty());
            ASSERT_TRUE(possible(blamed(net, given)).empty());
            continue;
        }
        for (int literal = 1; literal <= count; ++literal) {
            if (truth(net, facts, literal) == '?')
                continue;
            ++conclusions;
            int const known = truth(net, facts, literal) == 'y' ? literal : -literal;
            for (unsigned const bits : assignments)
                ASSERT_TRUE(agrees(bits, known)) << literal;
        }
    }
    EXPECT_GT(contradictions, 300);
    EXPECT_GT(conclusions, 1000);
}

}  // namespace
