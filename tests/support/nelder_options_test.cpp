// The options of the optimiser: the defaults, the positions in nelder.dat, and files that are not
// as they should be.
#include <fcntl.h>
#include <unistd.h>

#include "support/nelder_fixture.h"

namespace {

struct NelderOptions : NelderTest {
    static void writeText(std::string const& text) { std::ofstream("nelder.dat") << text; }

    static void expectDefaults(Nelder_options const& options) {
        EXPECT_EQ(options.trace, 0);
        EXPECT_EQ(options.traceToFile, 0);
        EXPECT_STREQ(options.traceFile, "nelder.out");
        EXPECT_EQ(options.optLog, 1);
        EXPECT_EQ(options.optLogToFile, 0);
        EXPECT_STREQ(options.optLogFile, "nelder.opt");
        EXPECT_EQ(options.stats, 1);
        EXPECT_EQ(options.statsToFile, 0);
        EXPECT_STREQ(options.statsFile, "nelder.stat");
        expectDefaultNumbers(options);
    }

    static void expectDefaultNumbers(Nelder_options const& options) {
        EXPECT_EQ(options.reflexion, 1.0);
        EXPECT_EQ(options.contraction, 0.5);
        EXPECT_EQ(options.expansion, 2.0);
        EXPECT_EQ(options.reduction, 2.0);
        EXPECT_EQ(options.initialType, 1);
        EXPECT_EQ(options.initialSize, 0.1);
        EXPECT_EQ(options.pivotType, 1);
        EXPECT_EQ(options.stopType, 1);
        EXPECT_EQ(options.tolCost, 1e-6);
        EXPECT_EQ(options.tolX, 1e-6);
        EXPECT_EQ(options.maxEvalFactor, 1000);
    }
};

TEST_F(NelderOptions, WithoutAFileTheDefaultsApplyInSilence) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    expectDefaults(defaultOptions());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// Every line has a value of its own, so that an option read from a wrong line shows.
TEST_F(NelderOptions, EveryOptionHasItsLine) {
    writeOptions({{7, "107"},      {8, "108"},   {9, "trace.txt"}, {13, "113"},   {14, "114"},
                  {15, "log.txt"}, {19, "119"},  {20, "120"},      {21, "s.txt"}, {25, "1.25"},
                  {26, "1.26"},    {27, "1.27"}, {28, "1.28"},     {32, "132"},   {33, "1.33"},
                  {37, "137"},     {41, "141"},  {42, "4.2e-3"},   {43, "0.43"},  {44, "144"}});
    Nelder_options const options = defaultOptions();
    EXPECT_EQ(options.trace, 107);
    EXPECT_EQ(options.traceToFile, 108);
    EXPECT_STREQ(options.traceFile, "trace.txt");
    EXPECT_EQ(options.optLog, 113);
    EXPECT_EQ(options.optLogToFile, 114);
    EXPECT_STREQ(options.optLogFile, "log.txt");
    EXPECT_EQ(options.stats, 119);
    EXPECT_EQ(options.statsToFile, 120);
    EXPECT_STREQ(options.statsFile, "s.txt");
    EXPECT_EQ(options.reflexion, 1.25);
    EXPECT_EQ(options.contraction, 1.26);
    EXPECT_EQ(options.expansion, 1.27);
    EXPECT_EQ(options.reduction, 1.28);
    EXPECT_EQ(options.initialType, 132);
    EXPECT_EQ(options.initialSize, 1.33);
    EXPECT_EQ(options.pivotType, 137);
    EXPECT_EQ(options.stopType, 141);
    EXPECT_EQ(options.tolCost, 4.2e-3);
    EXPECT_EQ(options.tolX, 0.43);
    EXPECT_EQ(options.maxEvalFactor, 144);
}

TEST_F(NelderOptions, AValueMayBeIndentedAndCommented) {
    writeOptions({{7, "  \t3 trace oui/non 4"}, {9, " my.out fichier"}, {25, "0.75 alpha"}});
    Nelder_options const options = defaultOptions();
    EXPECT_EQ(options.trace, 3);
    EXPECT_STREQ(options.traceFile, "my.out");
    EXPECT_EQ(options.reflexion, 0.75);
}

// -2147483649 would wrap around to 2147483647, and a search go on without an end.
TEST_F(NelderOptions, ACountThatNoIntHoldsIsNone) {
    for (char const* text : {"-2147483649", "2147483648", "99999999999999999999", "x"}) {
        writeOptions({{44, text}});
        EXPECT_EQ(defaultOptions().maxEvalFactor, 1000) << text;
    }
    for (int const limit : {2147483647, -2147483647 - 1}) {
        writeOptions({{44, std::to_string(limit)}});
        EXPECT_EQ(defaultOptions().maxEvalFactor, limit);
    }
}

TEST_F(NelderOptions, AFileThatEndsEarlyLeavesTheRestAtItsDefault) {
    writeOptions({{7, "1"}, {25, "0.75"}}, 25);
    Nelder_options const options = defaultOptions();
    EXPECT_EQ(options.trace, 1);
    EXPECT_EQ(options.reflexion, 0.75);
    EXPECT_EQ(options.contraction, 0.5);
    EXPECT_EQ(options.maxEvalFactor, 1000);
}

TEST_F(NelderOptions, AnEmptyFileAndADirectoryGiveTheDefaults) {
    writeText("");
    expectDefaults(defaultOptions());
    std::filesystem::remove("nelder.dat");
    std::filesystem::create_directory("nelder.dat");
    expectDefaults(defaultOptions());
}

// The values of the lines after an empty or foreign one stay where they are.
TEST_F(NelderOptions, ALineWithoutAValueKeepsItsDefaultAndTheOthersTheirPlace) {
    writeOptions({{7, ""}, {8, "5"}, {26, "beta"}, {27, "3.5"}, {32, " \t\r"}, {33, "0.25"}});
    Nelder_options const options = defaultOptions();
    EXPECT_EQ(options.trace, 0);
    EXPECT_EQ(options.traceToFile, 5);
    EXPECT_EQ(options.contraction, 0.5);
    EXPECT_EQ(options.expansion, 3.5);
    EXPECT_EQ(options.initialType, 1);
    EXPECT_EQ(options.initialSize, 0.25);
}

TEST_F(NelderOptions, ALongNameIsCutAndALongLineIsSkipped) {
    writeOptions({{3, std::string(100000, 'c')},
                  {9, std::string(500, 'n')},
                  {13, "6 " + std::string(100000, 'c')},
                  {14, "7"}});
    Nelder_options const options = defaultOptions();
    EXPECT_EQ(options.traceFile, std::string(79, 'n'));
    EXPECT_EQ(options.optLog, 6);
    EXPECT_EQ(options.optLogToFile, 7);
}

TEST_F(NelderOptions, BytesThatAreNotTextDoNoHarm) {
    std::string bytes;
    for (int i = 0; i < 5000; ++i)
        bytes.push_back(static_cast<char>(i * 37 % 256));
    writeText(bytes);
    Nelder_options const options = defaultOptions();
    EXPECT_LT(std::string(options.traceFile).size(), 80u);
}

TEST_F(NelderOptions, TheFileIsReadAtEveryCall) {
    EXPECT_EQ(defaultOptions().reflexion, 1.0);
    writeOptions({{25, "0.75"}});
    EXPECT_EQ(defaultOptions().reflexion, 0.75);
    writeOptions({{25, "0.5"}});
    EXPECT_EQ(defaultOptions().reflexion, 0.5);
}

TEST_F(NelderOptions, TheFileIsClosed) {
    writeOptions({});
    int const before = open("/dev/null", O_RDONLY);
    close(before);
    for (int i = 0; i < 20; ++i)
        defaultOptions();
    int const after = open("/dev/null", O_RDONLY);
    close(after);
    EXPECT_EQ(after, before);  // the lowest free descriptor is the same
}

// ---- From any stream ----

TEST(NelderReadOptions, AStreamReplacesWhatItHoldsAndLeavesTheRest) {
    Nelder_options options = Nelder_default_options();
    options.optLog = 77;
    std::istringstream text(std::string(6, '\n') + "3 trace\n\nmy.out\n");
    Nelder_read_options(text, options);
    EXPECT_EQ(options.trace, 3);
    EXPECT_EQ(options.traceToFile, 0);
    EXPECT_STREQ(options.traceFile, "my.out");
    EXPECT_EQ(options.optLog, 77);
}

// A number is read as far as it goes, and a sign, a prefix or a letter alone is none.
TEST(NelderReadOptions, NumbersAreReadAsFarAsTheyGo) {
    std::pair<char const*, double> const texts[] = {
        {"12abc", 12}, {"1.5.3", 1.5}, {"-2e", -2}, {"0x10", 16}, {"+.5", 0.5}, {"1,5", 1},
        {"-", 1},      {"e5", 1},      {".", 1},    {"0xg", 1.0}, {"#4", 1},    {"in", 1}};
    for (auto const& [number, expected] : texts) {
        Nelder_options options = Nelder_default_options();  // 1 for the reflexion
        std::istringstream text(std::string(24, '\n') + number);
        Nelder_read_options(text, options);
        EXPECT_EQ(options.reflexion, expected) << number;
    }
}

TEST(NelderReadOptions, ANameEndsAtAZero) {
    Nelder_options options = Nelder_default_options();
    std::string content = std::string(8, '\n') + "abXdef\n\n\n\n" + "5\n";
    content[content.find('X')] = '\0';
    std::istringstream text(content);
    Nelder_read_options(text, options);
    EXPECT_STREQ(options.traceFile, "ab");
    EXPECT_EQ(options.optLog, 5);
}

}  // namespace
