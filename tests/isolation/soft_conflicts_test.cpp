// Soft conflict sets by hand: the tree of classes, the order of subsets and unions, the differences
// with their delays, and the suspects that end as soft ones.
//
// M is the misbehaving measure, N1, N2, ... the behaving ones in their order.
#include "isolation_fixture.h"

using namespace isolation_test;

namespace {

class SoftSets : public testing::Test {
protected:
    // The conflict sets of the first misbehaving measure after the soft ones were added.
    std::string setsOf(std::vector<std::string> const& misbehaving,
                       std::vector<std::string> const& behaving) {
        for (std::string const& notation : misbehaving)
            misb.push_back(measureWith(notation));
        for (std::string const& notation : behaving)
            normal.push_back(measureWith(notation));
        soft = generateSoftConflictSets(misb, normal);
        return text(misb[0].conflictSets);
    }
    std::vector<MeasureConflicts> misb, normal;
    Suspects soft;
};

TEST_F(SoftSets, NothingIsAddedWithoutABehavingMeasure) {
    EXPECT_EQ(setsOf({"a b"}, {}), "[a b]");
    EXPECT_EQ(text(soft), "");
}

TEST_F(SoftSets, AMeasureThatSharesNothingAddsNothing) {
    EXPECT_EQ(setsOf({"a b"}, {"c d", ""}), "[a b]");
    EXPECT_EQ(text(soft), "");
}

// In the order of M first, then of the other: a is not in N1; c and d are not in M.
TEST_F(SoftSets, ADifferenceHasTheSuspectsOfTheMisbehavingMeasureFirst) {
    EXPECT_EQ(setsOf({"a b"}, {"c b d"}), "[a b][a c d]");
    EXPECT_EQ(text(soft), "c d");
}

// A measure with the same suspects shows that they compensate each other; the set is empty.
TEST_F(SoftSets, EqualSuspectsLeaveAnEmptyDifference) {
    EXPECT_EQ(setsOf({"a b"}, {"b a"}), "[a b][]");
    EXPECT_EQ(text(soft), "");
}

// The subsets are {N1}, {N1, N2}, {N2}. The union of both is that of N2 with what has been gathered
// behind it: a d b c; less M, d c.
TEST_F(SoftSets, EverySubsetOfTheChildrenGivesASet) {
    EXPECT_EQ(setsOf({"a b"}, {"b c", "a d"}), "[a b][a c][d c][b d]");
    EXPECT_EQ(text(soft), "c d");
}

// Three children: 1, 12, 123, 13, 2, 23, 3. The later a child, the more to the front it stands.
TEST_F(SoftSets, ASubsetComesBeforeItsExtensions) {
    EXPECT_EQ(setsOf({"a b c"}, {"a x", "b y", "c z"}),
              "[a b c][b c x][c y x][z y x][b z x][a c y][a z y][a b z]");
    EXPECT_EQ(text(soft), "x y z");
}

// N2 shares nothing with M, but c with N1, so it is a child of N1. The sets of N1 are its own, b c,
// and its difference with N2, b d. M takes each of them.
TEST_F(SoftSets, TheSetsOfAChildAreMadeFirst) {
    EXPECT_EQ(setsOf({"a b"}, {"b c", "c d"}), "[a b][a c][a d]");
    EXPECT_EQ(text(soft), "c d");
}

// A chain of three: N3 has [d e]; N2 [c d], [c e]; N1 [b c], then with each set of N2: [b d], [b
// e].
TEST_F(SoftSets, AChainOfMeasuresIsFollowedToItsEnd) {
    EXPECT_EQ(setsOf({"a b"}, {"b c", "c d", "d e"}), "[a b][a c][a d][a e]");
    EXPECT_EQ(text(soft), "c d e");
}

// The first set of a measure stays what it was while its differences are added: with two children,
// each difference is that with N1's own suspects, b c d.
//   N2 = c p, N3 = d q: N1 has [b c d], with N2 [b d p], with both [b q p], with N3 [b c q].
TEST_F(SoftSets, EveryDifferenceOfAMeasureIsWithItsOwnSuspects) {
    EXPECT_EQ(setsOf({"a b"}, {"b c d", "c p", "d q"}), "[a b][a c d][a d p][a q p][a c q]");
}

// N2 shares with M as well as with N1: M is nearer, so N1 has no child and one set. Of both
// together, a c b, only c is not in M.
TEST_F(SoftSets, AMeasureIsAChildOfTheNearest) {
    EXPECT_EQ(setsOf({"a b"}, {"b c", "a c"}), "[a b][a c][c][b c]");
}

// N3 shares with N1 and with N2, which are equally near: it is a child of N1 alone.
//   N1 has [a p] and its difference with N3, [a q]; N2 has [b q].
//   {N1}: b p, b q. {N1, N2}: of b q a p, q p; of b q a, q. {N2}: a q.
TEST_F(SoftSets, AMeasureIsAChildOfTheFirstOfEquallyNearOnes) {
    EXPECT_EQ(setsOf({"a b"}, {"a p", "b q", "p q"}), "[a b][b p][b q][q p][q][a q]");
}

// Every set of one child is united with every set of the next, the first child's slowest.
//   N1 = a p with child N3 = p q: [a p], [a q]. N2 = b r with child N4 = r s: [b r], [b s].
TEST_F(SoftSets, SetsOfSeveralChildrenMultiply) {
    EXPECT_EQ(setsOf({"a b"}, {"a p", "b r", "p q", "r s"}),
              "[a b][b p][b q][r p][s p][r q][s q][a r][a s]");
    EXPECT_EQ(text(soft), "p q r s");
}

// ---- Several misbehaving measures ----

TEST_F(SoftSets, EachMisbehavingMeasureHasATreeOfItsOwn) {
    EXPECT_EQ(setsOf({"a", "b"}, {"a b"}), "[a][b]");
    EXPECT_EQ(text(misb[1].conflictSets), "[b][a]");
}

// b stands only in a soft set of the first measure, but is a suspect of the second.
TEST_F(SoftSets, ASuspectOfAnyMisbehavingMeasureIsNotSoft) {
    setsOf({"a", "b"}, {"a b c"});
    EXPECT_EQ(text(misb[0].conflictSets), "[a][b c]");
    EXPECT_EQ(text(misb[1].conflictSets), "[b][a c]");
    EXPECT_EQ(text(soft), "c") << "once, although it stands in both";
}

TEST_F(SoftSets, AnotherMisbehavingMeasureIsNoNeighbour) {
    EXPECT_EQ(setsOf({"a b", "b c"}, {"z"}), "[a b]");
    EXPECT_EQ(text(misb[1].conflictSets), "[b c]");
}

// ---- Delays ----

// Sharing is a matter of name and condition. a is in both, at whatever delay, and keeps each.
TEST_F(SoftSets, DelaysPlayNoPartInADifference) {
    EXPECT_EQ(setsOf({"a@1 b@2"}, {"a@5 c@3"}), "[a@1 b@2][b@2 c@3]");
    EXPECT_EQ(text(normal[0].conflicts), "a@5 c@3");
}

// A union brings x to the higher of its two delays in both of its members, for the rest of the
// tree; what the measures themselves hold stays.
//   {N1}: b c x@1, before the union. {N1, N2}: c x@3. {N1, N2, N3}: x@3.
//   {N1, N3}: b x@3, since N1 itself has it at 3 by now. {N2}: a c x@3. {N2, N3}: a x@3. {N3}: a b.
TEST_F(SoftSets, AUnionRaisesDelaysForAllThatComesLater) {
    EXPECT_EQ(setsOf({"a b c"}, {"a x@1", "b x@3", "c"}),
              "[a b c][b c x@1][c x@3][x@3][b x@3][a c x@3][a x@3][a b]");
    EXPECT_EQ(text(normal[0].conflicts), "a x@1");
    EXPECT_EQ(text(normal[1].conflicts), "b x@3");
}

TEST_F(SoftSets, AUnionRaisesTheLaterMemberAsWell) {
    EXPECT_EQ(setsOf({"a b"}, {"a x@3", "b x@1"}), "[a b][b x@3][x@3][a x@3]");
}

// Each tree starts from copies of what the measures hold. In that of the first, N1 and N2 are
// united and x rises; in that of the second, N2 is a child of N1, which has [a x@1], as found, and
// [a b].
TEST_F(SoftSets, ARaisedDelayIsNotSeenInTheTreesOfLaterMeasures) {
    setsOf({"a b", "a c"}, {"a x@1", "b x@3"});
    EXPECT_EQ(text(misb[0].conflictSets), "[a b][b x@1][x@3][a x@3]");
    EXPECT_EQ(text(misb[1].conflictSets), "[a c][c x@1][c b]");
}

// The first difference was made before x rose, and keeps its own copy.
TEST_F(SoftSets, ADifferenceHoldsCopies) {
    setsOf({"a b"}, {"a x@1", "b x@3"});
    EXPECT_EQ(text(soft), "x@1") << "the first one found";
    EXPECT_NE(misb[0].conflictSets[1][1], normal[0].conflicts[1]);
}

// ---- Conditions ----

// One name under two conditions makes two suspects, so these measures share nothing.
TEST_F(SoftSets, SharingTakesTheSameCondition) {
    CausalGraph graph;
    s_Variable *x = graph.variable("x"), *y = graph.variable("y");
    s_Influence* open = graph.link("a", x, y, 0, graph.constant(1));
    s_Influence* shut = graph.link("a", x, y, 0, graph.constant(0));
    auto const with = [](s_Influence* influence) {
        MeasureConflicts measure;
        makeUpConflict(influence, 0, measure.conflicts);
        measure.conflictSets = {measure.conflicts};
        return measure;
    };
    std::vector<MeasureConflicts> first{with(open)}, second{with(shut)};
    generateSoftConflictSets(first, second);
    EXPECT_EQ(text(first[0].conflictSets), "[a]");
}

}  // namespace
