// The cycles of one `simul` or `detect`, and the one road by which every run ends.
//
// A run ends after its last step, or before: because a signal asks for it, memory runs short, no
// candidate is left, or a state is fatal. Whatever the reason, it is told with the time of the last
// whole cycle, the rows up to that time are written, then the graphs, and the files are closed. A
// fatal state ends the program after that.
//
// Rows are written at the end and not as they settle, because they never do: when two candidates
// become equal, the one that goes on takes over the wider bounds of all rows that both have, back
// to the first; and a column belongs to a candidate that is left at the end, which a split may have
// made long after the row. Of a program that is killed the rows are lost.
#pragma once

#include <cstdio>
#include <exception>

#include "console/exchange.h"
#include "hybrid/tavro-runt.h"

// Whether a run leaves graphs of its candidates.
enum class Graphs { NEVER, WANTED };

class Cycles {
public:
    // Owns the log, which may be null.
    explicit Cycles(std::FILE* log = nullptr) : cycleLog(log) {}
    Cycles(Cycles const&) = delete;
    Cycles& operator=(Cycles const&) = delete;
    ~Cycles() { closeStream(cycleLog); }

    std::FILE* log() const { return cycleLog; }

    // Does *work*, the loop over the cycles; what it throws stops the run.
    template <typename Work>
    void guard(Work work) {
        try {
            work();
        } catch (...) {
            stopFor(std::current_exception());
        }
    }
    // False when the run stops before the next cycle.
    bool mayGoOn();
    // The cycle at simTime. Throws when it does not come to its end.
    void run(RunOptions const& options, double countdown);

    // Writes what the run has, tells what it has lost, and ends it. Throws what was fatal.
    void end(Graphs graphs);

private:
    void stop(char const* why) { reason = why; }
    void stopFor(std::exception_ptr const& thrown);
    void stopForMemory(std::size_t candidates);
    void tellStop() const;
    void writeRows() const;
    void writeGraphs() const;

    std::FILE* cycleLog;
    int count = 0;      // whole cycles
    double time = 0.0;  // of the last one
    bool withinCycle = false;
    KeptRows kept;                 // of all whole cycles, while one is under way
    char const* reason = nullptr;  // why the run stopped; null while it did not
    char memoryText[80] = "";      // what reason may point to
    std::exception_ptr cause;      // the same
    bool fatal = false;            // the cause ends the program
};
