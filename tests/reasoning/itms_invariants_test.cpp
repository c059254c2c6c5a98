// What is told of a state whose supports do not hold together.
#include "reasoning/reasoning_fixture.h"

using reasoning_fixture::SmallModel;

namespace {

// The clause "!p q" gives q a support once p holds.
class ItmsInvariants : public testing::Test {
protected:
    ItmsInvariants() {
        model.propositions("p q r");
        clause = model.clause("!p q");
        other = model.clause("!q r");
        model.start();
        model.label("p q ?r");
    }
    char const* broken() const { return itms::brokenSupports(*model.state()); }

    SmallModel model;
    Clause *clause, *other;
};

TEST_F(ItmsInvariants, HoldWithoutAndWithASupport) {
    EXPECT_EQ(broken(), nullptr);
    model.elt("q")->support = clause;
    model.elt("q")->propagationNumber = 1;
    EXPECT_EQ(broken(), nullptr);
}

TEST_F(ItmsInvariants, AnElementWithoutASupportHasNoNumber) {
    model.elt("r")->propagationNumber = 1;
    EXPECT_STREQ(broken(), "an element without a support has a number");
}

TEST_F(ItmsInvariants, ANumberIsAboveThoseOfTheSupport) {
    TrajEl* q = model.elt("q");
    q->support = clause;
    q->propagationNumber = 2;
    model.elt("p")->propagationNumber = 1;
    model.elt("r")->propagationNumber = 7;
    EXPECT_TRUE(itms::risesAboveSupport(*q, *model.state())) << "r stands elsewhere";
    model.elt("p")->propagationNumber = 2;
    EXPECT_FALSE(itms::risesAboveSupport(*q, *model.state()));
}

TEST_F(ItmsInvariants, NumbersAreNotNegative) {
    model.elt("r")->propagationNumber = -1;
    EXPECT_STREQ(broken(), "a propagation number is negative");
}

TEST_F(ItmsInvariants, ASupportMentionsItsElement) {
    model.elt("r")->support = clause;
    model.elt("r")->propagationNumber = 9;
    EXPECT_STREQ(broken(), "an element stands on a clause that does not mention it");
}

TEST_F(ItmsInvariants, AStateIsSoundItself) {
    model.elt("r")->lock = 7;
    EXPECT_STREQ(broken(), "the lock is none of the five");
}

}  // namespace
