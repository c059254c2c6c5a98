// The hooks through which the engine reads a request for isolation, on the reference model: one
// measure, room.xd; seven influences, each with a condition.
#include "console/isolation_request.h"

#include "console_fixture.h"
#include "continuous/exchange.h"
#include "fixtures/reference_model.h"

namespace {

class RequestTest : public testing::Test {
protected:
    // The entries that the hook of misbehaviours leaves, those of two measures that do not exist
    // included.
    int misbs(char const* request) {
        tDiag = IsolationRequest(request);
        int result = -1;
        said = streamsOf([&] { result = sorn_getMisbs("therm", 3, values); });
        return result;
    }
    int conds(char const* request) {
        tDiag = IsolationRequest(request);
        int result = -1;
        said = streamsOf([&] { result = sorn_getConds("therm", 7, values); });
        return result;
    }

    ReferenceModel model;
    int values[7] = {5, 5, 5, 5, 5, 5, 5};
    Streams said;
};

TEST_F(RequestTest, MisbehavioursAreNamed) {
    EXPECT_EQ(misbs("room.xd"), 1);
    EXPECT_EQ(values[0], 1);
    EXPECT_EQ(values[1], 0) << "all entries are set";
    EXPECT_EQ(values[2], 0);
    EXPECT_EQ(said.out + said.err, "");
    EXPECT_EQ(tDiag.token(), std::nullopt);
}

TEST_F(RequestTest, MisbehavioursEndAtADigit) {
    EXPECT_EQ(misbs("room.xd 1 0"), 1);
    EXPECT_EQ(values[0], 1);
    EXPECT_EQ(tDiag.token(), "1") << "the digit is left for the conditions";
}

TEST_F(RequestTest, NoMisbehaviourClearsAll) {
    EXPECT_EQ(misbs(""), 1);
    EXPECT_EQ(values[0] + values[1] + values[2], 0);
    EXPECT_EQ(misbs(nullptr), 1);
    EXPECT_EQ(misbs("0 room.xd"), 1);
    EXPECT_EQ(values[0], 0) << "nothing is read behind a digit";
}

// room.x is a variable and not measured; names are compared whole.
TEST_F(RequestTest, AnotherNameClearsTheRequest) {
    for (char const* name : {"room.x", "room.xdd", "room", "ROOM.XD"}) {
        EXPECT_EQ(misbs((std::string("room.xd ") + name + " room.xd").c_str()), 0);
        EXPECT_EQ(values[0], 0) << "the entries before it go as well";
        EXPECT_EQ(said.err, std::string("Variable ") + name +
                                " either is not measured or does not exist !\n");
        EXPECT_EQ(tDiag.token(), std::nullopt);
    }
}

TEST_F(RequestTest, ConditionsAreGivenInfluenceByInfluence) {
    EXPECT_EQ(conds("1 0 1 10 0x 1 0"), 1);
    int const expected[] = {1, 0, 1, 1, 0, 1, 0};
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(values[i], expected[i]) << i;
    EXPECT_EQ(tDiag.token(), std::nullopt);
}

TEST_F(RequestTest, WithoutAConditionOneIsTakenAndNoToken) {
    tavro_rt->influ[1]->cond = nullptr;
    EXPECT_EQ(conds("0 0 0 0 0 0 7"), 1);
    EXPECT_EQ(values[1], 1);
    EXPECT_EQ(values[0] + values[2] + values[3] + values[4] + values[5] + values[6], 0);
    EXPECT_EQ(tDiag.token(), "7") << "six tokens are taken";
}

TEST_F(RequestTest, MissingConditionsAreTold) {
    EXPECT_EQ(conds("1 1 1 1 1 1"), 0);
    EXPECT_EQ(said.err, "Not enough condition values !\n");
    EXPECT_EQ(conds(nullptr), 0);
    EXPECT_EQ(said.err, "Not enough condition values !\n");
}

TEST_F(RequestTest, WrongConditionsAreTold) {
    EXPECT_EQ(conds("1 2 1 1 1 1 1"), 0);
    EXPECT_EQ(said.err, "Wrong condition value !\n");
    EXPECT_EQ(tDiag.token(), "2");
    EXPECT_EQ(conds("x"), 0);
    EXPECT_EQ(said.err, "Wrong condition value !\n");
}

TEST_F(RequestTest, OneRequestServesBothHooks) {
    EXPECT_EQ(misbs("room.xd 1 1 1 1 1 1 0"), 1);
    EXPECT_EQ(sorn_getConds("therm", 7, values), 1);
    EXPECT_EQ(values[0], 1);
    EXPECT_EQ(values[6], 0);
}

}  // namespace
