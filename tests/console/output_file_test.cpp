// What is written, and how it is told that something was not.
#include "console/output_file.h"

#include <dirent.h>

#include <cerrno>

#include "console/losses.h"
#include "console_fixture.h"

namespace {

char const* const full = "Can't write file /dev/full: No space left on device\n";

// What a call tells, and how many losses it counts.
struct Told {
    std::string text;
    int losses;
    bool operator==(Told const&) const = default;
};

std::ostream& operator<<(std::ostream& out, Told const& told) {
    return out << told.losses << " losses: " << told.text;
}

template <typename Call>
Told toldBy(Call call) {
    int const before = losses();
    std::string const text = streamsOf(call).err;
    return {text, losses() - before};
}

class Output : public testing::Test {
    WorkDirectory directory;
};

TEST_F(Output, HoldsWhatIsWritten) {
    WorkDirectory::write("file", "what was there before");
    EXPECT_EQ(toldBy([] {
                  OutputFile file("file");
                  EXPECT_TRUE(file.isOpen());
                  EXPECT_TRUE(file.write("one ", 4));
                  EXPECT_TRUE(file.write("two", 3));
                  EXPECT_TRUE(file.close());
                  EXPECT_TRUE(file.close()) << "a second time does nothing";
              }),
              (Told{"", 0}));
    EXPECT_EQ(WorkDirectory::read("file"), "one two");
}

TEST_F(Output, AFullDeviceIsToldOnce) {
    EXPECT_EQ(toldBy([] {
                  OutputFile file("/dev/full");
                  EXPECT_FALSE(file.write("one", 3));
                  EXPECT_FALSE(file.write("two", 3));
                  EXPECT_FALSE(file.close());
                  EXPECT_EQ(file.error(), ENOSPC);
              }),
              (Told{full, 1}));
}

// A directory has the name of the file.
TEST_F(Output, WhatCannotBeOpenedIsToldWhenItIsWritten) {
    EXPECT_EQ(toldBy([] {
                  OutputFile file("inp");
                  EXPECT_FALSE(file.isOpen());
                  EXPECT_FALSE(file.close());
              }),
              (Told{"", 0}))
        << "nothing is lost yet";
    EXPECT_EQ(toldBy([] {
                  OutputFile file("inp");
                  EXPECT_FALSE(file.write("one", 3));
              }),
              (Told{"Can't write file inp: Is a directory\n", 1}));
}

TEST_F(Output, AStreamHoldsMoreThanItsBuffer) {
    std::string const text(100000, 'x');
    EXPECT_EQ(toldBy([&] {
                  OutputStream stream("file");
                  stream << "begin " << text << 1.5 << "\n";
              }),
              (Told{"", 0}));
    EXPECT_EQ(WorkDirectory::read("file"), "begin " + text + "1.5\n");
}

// What is lost may show when the buffer is full, when it is flushed, or when the stream is closed.
TEST_F(Output, AStreamOnAFullDeviceIsToldOnce) {
    EXPECT_EQ(toldBy([] { OutputStream("/dev/full") << std::string(100000, 'x'); }),
              (Told{full, 1}));
    EXPECT_EQ(toldBy([] { OutputStream("/dev/full") << "one" << std::flush << "two"; }),
              (Told{full, 1}));
    EXPECT_EQ(toldBy([] { OutputStream("/dev/full") << "one"; }), (Told{full, 1}));
    EXPECT_EQ(toldBy([] {
                  OutputStream stream("/dev/full");
                  stream << "one";
                  EXPECT_FALSE(stream.close());
              }),
              (Told{full, 1}));
    EXPECT_EQ(toldBy([] { OutputStream("/dev/full"); }), (Told{"", 0})) << "nothing is lost";
}

TEST_F(Output, AStreamOfTheCLibraryDoesTheSame) {
    EXPECT_EQ(toldBy([] {
                  std::FILE* stream = openOutput("file");
                  ASSERT_NE(stream, nullptr);
                  std::fprintf(stream, "%g %d", 0.5, 7);
                  EXPECT_EQ(std::fclose(stream), 0);
              }),
              (Told{"", 0}));
    EXPECT_EQ(WorkDirectory::read("file"), "0.5 7");
    EXPECT_EQ(toldBy([] {
                  std::FILE* stream = openOutput("/dev/full");
                  std::fputs("one", stream);
                  EXPECT_EQ(std::fflush(stream), EOF);
                  std::fputs("two", stream);
                  std::fclose(stream);
              }),
              (Told{full, 1}));
    EXPECT_EQ(toldBy([] {
                  std::FILE* stream = openOutput("/dev/full");
                  std::fputs("one", stream);
                  std::fclose(stream);
              }),
              (Told{full, 1}));
    errno = 0;
    EXPECT_EQ(openOutput("inp"), nullptr);
    EXPECT_EQ(errno, EISDIR);
}

int openDescriptors() {
    int count = 0;
    DIR* directory = opendir("/proc/self/fd");
    while (readdir(directory) != nullptr)
        ++count;
    closedir(directory);
    return count;
}

TEST_F(Output, NothingStaysOpen) {
    int const before = openDescriptors();
    { OutputStream("file") << "one"; }
    std::fclose(openOutput("file"));
    OutputFile("file").write("one", 3);
    EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
