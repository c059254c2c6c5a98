// The document and the tables of a run.
#include "report/document.h"

#include <gtest/gtest.h>

#include "report/made_up.h"
#include "report/table.h"

namespace {

using Json = nlohmann::ordered_json;

class Document : public testing::Test {
protected:
    Document() {
        recorder.add(measured(0.5), step(0, {candidate(1, 1, 2)}));
        recorder.add(measured(missing),
                     diagnosis(1, {candidate(2, -INFINITY, 2, {move("stuck_on", 4, 6)}, 1.0)}));
    }
    Json document() {
        RunFacts facts;
        facts.plantFile = "room.plant";
        facts.measureFile = "day \xff.csv";
        facts.options.rules = "sharp";
        facts.options.noise = {{"", 0.02}};
        Outcome const outcome = outcomeOf(recorder.record(), room, {});
        return Json::parse(textOf(documentOf(recorder.record(), outcome, room, facts)));
    }

    tavro::Plant const room = tavro::Plant::builtin("therm");
    Recorder recorder{room, true};
};

TEST_F(Document, TellsThePlantAndWhatWasAsked) {
    Json const d = document();
    EXPECT_EQ(d["format"], "tavro-run");
    EXPECT_EQ(d["version"], 1);
    EXPECT_EQ(d["tavro"], tavro::version());
    EXPECT_EQ(d["plant"]["name"], "therm");
    EXPECT_EQ(d["plant"]["measures"], Json::array({"room.xd"}));
    EXPECT_EQ(d["plant"]["modes"]["room.mode"], Json::array({"closed", "open", "unknown"}));
    EXPECT_EQ(d["run"]["noise"][""], 0.02);
    EXPECT_TRUE(d["run"]["inputs"].is_null());
    // No UTF-8, which no document may hold.
    EXPECT_EQ(d["run"]["measures"], "day \xef\xbf\xbd.csv");
}

// The room's equations, with the place of each in the causal graph.
TEST_F(Document, TellsTheCausalGraph) {
    Json const influences = document()["plant"]["influences"];
    ASSERT_EQ(influences.size(), 7U);
    EXPECT_EQ(influences[0]["name"], "T1.i1");
    EXPECT_EQ(influences[0]["cause"], "thermostat.h");
    EXPECT_EQ(influences[0]["effect"], "room.xdq");
    bool const integral = std::any_of(influences.begin(), influences.end(), [](Json const& i) {
        return i["name"] == "R1.i2" && i["kind"] == "integral" && i["cause"] == "room.xd" &&
               i["effect"] == "room.x";
    });
    EXPECT_TRUE(integral);
}

TEST_F(Document, WhatIsNoNumberIsNull) {
    Json const d = document();
    EXPECT_EQ(d["measures"]["room.xd"], Json::array({0.5, nullptr}));
    EXPECT_EQ(d["candidates"][1]["bounds"]["room.x"]["lower"], Json::array({nullptr}));
    EXPECT_EQ(d["candidates"][1]["bounds"]["room.x"]["upper"], Json::array({2.0}));
}

TEST_F(Document, TellsTheOutcome) {
    Json const outcome = document()["outcome"];
    EXPECT_EQ(outcome["status"], 10);
    EXPECT_EQ(outcome["verdict"], "explained");
    EXPECT_EQ(outcome["noticed"]["step"], 1);
    EXPECT_EQ(outcome["noticed"]["alarms"][0]["measure"], "room.xd");
    EXPECT_EQ(outcome["noticed"]["alarms"][0]["side"], "high");
    EXPECT_TRUE(outcome["stopped"].is_null());
    EXPECT_FALSE(outcome["answer"].empty());
}

TEST_F(Document, TellsDiagnosesAndStories) {
    Json const d = document();
    Json const& told = d["diagnoses"][0];
    EXPECT_EQ(told["suspects"][0][0]["influence"], "R1.i4");
    EXPECT_EQ(told["explanations"][0]["hypothesis"], 1);
    EXPECT_EQ(told["explanations"][0]["to"], "stuck_on");
    EXPECT_EQ(d["hypotheses"][1]["probability"], 1.0);
    EXPECT_EQ(d["hypotheses"][0]["alive"], false);
    EXPECT_EQ(d["candidates"][0]["hypothesis"], 0);
    EXPECT_EQ(d["candidates"][0]["last"], 0);
    EXPECT_EQ(d["alarms"][0]["step"], 1);
}

TEST_F(Document, EqualRunsGiveEqualBytes) {
    EXPECT_EQ(document().dump(), document().dump());
}

TEST_F(Document, AStepIsADocumentOfItsOwn) {
    Json const d = stepDocument(3, measured(missing), step(30, {candidate(5, 1, 2)}), room, {9});
    EXPECT_EQ(d["step"], 3);
    EXPECT_EQ(d["time"], 30.0);
    EXPECT_TRUE(d["measures"]["room.xd"].is_null());
    EXPECT_EQ(d["candidates"][0]["id"], 9);
    EXPECT_EQ(d["candidates"][0]["bounds"]["room.x"], Json::array({1.0, 2.0}));
    EXPECT_EQ(d["candidates"][0]["foretold"]["room.xd"], Json::array({0.0, 3.0}));
    EXPECT_FALSE(d.contains("suspects"));
}

TEST(Table, HasARowForEachCandidate) {
    tavro::Plant const room = tavro::Plant::builtin("therm");
    EXPECT_EQ(tableHeading(room),
              "step,time,place,candidate,agrees,rank,probability,story,room.xd,thermostat.mode,"
              "room.mode,room.xd lower,room.xd upper,room.x lower,room.x upper,room.xdq lower,"
              "room.xdq upper\r\n");
    EXPECT_EQ(tableRows(2, measured(0.1),
                        step(2, {candidate(1, 1, 2),
                                 candidate(2, -INFINITY, 4, {move("stuck_on", 1, 2)}, 0.5)}),
                        room, {3, 4}),
              "2,2,1,3,1,0,0,nothing failed,0.1,on,closed,1,2,1,2,1,2\r\n"
              "2,2,2,4,1,1,0.5,thermostat on -> stuck_on between 1 and 2,0.1,stuck_on,closed,,4,,4,"
              ",4\r\n");
}

TEST(Table, ACellWithACommaStandsInQuotes) {
    tavro::Plant const room = tavro::Plant::builtin("therm");
    std::string const rows = tableRows(
        0, measured(missing),
        step(0, {candidate(1, 1, 2, {move("stuck_on", 1, 1), move("unknown", 2, 2)})}), room, {0});
    EXPECT_NE(rows.find(",\"thermostat on -> stuck_on at 1, thermostat on -> unknown at 2\",,"),
              std::string::npos);
}

}  // namespace
