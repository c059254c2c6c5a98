// Lines from where nobody types, and that a terminal still has its keys.
#include "console/plain_reader.h"

// Needs FILE to be declared.
#include <readline/readline.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

#include "console_fixture.h"

namespace {

using namespace std::string_literals;

class PlainReaderTest : public testing::Test {
protected:
    void type(std::string const& text) {
        std::fwrite(text.data(), 1, text.size(), input);
        std::rewind(input);
    }
    std::optional<std::string> read() { return readPlainLine(input, output, "e> "); }
    std::string shown() const {
        std::rewind(output);
        std::string text;
        for (int c = std::fgetc(output); c != EOF; c = std::fgetc(output))
            text += static_cast<char>(c);
        return text;
    }
    ~PlainReaderTest() override {
        std::fclose(input);
        std::fclose(output);
    }

    std::FILE *input = std::tmpfile(), *output = std::tmpfile();
};

TEST_F(PlainReaderTest, ALineIsShownBehindThePrompt) {
    type("one\n\n  two words \n");
    EXPECT_EQ(read(), "one");
    EXPECT_EQ(read(), "");
    EXPECT_EQ(read(), "  two words ");
    EXPECT_EQ(shown(), "e> one\ne> \ne>   two words \n");
}

TEST_F(PlainReaderTest, TheLastLineNeedsNoEnd) {
    type("last");
    EXPECT_EQ(read(), "last");
    EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(shown(), "e> last\ne> e> ") << "at the end there is only the prompt";
}

TEST_F(PlainReaderTest, WhatComesAfterTheEndIsRead) {
    type("one\n");
    read();
    EXPECT_EQ(read(), std::nullopt);
    std::fputs("two\n", input);
    std::fseek(input, -4, SEEK_CUR);
    EXPECT_EQ(read(), "two");
}

TEST_F(PlainReaderTest, ACarriageReturnEndsALine) {
    type("one\r\ntwo\r");
    EXPECT_EQ(read(), "one");
    EXPECT_EQ(read(), "");
    EXPECT_EQ(read(), "two");
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(PlainReaderTest, EveryByteButZeroAndLineEndsIsOfTheLine) {
    std::string all;
    for (int c = 1; c < 256; ++c)
        if (c != '\n' && c != '\r')
            all += static_cast<char>(c);
    type(all + "\n");
    EXPECT_EQ(read(), all);
}

TEST_F(PlainReaderTest, ZeroBytesAreLeftOutAndTold) {
    type("a\0b\0\nc\n"s);
    EXPECT_EQ(streamsOf([&] { EXPECT_EQ(read(), "ab"); }).err,
              "Zero bytes in a line are left out.\n");
    EXPECT_EQ(streamsOf([&] { EXPECT_EQ(read(), "c"); }).err, "");
    EXPECT_EQ(shown(), "e> ab\ne> c\n");
}

// The prompt is three wide, a letter of two bytes one.
TEST_F(PlainReaderTest, ShowsTabsAsBlanksAndControlCharactersByTheirLetter) {
    type("\t|1234567\t|\xc3\xa9\t|\n\x01\x1b[A\x7f\n");
    read();
    read();
    EXPECT_EQ(shown(),
              "e>      |1234567        |\xc3\xa9      |\n"
              "e> ^A^[[A^?\n");
}

TEST_F(PlainReaderTest, ALongLineIsShownWhole) {
    std::string const line(1000000, 'x');
    type(line + "\n");
    EXPECT_EQ(read(), line);
    EXPECT_EQ(shown(), "e> " + line + "\n");
}

TEST_F(PlainReaderTest, TakesNoByteBehindTheLine) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], "one\ntwo\n", 8), 8);
    std::FILE* in = fdopen(ends[0], "r");
    std::setvbuf(in, nullptr, _IONBF, 0);
    EXPECT_EQ(readPlainLine(in, output, ""), "one");
    char rest[8] = {};
    EXPECT_EQ(::read(ends[0], rest, sizeof rest), 4);
    EXPECT_STREQ(rest, "two\n");
    std::fclose(in);
    close(ends[1]);
}

// Ctrl-A goes to the start of the line when it is a key.
TEST(DoGets, ATerminalHasKeysAndAPipeHasNone) {
    int const keyboard = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(keyboard >= 0 && grantpt(keyboard) == 0 && unlockpt(keyboard) == 0);
    std::FILE* const terminal = std::fopen(ptsname(keyboard), "r");
    ASSERT_NE(terminal, nullptr);
    std::FILE* const nowhere = std::fopen("/dev/null", "w");
    rl_instream = terminal;
    rl_outstream = nowhere;
    ASSERT_EQ(write(keyboard, "elp\001h\n", 6), 6);
    EXPECT_STREQ(do_gets(""), "help");

    std::FILE* const script = std::tmpfile();
    std::fputs("elp\001h\n", script);
    std::rewind(script);
    rl_instream = script;
    EXPECT_STREQ(do_gets(""), "elp\001h");
    rl_instream = rl_outstream = nullptr;
    for (std::FILE* stream : {terminal, nowhere, script})
        std::fclose(stream);
    close(keyboard);
}

}  // namespace
