// The host of a run inside another program: it gives the values of one step, keeps its diagnoses,
// and tells what was asked for, a line at a time. It has no files.
#pragma once

#include <functional>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "support/host.h"
#include "support/memory_watch.h"
#include "tavro/tavro.hpp"

// A stream whose whole lines go to a function. What is written without a function goes nowhere, and
// costs no formatting.
class LineStream : public std::ostream {
public:
    using Sink = std::function<void(std::string_view)>;
    explicit LineStream(Sink sink);

private:
    class Buffer : public std::streambuf {
    public:
        explicit Buffer(Sink sink) : sink(std::move(sink)) {}

    private:
        int overflow(int c) override;
        std::streamsize xsputn(char const* text, std::streamsize count) override;
        void put(char c);

        Sink sink;
        std::string line;  // as far as it has come
    };
    Buffer buffer;
};

class LibraryHost : public Host {
public:
    explicit LibraryHost(tavro::Options const& options);

    std::ostream& out() override { return trace; }
    std::ostream& err() override { return told; }
    void inputs(int count, double* values) override;
    void measures(int count, double* values) override;
    void isolated(Isolation const& found) override;
    void diagnosis(std::string const& text) override;
    bool memoryRunsShort() override { return watchesMemory && memory.runsShort(); }

    char const* stopOverdue() override {
        return stepping && giveUp && giveUp() ? "given up" : nullptr;
    }

    // While such an object lives, the run is within a start or a step, which may be given up.
    class Stepping {
    public:
        explicit Stepping(LibraryHost& host) : host(host) { host.stepping = true; }
        ~Stepping() { host.stepping = false; }
        Stepping(Stepping const&) = delete;
        Stepping& operator=(Stepping const&) = delete;

    private:
        LibraryHost& host;
    };

    std::vector<double> firstInputs, firstMeasures;  // given to the run's start
    // Of the current step: the texts of its diagnoses, none of them empty, and the same as data,
    // each set of suspects once.
    std::vector<std::string> diagnoses;
    std::vector<tavro::SuspectSet> suspects;

private:
    LineStream trace;
    LineStream told;
    bool const watchesMemory;
    std::function<bool()> const giveUp;
    bool stepping = false;
    SystemMemoryWatch memory;
};
