// Scenario files: what is read, what is told, and what a bad file leaves.
#include "fixtures/the_run.h"
#include "reasoning/scheduler_fixture.h"

using namespace scheduler_fixture;

namespace {

class Scenarios : public testing::Test {
protected:
    Scenarios() {
        model.addMoves();
        model.start();
    }

    std::string load(std::string const& text) {
        TextFile const file(text);
        path = file.path;
        return complaint([&] { theRun().sMM->loadScenario(file.path); });
    }
    // The event of a date as "C" or "O" and the values of its atoms; "-" when there is none.
    static std::string eventAt(double date) {
        auto const found = theRun().sMM->scenario.find(date);
        if (found == theRun().sMM->scenario.end() || found->second == nullptr)
            return "-";
        std::string text = found->second->isCommand ? "C" : "O";
        for (Atom const* atom : found->second->atoms)
            text += " " + atom->value;
        return text;
    }
    std::string noKind(int line) const {
        return "scenario file " + path + ", line " + std::to_string(line) +
               ": no kind of event, line skipped\n";
    }

    Valve model;
    std::string path;  // of the file loaded last
};

constexpr char const* badAtom = "Scheduler::readFromScenario --> received command is not valid : ";

TEST_F(Scenarios, ACommandLineIsReadAndTold) {
    EXPECT_EQ(load("2 Command valve.cmd=open valve.cmd=none\n"),
              "event date: 2\n"
              "regular token : valve.cmd=open\n"
              "Scheduler receives a command: valve.cmd=open\n"
              "regular token : valve.cmd=none\n"
              "Scheduler receives a command: valve.cmd=none\n");
    EXPECT_EQ(eventAt(2.0), "C open none");
    EXPECT_EQ(theRun().sMM->scenario.size(), 1u);
}

TEST_F(Scenarios, AnyOtherKindMarksObservations) {
    EXPECT_EQ(load("0.1 Commands valve.mode=open\n"),
              "event date: 0.1\n"
              "regular token : valve.mode=open\n"
              "Scheduler receives an observation: valve.mode=open\n");
    // The date is the double that the text 0.1 names.
    EXPECT_EQ(eventAt(0.1), "O open");
}

TEST_F(Scenarios, AfterACommandEveryLaterLineOfAFileIsOne) {
    load("1 Obs valve.mode=closed\n2 Command valve.cmd=open\n3 Obs valve.mode=open\n");
    EXPECT_EQ(eventAt(1.0), "O closed");
    EXPECT_EQ(eventAt(2.0), "C open");
    EXPECT_EQ(eventAt(3.0), "C open");
    // The next file starts afresh.
    load("4 Obs valve.mode=open\n");
    EXPECT_EQ(eventAt(4.0), "O open");
}

TEST_F(Scenarios, ALaterLineOfTheSameDateReplacesTheEarlier) {
    load("5 Command valve.cmd=open\n5.0 Command valve.cmd=close\n");
    EXPECT_EQ(eventAt(5.0), "C close");
    EXPECT_EQ(theRun().sMM->scenario.size(), 1u);
}

TEST_F(Scenarios, ALineWithoutAtomsIsAnEmptyEvent) {
    EXPECT_EQ(load("7 Command\n"), "event date: 7\n");
    ASSERT_EQ(theRun().sMM->scenario.count(7.0), 1u);
    EXPECT_TRUE(theRun().sMM->scenario[7.0]->atoms.empty());
    EXPECT_EQ(eventAt(7.0), "C");
}

TEST_F(Scenarios, ATabSeparatesNothing) {
    EXPECT_EQ(load("1 Command\tvalve.cmd=open\n"), "event date: 1\n");
    EXPECT_EQ(eventAt(1.0), "O");
}

TEST_F(Scenarios, ALastLineWithoutALineEndCounts) {
    load("  1   Command   valve.cmd=open");
    EXPECT_EQ(eventAt(1.0), "C open");
}

TEST_F(Scenarios, AMissingFileIsToldAndLeavesNoEvents) {
    std::string const missing = "/nonexistent-directory/file.scn";
    EXPECT_EQ(complaint([&] { theRun().sMM->loadScenario(missing); }),
              "can't open scenario file: " + missing + "\n");
    EXPECT_TRUE(theRun().sMM->scenario.empty());
}

TEST_F(Scenarios, ADirectoryIsToldAndNoLineIsReadFromIt) {
    EXPECT_EQ(complaint([] { theRun().sMM->loadScenario("/tmp/"); }),
              "/tmp/ is a directory\ncan't open scenario file: /tmp/\n");
    EXPECT_TRUE(theRun().sMM->scenario.empty());
}

TEST_F(Scenarios, AnEmptyFileHoldsNoEvents) {
    EXPECT_EQ(load(""), "");
    EXPECT_TRUE(theRun().sMM->scenario.empty());
}

TEST_F(Scenarios, ABlankLineIsToldAndSkipped) {
    std::string const text = load("\n   \n1 Command valve.cmd=open\n");
    EXPECT_EQ(text, noKind(1) + noKind(2) +
                        "event date: 1\n"
                        "regular token : valve.cmd=open\n"
                        "Scheduler receives a command: valve.cmd=open\n");
    EXPECT_EQ(eventAt(1.0), "C open");
    EXPECT_EQ(theRun().sMM->scenario.size(), 1u);
}

TEST_F(Scenarios, ADateWithoutAKindIsToldAndSkipped) {
    std::string const text = load("1\n2 Command valve.cmd=open\n");
    EXPECT_EQ(text.substr(0, text.find("event date: 2")), "event date: 1\n" + noKind(1));
    EXPECT_EQ(eventAt(1.0), "-");
    EXPECT_EQ(eventAt(2.0), "C open");
}

TEST_F(Scenarios, AnUnknownAtomEndsTheReadingAndDropsItsEvent) {
    EXPECT_EQ(load("1 Obs valve.mode=closed\n2 Obs valve.mode=open valve.cmd=shut\n"
                   "3 Obs valve.mode=open\n"),
              "event date: 1\n"
              "regular token : valve.mode=closed\n"
              "Scheduler receives an observation: valve.mode=closed\n"
              "event date: 2\n"
              "regular token : valve.mode=open\n"
              "Scheduler receives an observation: valve.mode=open\n"
              "regular token : valve.cmd=shut\n" +
                  std::string(badAtom) + "valve.cmd=shut\n");
    EXPECT_EQ(eventAt(1.0), "O closed");
    EXPECT_EQ(eventAt(2.0), "-");
    EXPECT_EQ(eventAt(3.0), "-");
    // The word did not enter the registry.
    EXPECT_EQ(thePlant().active_atoms.count("valve.cmd=shut"), 0u);
}

TEST_F(Scenarios, ALineEndOfAnotherSystemBelongsToTheAtom) {
    EXPECT_EQ(load("1 Command valve.cmd=open\r\n"),
              "event date: 1\nregular token : valve.cmd=open\r\n" + std::string(badAtom) +
                  "valve.cmd=open\r\n");
}

// 1023 characters fit: the blanks fill the first piece, and what follows is a line of its own.
TEST_F(Scenarios, ALongLineCountsAsSeveral) {
    std::string first = "1 Command valve.cmd=open";
    first.resize(1023, ' ');
    load(first + "5 Command valve.cmd=close\n");
    EXPECT_EQ(eventAt(1.0), "C open");
    EXPECT_EQ(eventAt(5.0), "C close");
}

TEST_F(Scenarios, ALineOfAMegabyteIsTakenInPieces) {
    // 1048576 blanks are 1025 pieces of 1023 and one of a single blank with the line end.
    std::string const text = load(std::string(1 << 20, ' ') + "\n1 Command valve.cmd=open\n");
    int skipped = 0;
    for (auto at = text.find("line skipped"); at != std::string::npos;
         at = text.find("line skipped", at + 1))
        ++skipped;
    EXPECT_EQ(skipped, (1 << 20) / 1023 + 1);
    EXPECT_EQ(eventAt(1.0), "C open");
}

TEST_F(Scenarios, AWordOfAMegabyteIsNoAtom) {
    std::string const text = load("1 Command " + std::string(1 << 20, 'x') + "\n");
    // The first piece of the line holds 1023 characters, 10 of them before the word.
    std::string const piece(1013, 'x');
    EXPECT_EQ(text, "event date: 1\nregular token : " + piece + "\n" + badAtom + piece + "\n");
    EXPECT_TRUE(theRun().sMM->scenario.empty());
}

TEST_F(Scenarios, BytesWithoutAMeaningDoNoHarm) {
    std::string text = "1 Command valve.cmd=open\n2 Command valve.cmd=";
    text += '\0';
    text += "\n\xff\xfe\x01 \xff\n";
    load(text);
    EXPECT_EQ(eventAt(1.0), "C open");
}

// ---- The undated form ----

TEST_F(Scenarios, UndatedLinesComeOneAtATime) {
    TextFile const file("Command valve.cmd=open\nObs valve.mode=open valve.cmd=none\nObs\n");
    ASSERT_TRUE(theRun().sMM->openScenario(file.path));
    std::unique_ptr<scenarEvent> event;
    EXPECT_EQ(complaint([&] { event = theRun().sMM->readFromScenario(); }),
              "Scheduler receives a command: valve.cmd=open\n");
    ASSERT_NE(event, nullptr);
    EXPECT_TRUE(event->isCommand);
    EXPECT_EQ(event->atoms, std::vector<Atom*>{model.open});
    // Here a command does not stick.
    EXPECT_EQ(complaint([&] { event = theRun().sMM->readFromScenario(); }),
              "Scheduler receives an observation: valve.mode=open\n"
              "Scheduler receives an observation: valve.cmd=none\n");
    EXPECT_FALSE(event->isCommand);
    EXPECT_EQ(event->atoms, (std::vector<Atom*>{model.isOpen, model.none}));
    EXPECT_EQ(complaint([&] { event = theRun().sMM->readFromScenario(); }), "");
    ASSERT_NE(event, nullptr);
    EXPECT_TRUE(event->atoms.empty());
    EXPECT_EQ(complaint([&] { event = theRun().sMM->readFromScenario(); }),
              "end of the scenario !\n");
    EXPECT_EQ(event, nullptr);
}

TEST_F(Scenarios, AnUnknownAtomOfAnUndatedLineGivesNoEvent) {
    TextFile const file("Command valve.cmd=open valve.cmd=shut\nObs valve.mode=open\n");
    ASSERT_TRUE(theRun().sMM->openScenario(file.path));
    std::unique_ptr<scenarEvent> event;
    EXPECT_EQ(complaint([&] { event = theRun().sMM->readFromScenario(); }),
              "Scheduler receives a command: valve.cmd=open\n" + std::string(badAtom) +
                  "valve.cmd=shut\n");
    EXPECT_EQ(event, nullptr);
}

TEST_F(Scenarios, ABlankUndatedLineIsToldAndSkipped) {
    TextFile const file("\nObs valve.mode=open\n");
    path = file.path;
    ASSERT_TRUE(theRun().sMM->openScenario(file.path));
    std::unique_ptr<scenarEvent> event;
    EXPECT_EQ(complaint([&] { event = theRun().sMM->readFromScenario(); }),
              noKind(1) + "Scheduler receives an observation: valve.mode=open\n");
    EXPECT_NE(event, nullptr);
}

TEST_F(Scenarios, WithoutAnOpenFileTheScenarioIsAtItsEnd) {
    std::unique_ptr<scenarEvent> event;
    EXPECT_EQ(complaint([&] { event = theRun().sMM->readFromScenario(); }),
              "end of the scenario !\n");
    EXPECT_EQ(event, nullptr);
    EXPECT_EQ(complaint([] { EXPECT_FALSE(theRun().sMM->openScenario("/nonexistent/x")); }),
              "can't open scenario file: /nonexistent/x\n");
}

// A date is what can be read of a number.
TEST_F(Scenarios, ADateThatIsNoNumberIsZero) {
    load("soon Obs valve.mode=open\n2x Obs valve.mode=closed\n");
    EXPECT_EQ(eventAt(0.0), "O open");
    EXPECT_EQ(eventAt(2.0), "O closed");
}

TEST_F(Scenarios, AfterAnUnknownAtomTheFileStaysOpen) {
    load("1 Obs nothing\nObs valve.mode=open\n");
    std::unique_ptr<scenarEvent> event;
    complaint([&] { event = theRun().sMM->readFromScenario(); });
    ASSERT_NE(event, nullptr);
    EXPECT_EQ(event->atoms, std::vector<Atom*>{model.isOpen});
    load("1 Obs valve.mode=open\n");
    EXPECT_EQ(complaint([&] { event = theRun().sMM->readFromScenario(); }),
              "end of the scenario !\n");
}

}  // namespace
