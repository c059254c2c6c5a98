// The hooks through which the engine reads a request for isolation, on the reference model: one
// measure, room.xd; seven influences, each with a condition.
#include "console/isolation_request.h"
#include "fixtures/the_run.h"

#include "console_fixture.h"
#include "fixtures/reference_model.h"
#include "hybrid/hybrid_fixture.h"

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
    theRun().tavro_rt->influ[1]->cond = nullptr;
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

// The whole request, as the function that no command leads to answers it.
class DiagnosisTest : public RequestTest {
protected:
    std::string diagnose(char const* request) {
        said = streamsOf([&] { EXPECT_EQ(snDiagnosis(request), 1); });
        EXPECT_EQ(said.out, "");
        return said.err;
    }
};

constexpr char const* levelLines =
    "\t fault1 ---> NO One-Fault-Exoneration AND    Multiple-Fault-Compensation\n"
    "\t fault2 --->    One-fault-Exoneration AND    Multiple-Fault-Compensation\n"
    "\t fault3 --->    One-fault-Exoneration AND NO Multiple-Fault-Compensation";

TEST_F(DiagnosisTest, WithoutALevelTheUsageIsTold) {
    std::string const usage =
        std::string("\nUsage: diagnosis fault[1 2 3] misb-var1 misb-var2 ...\n") + levelLines +
        "n\n";
    EXPECT_EQ(diagnose(nullptr), usage);
    EXPECT_EQ(diagnose(""), usage);
    EXPECT_EQ(diagnose("   "), usage);
}

TEST_F(DiagnosisTest, AnUnknownLevelIsTold) {
    std::string const answer = std::string(". Expecting one of\n") + levelLines + "\n\n";
    EXPECT_EQ(diagnose("nofault room.xd"), "Unknown parameter nofault" + answer);
    EXPECT_EQ(diagnose("fault4"), "Unknown parameter fault4" + answer);
}

TEST_F(DiagnosisTest, AMeasureMustFollow) {
    EXPECT_EQ(diagnose("fault1"), "Missing misbehaving variables !\n");
}

TEST_F(DiagnosisTest, AModelWithoutAContinuousSideHasNothingToDiagnose) {
    s_runtime* const own = theRun().tavro_rt;
    theRun().tavro_rt = nullptr;
    EXPECT_EQ(diagnose("fault1 room.xd"), "The model has no continuous runtime.\n");
    theRun().tavro_rt = own;
}

// Conditions are given in the order of the influences: the heater T1.i1, the outside R1.i1, the
// integral R1.i2, the uncertain term R1.i3, the exchange closed R1.i4 and open R1.i5, the room's
// own temperature R1.i6. With the room closed the walk from room.xd meets R1.i4, goes on through
// room.xdq to T1.i1, to R1.i6 and, a cycle before, its integral R1.i2 (histories begin active), to
// R1.i1, and ends with R1.i3. One measure misbehaves: each suspect is a diagnosis of its own.
constexpr char const* heated =
    "[{R1.i4,0,((room.mode=closed))}]"
    "[{T1.i1,0,(((thermostat.mode=stuck_on)) | ((thermostat.mode=on)))}]"
    "[{R1.i6,0,(((room.mode=closed)) | ((room.mode=open)))}]";
constexpr char const* integral = "[{R1.i2,1,(((room.mode=closed)) | ((room.mode=open)))}]";
constexpr char const* outside =
    "[{R1.i1,0,(((thermostat.mode=stuck_off)) | ((thermostat.mode=off)))}]";
constexpr char const* uncertain = "[{R1.i3,0,(((room.mode=closed)) | ((room.mode=open)))}]";

std::string resultsOf(std::initializer_list<char const*> diagnoses) {
    std::string text = "Diagnostic Results:\n";
    for (char const* diagnosis : diagnoses)
        text += diagnosis;
    return text += "\n";
}

TEST_F(DiagnosisTest, SuspectsAreTheActiveInfluencesUpstream) {
    EXPECT_EQ(diagnose("fault1 room.xd 1 1 1 1 1 0 1"),
              resultsOf({heated, integral, outside, uncertain}));
}

// The conditions of a request are the newest of the history: the integral, given inactive, is no
// suspect a cycle later, and is one again another cycle later.
TEST_F(DiagnosisTest, ConditionsEnterTheHistory) {
    diagnose("fault1 room.xd 1 1 0 1 1 0 1");
    EXPECT_EQ(diagnose("fault1 room.xd 1 1 1 1 1 0 1"), resultsOf({heated, outside, uncertain}));
    EXPECT_EQ(diagnose("fault1 room.xd 1 1 1 1 1 0 1"),
              resultsOf({heated, integral, outside, uncertain}));
}

TEST_F(DiagnosisTest, WithOneMeasureEveryLevelIsTheFirst) {
    for (char const* request : {"fault2 room.xd 1 1 1 1 1 0 1", "fault3 room.xd 1 1 1 1 1 0 1",
                                "xfault1y room.xd 1 1 1 1 1 0 1"})
        EXPECT_EQ(diagnose(request), resultsOf({heated, integral, outside, uncertain})) << request;
}

TEST_F(DiagnosisTest, WithoutAnActiveConditionTheModelIsInvalid) {
    EXPECT_EQ(diagnose("fault1 room.xd 0 0 0 0 0 0 0"), "Invalid model !\n");
}

// A wrong name leaves no misbehaviour, and no token for the conditions.
TEST_F(DiagnosisTest, AWrongNameDiagnosesNothing) {
    EXPECT_EQ(diagnose("fault1 room.y 1 1 1 1 1 0 1"),
              "Variable room.y either is not measured or does not exist !\n"
              "Not enough condition values !\n");
}

TEST(DiagnosisDuringARun, IsOnTheModelsOwnRuntime) {
    hybrid_fixture::RoomRun const run(0.8);
    ASSERT_NE(theRun().hybNT->rt.get(), theRun().tavro_rt);
    streamsOf([] { snDiagnosis("fault1 room.xd 1 1 1 1 1 0 1"); });
    EXPECT_EQ(theRun().tavro_rt->measure[0]->mesmisb, 1);
    EXPECT_EQ(theRun().hybNT->rt->measure[0]->mesmisb, 0);
}

TEST_F(DiagnosisTest, NoCommandLeadsToIt) {
    EXPECT_EQ(whichCom(cde, "diagnosis"), nullptr);
}

}  // namespace
