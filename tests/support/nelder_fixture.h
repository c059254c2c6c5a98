// What the tests of the optimiser share: a working directory of their own, a writer for nelder.dat,
// and a cost function that can be any function and records where it was called.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "unlinked/nelder_calls.h"
#include "unlinked/optim_calls.h"

typedef std::vector<double> Point;

// The cost function of the current test, and the points that it was asked for, in order.
inline std::function<double(Point const&)> costAt;
inline std::vector<Point> visited;
// The call, counted from 1, that reports that it could not compute the cost; 0: none.
inline int failingCall;
// What the cost function reports of the constraints.
inline int reportedConstraint;

inline double recordedCost(int* n, double* x, double*, double*, double*, int*, int* constraint,
                           int* status) {
    visited.emplace_back(x, x + *n);
    *constraint = reportedConstraint;
    *status = static_cast<int>(visited.size()) == failingCall ? -1 : 0;
    return costAt(visited.back());
}

// Runs in an empty directory that disappears afterwards, and with a random generator that starts
// from the same seed in every test.
struct NelderTest : testing::Test {
    NelderTest() : home(std::filesystem::current_path()), directory(makeDirectory()) {
        std::filesystem::current_path(directory);
        costAt = nullptr;
        visited.clear();
        failingCall = 0;
        reportedConstraint = 0;
        int seed = -1;
        Optim_ran0(&seed);
    }

    ~NelderTest() override {
        std::filesystem::current_path(home);
        std::filesystem::remove_all(directory);
    }

    static std::string makeDirectory() {
        std::string name = testing::TempDir() + "nelderXXXXXX";
        return mkdtemp(name.data());
    }

    // A nelder.dat of *lines* lines with the given texts, by line number; comment elsewhere.
    static void writeOptions(std::map<int, std::string> const& texts, int lines = 44) {
        std::ofstream file("nelder.dat");
        for (int line = 1; line <= lines; ++line) {
            auto const text = texts.find(line);
            file << (text == texts.end() ? "# 5 commentaire" : text->second) << "\n";
        }
    }

    static std::string contentOf(std::string const& name) {
        std::ifstream file(name);
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }

    std::filesystem::path home;
    std::filesystem::path directory;
};

// The default options, for tests that call the steps directly.
inline Nelder_options defaultOptions() {
    Nelder_options options;
    Nelder_init_options(&options);
    return options;
}
