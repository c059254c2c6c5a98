// What is told of a hitting-set tree whose invariants do not hold.
#include "continuous/isolation/tree_parts.h"
#include "isolation_fixture.h"

namespace isolation_test {
namespace {

// The tree of the sets {a, b} and {b, c}: [b], which is leaf 2, and [a, c], which is leaf 4; the
// leaf 3 was [a, b], and leaf 1 was [a].
class TreeInvariants : public IsolationTest {
protected:
    TreeInvariants() : list(suspects("a b b c")) {
        int const numbers[] = {0, 1, 1, 2};
        for (std::size_t i = 0; i < list.size(); ++i)
            tree.met.push_back({list[i], numbers[i]});
        tree.kinds = {list[0].get(), list[1].get(), list[3].get()};
        tree.branches = {branch(2, {1}), branch(4, {0, 3})};
        tree.nbLeaves = 4;
    }
    Branch branch(int number, std::vector<int> members) const {
        Branch made{number, members, {}};
        for (int const member : members)
            made.held.add(tree.met[static_cast<std::size_t>(member)].number);
        return made;
    }

    Suspects const list;
    TreeParts tree;
};

TEST_F(TreeInvariants, Hold) {
    EXPECT_EQ(brokenTree(tree), nullptr);
    EXPECT_EQ(brokenTree(TreeParts{}), nullptr);
}

TEST_F(TreeInvariants, ASuspectHasANumber) {
    for (int const wrong : {-1, 3}) {
        tree.met[2].number = wrong;
        EXPECT_STREQ(brokenTree(tree), "a suspect has no number") << wrong;
    }
    tree.met[2] = {nullptr, 1};
    EXPECT_STREQ(brokenTree(tree), "a suspect has no number");
}

TEST_F(TreeInvariants, EqualSuspectsHaveOneNumber) {
    tree.met[2].number = 0;
    EXPECT_STREQ(brokenTree(tree), "a suspect has another number than its equals");
}

TEST_F(TreeInvariants, ABranchHoldsWhatWasMet) {
    tree.branches[0].members.clear();
    EXPECT_STREQ(brokenTree(tree), "a branch holds nothing");
    for (int const wrong : {-1, 4}) {
        tree.branches[0].members = {wrong};
        EXPECT_STREQ(brokenTree(tree), "a branch holds a suspect that was not met") << wrong;
    }
}

TEST_F(TreeInvariants, ABranchHoldsASuspectOnce) {
    tree.branches[0] = branch(2, {1, 2});
    EXPECT_STREQ(brokenTree(tree), "a branch holds a suspect twice");
}

TEST_F(TreeInvariants, TheBitsOfABranchAreItsList) {
    tree.branches[0].held = {};
    EXPECT_STREQ(brokenTree(tree), "the bits of a branch miss a suspect of its list");
    tree.branches[0].held.add(1);
    tree.branches[0].held.add(70);
    EXPECT_STREQ(brokenTree(tree), "the bits of a branch hold more than its list");
}

TEST_F(TreeInvariants, NumbersAreGivenOnce) {
    for (int const wrong : {0, 4, 5}) {
        tree.branches[0].number = wrong;
        EXPECT_STREQ(brokenTree(tree), "the numbers of the branches are not distinct") << wrong;
    }
}

TEST_F(TreeInvariants, NoBranchLiesWithinAnother) {
    tree.branches = {branch(2, {1}), branch(3, {0, 2})};
    EXPECT_STREQ(brokenTree(tree), "a branch lies within another");
    tree.branches = {branch(2, {0, 1}), branch(3, {1, 0})};
    EXPECT_STREQ(brokenTree(tree), "a branch lies within another") << "equal ones";
}

}  // namespace
}  // namespace isolation_test
