// The check that the joint guard probabilities of all components sum to 1.
//
// Components of one letter are walked by their character code, R (82) before T (84). The table for
// R comes first; each further component repeats it once for each of its transitions.
#include "fixtures/the_run.h"
#include "model/model_fixture.h"

using model_fixture::complaint;
using model_fixture::printed;
using model_fixture::RegistryTest;

namespace {

std::string report(std::string const& size, std::string const& rest) {
    return "[testTransitionsProbas] --> testing...\n"
           "[testTransitionsProbas] --> tabd size : " +
           size + "\n" + rest;
}

class JointProbabilities : public RegistryTest {
protected:
    // What the check prints on standard output; *told* is what it says on the error stream.
    std::string check() {
        std::string output;
        told = complaint(
            [&] { output = printed([] { theRun().scheduler.testTransitionsProbas(); }); });
        return output;
    }

    std::string told;
};

// R: 0.25 0.75; times 0.5, then twice times 0.25.
TEST_F(JointProbabilities, AreTheProductsOfTheGuardProbabilities) {
    component("T", {0.5, 0.25, 0.25});
    component("R", {0.25, 0.75});
    EXPECT_EQ(check(), report("6",
                              "0.125 0.375 0.0625 0.1875 0.0625 0.1875 "
                              "test of transitions probabilities : 1\n"));
    EXPECT_EQ(told, "");
}

TEST_F(JointProbabilities, OfOneComponentAreItsOwn) {
    component("R", {0.25, 0.5, 0.5});
    EXPECT_EQ(check(), report("3", "0.25 0.5 0.5 test of transitions probabilities : 1.25\n"));
}

// R: 0.5 0.5; S (83): 0.25 of both, 0.25 of both, 0.5 of both; T: half of all six, twice.
TEST_F(JointProbabilities, OfThreeComponents) {
    component("R", {0.5, 0.5});
    component("S", {0.25, 0.25, 0.5});
    component("T", {0.5, 0.5});
    EXPECT_EQ(check(), report("12",
                              "0.0625 0.0625 0.0625 0.0625 0.125 0.125 "
                              "0.0625 0.0625 0.0625 0.0625 0.125 0.125 "
                              "test of transitions probabilities : 1\n"));
}

// While the width of the table is 1 the entries are overwritten, so the 0.5 of R is lost.
TEST_F(JointProbabilities, LoneTransitionOfTheFirstComponentIsOverwritten) {
    component("R", {0.5});
    component("T", {0.25, 0.75});
    EXPECT_EQ(check(), report("2", "0.25 0.75 test of transitions probabilities : 1\n"));
}

TEST_F(JointProbabilities, LoneTransitionOfALaterComponentIsMultiplied) {
    component("R", {0.25, 0.75});
    component("T", {0.5});
    EXPECT_EQ(check(), report("2", "0.125 0.375 test of transitions probabilities : 0.5\n"));
}

TEST_F(JointProbabilities, SkipNullEntries) {
    component("R", {0.25, 0.75});
    theComp("S");
    EXPECT_EQ(check(), report("2", "0.25 0.75 test of transitions probabilities : 1\n"));
}

TEST_F(JointProbabilities, WithoutComponentsSumToZero) {
    EXPECT_EQ(check(), report("1", "0 test of transitions probabilities : 0\n"));
}

// Filling the table would run beyond its end: it has no entry at all.
TEST_F(JointProbabilities, OfAComponentWithoutTransitionsAreTold) {
    component("R", {0.25, 0.75});
    component("T", {});
    EXPECT_EQ(check(), report("0", "test of transitions probabilities : 0\n"));
    EXPECT_EQ(told, "A component has no transitions: there are no joint probabilities to test.\n");
}

// 4097 * 4097, one row above the widest table.
TEST_F(JointProbabilities, TooManyAreToldWithTheirExactNumber) {
    component("R", std::vector<double>(4097, 0.5));
    component("T", std::vector<double>(4097, 0.5));
    EXPECT_EQ(check(), report("16785409", ""));
    EXPECT_EQ(told, "Too many joint transitions to test their probabilities.\n");
}

// 256 to the power of 8 is one more than the largest number, and must not come round to 0.
TEST_F(JointProbabilities, TooManyToCountAreToldToo) {
    for (char const* name : {"a", "b", "c", "d", "e", "f", "g", "h"})
        component(name, std::vector<double>(256, 0.5));
    EXPECT_EQ(check(), report("18446744073709551615", ""));
    EXPECT_EQ(told, "Too many joint transitions to test their probabilities.\n");
}

}  // namespace
