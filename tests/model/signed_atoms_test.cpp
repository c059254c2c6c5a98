// The order in which a bag of signed atoms is walked.
//
// Insertion goes down the tree, left when the new sign equals the sign of the node and right when
// it differs, and the tree is rebalanced as a red-black tree. The short cases below are worked out
// by hand from that rule; the twin is the textbook insertion (Cormen, Leiserson, Rivest and Stein,
// "Introduction to Algorithms", chapter on red-black trees) on indices, with the same descent.
#include <random>

#include "model/model_fixture.h"

using model_fixture::walk;

namespace {

std::vector<std::string> const letters = {"a", "b", "c", "d", "e"};

// The walk after atoms a, b, c... were inserted with the given signs, '+' for true.
std::string walkOf(std::string const& signs) {
    static model_fixture::Valued<> const variable("v", letters);
    SignedAtoms bag;
    for (std::size_t i = 0; i < signs.size(); ++i)
        bag.insert({signs[i] == '+', variable[letters[i]]});
    return walk(bag);
}

TEST(SignedAtoms, EqualityIsTheOrderingObject) {
    eqbool const equal;
    EXPECT_TRUE(equal(true, true));
    EXPECT_TRUE(equal(false, false));
    EXPECT_FALSE(equal(true, false));
    EXPECT_FALSE(equal(false, true));
}

TEST(SignedAtoms, OfOneSignAreWalkedFromTheLastToTheFirst) {
    EXPECT_EQ(walkOf("++"), "+b+a");
    EXPECT_EQ(walkOf("+++"), "+c+b+a");
    EXPECT_EQ(walkOf("-----"), "-e-d-c-b-a");
}

TEST(SignedAtoms, OfTheOtherSignGoesRight) {
    EXPECT_EQ(walkOf("+-"), "+a-b");
    EXPECT_EQ(walkOf("-+"), "-a+b");
}

// Three atoms: the root is still the first one while each is placed.
TEST(SignedAtoms, ThreeOfMixedSign) {
    EXPECT_EQ(walkOf("++-"), "+b+a-c");
    EXPECT_EQ(walkOf("+-+"), "+c+a-b");
    // c: right of a, then left of b.
    EXPECT_EQ(walkOf("+--"), "+a-c-b");
    EXPECT_EQ(walkOf("-++"), "-a+c+b");
}

// The third insertion rotates c (false) into the root; with a (true) still there, d and e would
// have gone to the left end.
TEST(SignedAtoms, RebalancingDecidesWhereTheNextGoes) {
    EXPECT_EQ(walkOf("+--+"), "+a-c-b+d");
    EXPECT_EQ(walkOf("+--+-"), "+a-e-c-b+d");
    // b is the root after three of one sign; d goes right of b and of a, e left of b and of c.
    EXPECT_EQ(walkOf("+++-+"), "+e+c+b+a-d");
}

TEST(SignedAtoms, KeepDuplicates) {
    model_fixture::Valued<> const variable("v", letters);
    SignedAtoms bag;
    bag.insert({true, variable["a"]});
    bag.insert({true, variable["a"]});
    bag.insert({false, variable["a"]});
    EXPECT_EQ(bag.size(), 3u);
    EXPECT_EQ(walk(bag), "+a+a-a");
}

TEST(SignedAtoms, EraseKeepsTheOrderOfTheOthers) {
    model_fixture::Valued<> const variable("v", letters);
    SignedAtoms bag;
    for (std::string const& letter : letters)
        bag.insert({true, variable[letter]});
    bag.erase(std::next(bag.begin(), 2));
    EXPECT_EQ(walk(bag), "+e+d+b+a");
}

// A red-black tree of numbered signs.
class TwinTree {
public:
    void insert(bool sign) {
        int parent = none;
        bool left = false;
        for (int at = root; at != none; at = child(at, left)) {
            parent = at;
            left = nodes[at].sign == sign;
        }
        int const added = static_cast<int>(nodes.size());
        nodes.push_back({sign, parent, {none, none}, true});
        if (parent == none)
            root = added;
        else
            child(parent, left) = added;
        rebalance(added);
    }
    std::vector<int> walk() const {
        std::vector<int> order;
        collect(root, order);
        return order;
    }

private:
    static constexpr int none = -1;
    struct Node {
        bool sign;
        int parent;
        int children[2];  // right, left
        bool red;
    };

    int& child(int node, bool left) { return nodes[node].children[left]; }
    bool isRed(int node) const { return node != none && nodes[node].red; }
    bool isLeft(int node) { return child(nodes[node].parent, true) == node; }

    void rebalance(int node) {
        while (isRed(nodes[node].parent)) {
            int parent = nodes[node].parent;
            int const grandparent = nodes[parent].parent;
            bool const left = isLeft(parent);
            int const uncle = child(grandparent, !left);
            nodes[grandparent].red = true;
            if (isRed(uncle)) {
                nodes[parent].red = nodes[uncle].red = false;
                node = grandparent;
                continue;
            }
            if (isLeft(node) != left) {
                raise(node);
                std::swap(node, parent);
            }
            nodes[parent].red = false;
            raise(parent);
        }
        nodes[root].red = false;
    }
    // Rotates *node* over its parent.
    void raise(int node) {
        int const parent = nodes[node].parent;
        int const grandparent = nodes[parent].parent;
        bool const left = isLeft(node);
        if (grandparent == none)
            root = node;
        else
            child(grandparent, isLeft(parent)) = node;
        int const inner = child(node, !left);
        child(parent, left) = inner;
        if (inner != none)
            nodes[inner].parent = parent;
        child(node, !left) = parent;
        nodes[parent].parent = node;
        nodes[node].parent = grandparent;
    }
    void collect(int node, std::vector<int>& order) const {
        if (node == none)
            return;
        collect(nodes[node].children[1], order);
        order.push_back(node);
        collect(nodes[node].children[0], order);
    }

    std::vector<Node> nodes;
    int root = none;
};

// A bag beside its twin; the atoms are numbered by their propagation number.
class BagAndTwin {
public:
    void insert(bool sign) {
        numbered.push_back(std::make_unique<Atom>(&variable, "x", "v=x"));
        numbered.back()->propagationNumber = static_cast<int>(numbered.size()) - 1;
        bag.insert({sign, numbered.back().get()});
        twin.insert(sign);
    }
    static std::vector<int> walkOfBag(SignedAtoms const& atoms) {
        std::vector<int> order;
        for (auto const& literal : atoms)
            order.push_back(literal.second->propagationNumber);
        return order;
    }

    StateVar variable{"v", {"x"}};
    std::vector<std::unique_ptr<Atom>> numbered;
    SignedAtoms bag;
    TwinTree twin;
};

TEST(SignedAtoms, AgreeWithTheTwinForEverySequenceOfTen) {
    constexpr int length = 10;
    for (unsigned signs = 0; signs < 1u << length; ++signs) {
        BagAndTwin both;
        for (int i = 0; i < length; ++i) {
            both.insert(signs >> i & 1u);
            ASSERT_EQ(BagAndTwin::walkOfBag(both.bag), both.twin.walk()) << signs << " at " << i;
        }
    }
}

TEST(SignedAtoms, AgreeWithTheTwinForLongSequences) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 random(seed);
        BagAndTwin both;
        for (int i = 0; i < 300; ++i)
            both.insert(random() & 1u);
        ASSERT_EQ(BagAndTwin::walkOfBag(both.bag), both.twin.walk()) << "seed " << seed;
    }
}

// A copy keeps the tree itself, not only the walk: what is inserted later goes to the same place.
TEST(SignedAtoms, CopyGoesOnLikeItsSource) {
    std::mt19937 random(7);
    BagAndTwin both;
    for (int i = 0; i < 40; ++i)
        both.insert(random() & 1u);
    SignedAtoms copy = both.bag;
    EXPECT_EQ(BagAndTwin::walkOfBag(copy), both.twin.walk());
    for (int i = 0; i < 20; ++i) {
        bool const sign = random() & 1u;
        both.insert(sign);
        copy.insert({sign, both.numbered.back().get()});
        ASSERT_EQ(BagAndTwin::walkOfBag(copy), both.twin.walk()) << i;
    }
}

}  // namespace
