// Opening, reading and closing the data files of a run, with files on disk.
#include "console/exchange.h"
#include "fixtures/the_run.h"

#include <cmath>
#include <limits>
#include <vector>

#include "console/run.h"
#include "console_fixture.h"
#include "fixtures/reference_model.h"

namespace {

// ---- Preparation ----

struct Preparation {
    int (*prepare)();
    std::FILE** stream;
    std::string* path;
    std::string label, okText;
    bool written;
};

// By the message up to its line end.
void PrintTo(Preparation const& preparation, std::ostream* out) {
    *out << preparation.okText.substr(0, preparation.okText.find('\n'));
}

class PrepareTest : public testing::TestWithParam<Preparation> {
protected:
    int result = -1;
    Streams prepare() {
        return streamsOf([this] { result = GetParam().prepare(); });
    }

    ConsoleFiles files;
};

TEST_P(PrepareTest, OpensTheFile) {
    *GetParam().path = "obs/there";
    WorkDirectory::write("obs/there", "12");
    Streams const said = prepare();
    EXPECT_EQ(result, 1);
    EXPECT_EQ(said.out, (GetParam().label.empty() ? "" : GetParam().label + "obs/there\n") +
                            GetParam().okText);
    EXPECT_EQ(said.err, "");
    ASSERT_NE(*GetParam().stream, nullptr);
    EXPECT_EQ(WorkDirectory::read("obs/there"), GetParam().written ? "" : "12")
        << "a file to be written begins empty";
}

TEST_P(PrepareTest, TellsAFileThatCannotBeOpened) {
    *GetParam().path = "nowhere/there";
    Streams const said = prepare();
    EXPECT_EQ(result, 0);
    EXPECT_EQ(said.out, GetParam().label.empty() ? "" : GetParam().label + "nowhere/there\n");
    EXPECT_EQ(said.err, "Can't open file nowhere/there\n");
    EXPECT_EQ(*GetParam().stream, nullptr);
}

TEST_P(PrepareTest, TakesNoFileForAnEmptyPath) {
    GetParam().path->clear();
    Streams const said = prepare();
    EXPECT_EQ(result, 1);
    EXPECT_EQ(said.out,
              (GetParam().label.empty() ? "" : GetParam().label + "\n") + GetParam().okText);
    EXPECT_EQ(*GetParam().stream, GetParam().stream == &dataOut ? stdout : nullptr);
}

TEST_P(PrepareTest, OpensAgainFromTheStart) {
    *GetParam().path = "obs/there";
    WorkDirectory::write("obs/there", "12");
    for (int i = 0; i < 2; ++i) {
        prepare();
        std::FILE* stream = *GetParam().stream;
        if (GetParam().written) {
            EXPECT_EQ(WorkDirectory::read("obs/there"), "");
            std::fputs("x", stream);
        } else {
            EXPECT_EQ(std::fgetc(stream), '1');
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Files, PrepareTest,
                         testing::Values(Preparation{prepareEI, &dataIn, &inputFile,
                                                     "inputfile : ", "input file is ok\n", false},
                                         Preparation{prepareMS, &measIn, &measureFile,
                                                     "inputfile : ", "measure file is ok\n", false},
                                         Preparation{prepareDO, &dataOut, &displayFile, "",
                                                     "display file is ok\n", true},
                                         Preparation{prepareMO, &modesOut, &modesFile, "",
                                                     "modes file is ok\n", true}));

TEST(Prepare, ADirectoryReadsAsAnEmptyFile) {
    ConsoleFiles const files;
    inputFile = "inp/";
    Streams const said = streamsOf([] {
        EXPECT_EQ(prepareEI(), 1);
        double value = 3.0;
        EXPECT_EQ(tavro_getInputs("", 0, &value), 1);
    });
    EXPECT_EQ(said.out, "inputfile : inp/\ninput file is ok\ninputs: \n");
    EXPECT_EQ(said.err, "");
}

TEST(PrepareSc, LoadsAScenario) {
    ReferenceModel const model;
    ConsoleFiles const files;
    scenarFile = "inp/events";
    WorkDirectory::write("inp/events", "2 Command room.cmdin=open\n");
    Streams const said = streamsOf([] { EXPECT_EQ(prepareSc(), 1); });
    EXPECT_EQ(said.out, "scenarFIle: inp/events\n");
    EXPECT_EQ(theRun().sMM->scenario.count(2.0), 1u);
}

TEST(PrepareSc, AnswersOneWithoutAFile) {
    ReferenceModel const model;
    ConsoleFiles const files;
    scenarFile = "inp/none";
    Streams const said = streamsOf([] { EXPECT_EQ(prepareSc(), 1); });
    EXPECT_EQ(said.err, "can't open scenario file: inp/none\n");
    scenarFile.clear();
    EXPECT_EQ(streamsOf([] { EXPECT_EQ(prepareSc(), 1); }).out, "scenarFIle: \n");
}

// ---- Reading ----

class ReadTest : public testing::Test {
protected:
    // The file of measures holds *text*.
    void open(std::string const& text) {
        WorkDirectory::write(measureFile, text);
        streamsOf([] { prepareMS(); });
        simTime = 3.0;
    }
    Streams read(int count) {
        return streamsOf([&] { EXPECT_EQ(tavro_getMeasures("", count, values.data()), 1); });
    }

    ConsoleFiles files;
    std::vector<double> values{-1.0, -2.0, -3.0};
};

using Values = std::vector<double>;

TEST_F(ReadTest, ALineIsAStep) {
    open("1 2.5 -3e1\n4\t5 6\n");
    EXPECT_EQ(read(3).out, "measures: 1 2.5 -30 \n");
    EXPECT_EQ(values, (Values{1, 2.5, -30}));
    EXPECT_EQ(read(3).out, "measures: 4 5 6 \n");
}

TEST_F(ReadTest, WhatFollowsTheColumnsIsSkipped) {
    open("1 2 3 4 and words\n5 6\n");
    EXPECT_EQ(read(2).out, "measures: 1 2 \n");
    EXPECT_EQ(read(2).out, "measures: 5 6 \n");
}

TEST_F(ReadTest, MissingNumbersComeFromTheNextLine) {
    open("1\n2 3 4\n5 6 7\n");
    EXPECT_EQ(read(3).out, "measures: 1 2 3 \n");
    EXPECT_EQ(read(3).out, "measures: 5 6 7 \n");
}

TEST_F(ReadTest, BeyondTheEndTheValuesStay) {
    open("1 2 3\n4");
    read(3);
    EXPECT_EQ(read(3).out, "measures: 4 2 3 \n");
    EXPECT_EQ(read(3).out, "measures: 4 2 3 \n");
}

TEST_F(ReadTest, AWordLeavesTheValuesAndTheLineIsSkipped) {
    open("1 word 3\n4 5 6\n");
    Streams const said = read(3);
    EXPECT_EQ(said.out, "measures: 1 -2 -3 \n");
    EXPECT_EQ(said.err, "obs/day: value 2 of time 3 is not a number, -2 stays\n");
    EXPECT_EQ(read(3).out, "measures: 4 5 6 \n");
}

TEST_F(ReadTest, OnlyFiniteNumbersCount) {
    open("nan inf 1\n-inf 1e999 2\n");
    Streams const said = read(3);
    EXPECT_EQ(values, (Values{-1, -2, 1}));
    EXPECT_EQ(said.err,
              "obs/day: value 1 of time 3 is not a number, -1 stays\n"
              "obs/day: value 2 of time 3 is not a number, -2 stays\n");
    read(3);
    EXPECT_EQ(values, (Values{-1, -2, 2}));
}

TEST_F(ReadTest, WithoutColumnsNothingButTheLabelIsWritten) {
    open("1 2\n3 4\n");
    EXPECT_EQ(read(0).out, "measures: \n");
    EXPECT_EQ(values, (Values{-1, -2, -3}));
}

TEST_F(ReadTest, AClosedFileIsAnEmptyOne) {
    closeRunFiles();
    EXPECT_EQ(read(2).out, "measures: -1 -2 \n");
}

TEST_F(ReadTest, ADirectoryCannotBeRead) {
    measureFile = "obs/";
    streamsOf([] { prepareMS(); });
    Streams const said = read(2);
    EXPECT_EQ(said.out, "measures: -1 -2 \n");
    EXPECT_EQ(said.err, "Can't read file obs/\n");
}

TEST_F(ReadTest, InputsHaveTheirOwnFileAndLabel) {
    open("1 2\n");
    inputFile = "inp/day";
    WorkDirectory::write(inputFile, "7 8\n");
    streamsOf([] { prepareEI(); });
    Streams const said = streamsOf([&] { EXPECT_EQ(tavro_getInputs("", 2, values.data()), 1); });
    EXPECT_EQ(said.out, "inputs: 7 8 \n");
    EXPECT_EQ(read(2).out, "measures: 1 2 \n");
}

// ---- What is told of a file ----

using Told = std::vector<std::string>;

// What three lines of two numbers tell.
class OddLinesTest : public ReadTest {
protected:
    Told told(std::string const& text) {
        open(text);
        Told messages;
        for (simTime = 0.0; simTime < 3.0; ++simTime)
            messages.push_back(read(2).err);
        return messages;
    }
};

TEST_F(OddLinesTest, NothingOfLinesThatAreInOrder) {
    EXPECT_EQ(told("1 2\n 3\t4 \r\n5 6"), (Told{"", "", ""}));
    EXPECT_EQ(told("1 2 # 3\n3 4 five\n5 6 7th"), (Told{"", "", ""})) << "comments";
    EXPECT_EQ(told("1 2\n3 4\n5 6\n\n\n"), (Told{"", "", ""})) << "nothing is read behind them";
}

TEST_F(OddLinesTest, TextBehindANumberWithoutABlank) {
    EXPECT_EQ(told("0,5 2\n3 4\n5 6\n"),
              (Told{"obs/day, line 1, column 2: text follows 0 without a blank, 0 is taken\n"
                    "obs/day: value 2 of time 0 is not a number, -2 stays\n",
                    "", ""}));
    EXPECT_EQ(
        told("1 2\n  3 4.5kg\n5 6#\n"),
        (Told{"", "obs/day, line 2, column 8: text follows 4.5 without a blank, 4.5 is taken\n",
              ""}))
        << "once";
    EXPECT_EQ(
        told("1-2\n3 4\n5 6\n"),
        (Told{"obs/day, line 1, column 2: text follows 1 without a blank, 1 is taken\n", "", ""}))
        << "the text may be the next number";
}

TEST_F(OddLinesTest, ALineWithTooFewNumbers) {
    EXPECT_EQ(
        told("1\n2 3\n4\n5\n6 7\n"),
        (Told{"obs/day, line 1, column 2: too few numbers, 1 of 2: the next ones come from line "
              "2\n"
              "obs/day, line 2, column 3: too many numbers, more than 2: the rest of the line is "
              "skipped\n",
              "", ""}))
        << "the first number of the next line is the second one, and then it has one too many";
    EXPECT_EQ(
        told("1 2\n3 4\n5  \n\n"),
        (Told{"", "", "obs/day, line 3, column 4: too few numbers, 1 of 2: the next ones stay\n"}));
}

TEST_F(OddLinesTest, ALineWithTooManyNumbers) {
    EXPECT_EQ(told("1 2 \t3 4\n5 6 7\n8 9\n"),
              (Told{"obs/day, line 1, column 6: too many numbers, more than 2: the rest of the "
                    "line is skipped\n",
                    "", ""}));
    EXPECT_EQ(
        told("1 2\n3 4\n5 6 7"),
        (Told{"", "",
              "obs/day, line 3, column 5: too many numbers, more than 2: the rest of the line is "
              "skipped\n"}));
}

TEST_F(OddLinesTest, ABlankLine) {
    EXPECT_EQ(told("\n1 2\n\n3 4\n5 6\n"),
              (Told{"obs/day, line 1, column 1: blank line, skipped: line 2 stands for time 0\n",
                    "", ""}));
    EXPECT_EQ(told("1 2\n3 4 x\n \t\r\n\n5 6\n"),
              (Told{"", "",
                    "obs/day, line 3, column 1: blank line, skipped: line 5 stands for time 2\n"}));
    EXPECT_EQ(
        told("1\n\n2\n3 4\n5 6\n"),
        (Told{"obs/day, line 1, column 2: too few numbers, 1 of 2: the next ones come from line "
              "3\n"
              "obs/day, line 2, column 1: blank line, skipped: line 3 stands for time 0\n",
              "", ""}));
}

TEST_F(OddLinesTest, TheFirstStepPastTheEnd) {
    EXPECT_EQ(
        told("1 2\n\n"),
        (Told{"", "obs/day, line 1, column 1: last line: the values stay from time 1 on\n", ""}));
    EXPECT_EQ(
        told("1 2\n3 4"),
        (Told{"", "", "obs/day, line 2, column 1: last line: the values stay from time 2 on\n"}));
    EXPECT_EQ(
        told("\n\n"),
        (Told{"obs/day, line 1, column 1: no line: the values stay from time 0 on\n", "", ""}));
}

// A sign alone, at which the file ends.
TEST_F(OddLinesTest, AWordThatBeginsLikeANumber) {
    EXPECT_EQ(told("1 2\n3 -"),
              (Told{"", "obs/day: value 2 of time 1 is not a number, 2 stays\n",
                    "obs/day, line 2, column 1: last line: the values stay from time 2 on\n"}));
}

TEST_F(OddLinesTest, AFileThatIsOpenedAgainIsToldAgain) {
    Told const once = told("0,5 2\n");
    EXPECT_EQ(told("0,5 2\n"), once) << "the second value is -2 as before";
}

// ---- Writing and closing ----

TEST(SetDisplays, WritesPairsOfBounds) {
    ConsoleFiles const files;
    streamsOf([] { prepareDO(); });
    double const inf[] = {1.0, 0.1234567};
    double const sup[] = {2.0, 1e10};
    Streams const said = streamsOf([&] { EXPECT_EQ(tavro_setDisplays("", 2, inf, sup), 1); });
    EXPECT_EQ(said.out, "");
    closeRunFiles();
    EXPECT_EQ(WorkDirectory::read("disp/day"), "1 2 0.123457 1e+10 ");
}

TEST(SetDisplays, AnnouncesThemOnStandardOutput) {
    ConsoleFiles const files;
    displayFile.clear();
    streamsOf([] { prepareDO(); });
    double const inf[] = {1.0};
    double const sup[] = {2.0};
    Streams const said = streamsOf([&] { tavro_setDisplays("", 1, inf, sup); });
    EXPECT_EQ(said.out, "Displays: 1 2 ");
}

TEST(CloseRunFiles, ClosesAllButStandardOutput) {
    ConsoleFiles const files;
    displayFile.clear();
    modesFile = "modes";
    WorkDirectory::write(measureFile, "1");
    Streams const said = streamsOf([] {
        prepareEI();
        prepareMS();
        prepareDO();
        prepareMO();
        closeRunFiles();
        std::fputs("still open", stdout);
    });
    EXPECT_EQ(said.err, "");
    EXPECT_NE(said.out.find("still open"), std::string::npos);
    for (std::FILE* stream : {dataIn, measIn, dataOut, modesOut})
        EXPECT_EQ(stream, nullptr);
}

TEST(CloseRunFiles, TellsWhatCouldNotBeWritten) {
    ConsoleFiles const files;
    displayFile = "/dev/full";
    streamsOf([] { prepareDO(); });
    EXPECT_EQ(streamsOf([] {
                  std::fputs("lost", dataOut);
                  closeRunFiles();
              }).err,
              "Can't write file /dev/full: No space left on device\n");
    EXPECT_EQ(streamsOf([] { closeRunFiles(); }).err, "") << "it is told once";
}

// More than a stream's buffer: the loss shows before the file is closed, and must not be forgotten.
TEST(CloseRunFiles, TellsWhatWasLostOnTheWay) {
    ConsoleFiles const files;
    displayFile = "/dev/full";
    streamsOf([] { prepareDO(); });
    EXPECT_EQ(streamsOf([] {
                  std::fputs(std::string(100000, 'x').c_str(), dataOut);
                  closeRunFiles();
              }).err,
              "Can't write file /dev/full: No space left on device\n");
}

TEST(SetAlarms, LeavesThemInTheRuntime) {
    int const alarms[] = {1, 2};
    Streams const said =
        streamsOf([&] { EXPECT_EQ(sorn_setAlarms("", 2, alarms, alarms, alarms), 1); });
    EXPECT_EQ(said.out + said.err, "");
}

TEST(SendDiagnosis, PrintsATextThatIsNotEmpty) {
    Streams said = streamsOf([] { EXPECT_EQ(sorn_sendDiagnosis("", "T1.i1"), 1); });
    EXPECT_EQ(said.err, "Diagnostic Results:\nT1.i1\n");
    EXPECT_EQ(said.out, "");
    said = streamsOf([] { EXPECT_EQ(sorn_sendDiagnosis("", ""), 1); });
    EXPECT_EQ(said.out + said.err, "");
}

}  // namespace
