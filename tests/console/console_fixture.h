// What the tests of the console share: both streams of a call, and a directory to work in.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "console/console.h"
#include "console/exchange.h"

// What a call wrote.
struct Streams {
    std::string out, err;
};

// Both streams of a call, through every layer that buffers.
template <typename Call>
Streams streamsOf(Call call) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    call();
    std::fflush(stdout);
    Streams streams;
    streams.out = testing::internal::GetCapturedStdout();
    streams.err = testing::internal::GetCapturedStderr();
    return streams;
}

// A new directory with inp, obs and disp in it, in which the test runs; it goes with the object.
class WorkDirectory {
public:
    WorkDirectory() : before(std::filesystem::current_path()) {
        std::string pattern = testing::TempDir() + "console-XXXXXX";
        path = mkdtemp(pattern.data());
        std::filesystem::current_path(path);
        for (char const* directory : {"inp", "obs", "disp"})
            std::filesystem::create_directory(directory);
    }
    ~WorkDirectory() {
        std::filesystem::current_path(before);
        std::filesystem::remove_all(path);
    }
    WorkDirectory(WorkDirectory const&) = delete;
    WorkDirectory& operator=(WorkDirectory const&) = delete;

    static void write(std::string const& file, std::string const& text) {
        std::ofstream(file) << text;
    }
    static std::string read(std::string const& file) {
        std::ifstream stream(file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    std::filesystem::path before, path;
};

// A work directory, and the console's paths as the command line "day day" leaves them. The files of
// a run are closed at the end.
class ConsoleFiles : public WorkDirectory {
public:
    ConsoleFiles() {
        inputFile = scenarFile = "inp/";
        measureFile = "obs/day";
        displayFile = "disp/day";
        modesFile.clear();
    }
    ~ConsoleFiles() { closeRunFiles(); }
};
