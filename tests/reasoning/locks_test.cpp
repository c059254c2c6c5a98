// Locks of elements: what holds them, what their siblings get, and what releases them.
#include "reasoning/Diagnoser.h"
#include "reasoning/reasoning_fixture.h"

using reasoning_fixture::SmallModel;

namespace {

class Locks : public testing::Test {
protected:
    Locks() {
        model.variable("m", {"a", "b", "c"});
        model.variable("n", {"x", "y"});
        model.start();
        model.state()->locked = false;
    }
    // The locks of the three values of m, and of x.
    std::string locks(State const* state) {
        std::string digits;
        for (char const* name : {"m=a", "m=b", "m=c", "n=x"})
            digits += std::to_string(model.elt(name, state)->lock);
        return digits;
    }
    std::string locks() { return locks(model.state()); }

    SmallModel model;
};

TEST_F(Locks, ATemporaryLockHoldsTheElementAndItsSiblings) {
    Diagnoser::lockTrajEls(model.elt("m=b"), model.state());
    EXPECT_EQ(locks(), "1012");
    EXPECT_TRUE(model.state()->locked);
}

TEST_F(Locks, APermanentLockDoesToo) {
    Diagnoser::lockTrajElsPerm(model.elt("m=b"), model.state());
    EXPECT_EQ(locks(), "4342");
    EXPECT_TRUE(model.state()->locked);
}

TEST_F(Locks, ALockedElementKeepsItsLockButTheStateCountsAsLocked) {
    for (int const lock : {LOCK_TRUE, LOCK_FALSE, LOCK_TRUE_PERM, LOCK_FALSE_PERM}) {
        for (auto const action :
             {static_cast<void (*)(TrajEl*, State*)>(&Diagnoser::lockTrajEls),
              static_cast<void (*)(TrajEl*, State*)>(&Diagnoser::lockTrajElsPerm)}) {
            model.elt("m=b")->lock = lock;
            model.state()->locked = false;
            action(model.elt("m=b"), model.state());
            EXPECT_EQ(locks(), "2" + std::to_string(lock) + "22");
            EXPECT_TRUE(model.state()->locked);
        }
    }
}

TEST_F(Locks, SiblingsAreLockedWhateverTheyHeld) {
    model.elt("m=a")->lock = LOCK_TRUE_PERM;
    Diagnoser::lockTrajEls(model.elt("m=b"), model.state());
    EXPECT_EQ(locks(), "1012");
}

TEST_F(Locks, SiblingsThatTheStateDoesNotHoldAreLeftOut) {
    model.state()->removeElt(model.atom("m=c")->getId());
    Diagnoser::lockTrajElsPerm(model.elt("m=b"), model.state());
    EXPECT_EQ(model.elt("m=a")->lock, LOCK_FALSE_PERM);
    EXPECT_EQ(model.elt("m=b")->lock, LOCK_TRUE_PERM);
}

TEST_F(Locks, AnElementThatTheStateReplacedLocksItselfAndTheSiblingsOfTheState) {
    TrajEl* old = model.elt("m=b");
    TrajEl* fresh = model.state()->addElt(old, true);
    ASSERT_NE(fresh, old);
    Diagnoser::lockTrajEls(old, model.state());
    EXPECT_EQ(old->lock, LOCK_TRUE);
    EXPECT_EQ(locks(), "1212");
}

TEST_F(Locks, ANegativeLockHoldsTheElementAlone) {
    model.elt("m=b")->lock = LOCK_TRUE;  // whatever it held
    Diagnoser::lockTrajElsNegPerm(model.elt("m=b"), model.state());
    EXPECT_EQ(locks(), "2422");
    EXPECT_TRUE(model.state()->locked);
}

TEST_F(Locks, TheSignChoosesThePermanentLock) {
    Diagnoser::lockTrajElsPerm(model.elt("m=b"), model.state(), true);
    EXPECT_EQ(locks(), "2422");
    Diagnoser::lockTrajElsPerm(model.elt("m=a"), model.state(), false);
    EXPECT_EQ(locks(), "3442");
}

TEST_F(Locks, UnlockingAStateReleasesTheTemporaryLocks) {
    Diagnoser::lockTrajEls(model.elt("m=b"), model.state());
    Diagnoser::lockTrajElsPerm(model.elt("n=x"), model.state());
    Diagnoser::unlockState(model.state());
    EXPECT_EQ(locks(), "2223");
    EXPECT_EQ(model.elt("n=y")->lock, LOCK_FALSE_PERM);
    EXPECT_FALSE(model.state()->locked);
}

TEST_F(Locks, UnlockingATrajectoryForgetsItsFailures) {
    model.history->addCopyState(1, model.state(), false);
    State* later = model.history->getState(1);
    model.history->rank = 3.0;
    model.state()->failCount = 2.0;
    later->failCount = 1.0;
    Diagnoser::lockTrajEls(model.elt("m=a"), model.state());
    Diagnoser::lockTrajEls(model.elt("m=b", later), later);
    later->locked = false;  // such a state keeps its locks
    Diagnoser::unlockTrajectory(model.history.get());
    EXPECT_EQ(locks(), "2222");
    EXPECT_FALSE(model.state()->locked);
    EXPECT_EQ(locks(later), "1012");
    EXPECT_EQ(model.state()->failCount, 0.0);
    EXPECT_EQ(later->failCount, 0.0);
    EXPECT_EQ(model.history->rank, 0.0);
}

}  // namespace
