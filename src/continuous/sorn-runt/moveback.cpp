// A runtime as it stood at a past time, rebuilt from its histories.
#include <cassert>

#include "continuous/sorn-runt.h"
#include "support/numbers.h"
#include "support/run_stopped.h"

namespace {

// Moves each entry *count* places towards the newest; the places left become *zero*. A shift of
// more than half of the history leaves the entries that neither move nor are moved onto.
template <typename T>
void shiftBack(History<T>& history, int count, T const& zero) {
    assert(count > 0);
    if (count <= history.size() - count) {
        history.forgetNewest(count, zero);
        return;
    }
    for (int i = count; i < history.size(); ++i) {
        history.set(i - count, history[i]);
        history.set(i, zero);
    }
}

void shiftBack(std::vector<int>& history, std::size_t count) {
    for (std::size_t i = count; i < history.size(); ++i) {
        history[i - count] = history[i];
        history[i] = 0;
    }
}

// Takes what the history holds at *i*. A variable without a history keeps its value; one whose
// history is too short does so too, which is told, since it stands for the past from then on.
void takeEntry(s_runtime* rt, s_Variable const* variable, History<s_Objet> const& history, int i,
               s_Objet* into) {
    if (i < history.size())
        sn_putObjet(&history[i], into);
    else if (history.size() > 0)
        rt->engine->err << variable->nom << ": no value is kept of " << i << " cycles back\n";
}

[[noreturn]] void stopForWindow(s_engine& engine, std::string const& which) {
    std::string const text = "The fault isn't in the " + which + " temporal window !";
    engine.out << text << "\n" << std::flush;
    throw RunStopped(RunStopped::outsideWindow, text);
}

}  // namespace

void moveHistory(s_runtime* rt, s_Variable* variable, double from, double to) {
    int const distance = truncateToInt(to) - truncateToInt(from);
    if (distance <= 0)
        return;
    if (!variable->isParam) {
        takeEntry(rt, variable, variable->histo, distance - 1, &variable->new_);
        takeEntry(rt, variable, variable->histo, distance, &variable->old);
    }
    shiftBack(variable->histo, distance + 1, *objZero);
    if (!sn_isMeasure(rt, variable))
        return;
    // Required: measures move by the distance, values by one more.
    takeEntry(rt, variable, variable->mesHisto, distance - 1, &variable->mes);
    shiftBack(variable->mesHisto, distance, *objZero);
    shiftBack(variable->misbHisto, static_cast<std::size_t>(distance));
    shiftBack(variable->lowHisto, distance, 0);
    shiftBack(variable->highHisto, distance, 0);
}

namespace {

// The variable as it stood *cycles* ago; what its histories no longer reach becomes their oldest
// entry, since nothing is known to have been different.
void moveVariableBack(s_Variable* variable, int cycles) {
    auto const shift = [cycles](auto& history) {
        if (history.size() > 0)
            history.forgetNewest(cycles, history[history.size() - 1]);
    };
    auto const flagged = [cycles](History<int> const& flags) {
        return cycles <= flags.size() && flags[cycles - 1] != 0 ? 1 : 0;
    };
    if (!variable->isParam && cycles <= variable->histo.size())
        variable->old = variable->new_ = variable->histo[cycles - 1];
    if (cycles <= variable->mesHisto.size())
        variable->mes = variable->mesHisto[cycles - 1];
    variable->lowalarm = flagged(variable->lowHisto);
    variable->highalarm = flagged(variable->highHisto);
    variable->meslowmisb = variable->meshighmisb = variable->mesmisb = 0;
    shift(variable->histo);
    shift(variable->mesHisto);
    shift(variable->lowHisto);
    shift(variable->highHisto);
}

}  // namespace

std::unique_ptr<s_runtime> sn_copyMovedBack(s_runtime const* source, int cycles) {
    std::unique_ptr<s_runtime> copy = sn_copyRuntime(source);
    if (cycles <= 0)
        return copy;
    for (auto const& variable : copy->dico)
        moveVariableBack(variable.get(), cycles);
    return copy;
}

std::unique_ptr<s_runtime> sn_copyPartialFaultyRt(s_runtime const* source, int faultCycle,
                                                  double contTime, double curTime, int window) {
    std::unique_ptr<s_runtime> copy = sn_copyRuntime(source);
    // Required: the test takes the sample period, not the current time.
    if (copy->Ts - window > faultCycle)
        stopForWindow(*copy->engine, "discrete");
    if (curTime - copy->twc > contTime) {
        copy->engine->err << "discrete fault time: " << faultCycle << "\n"
                          << "cont_fault_time: " << contTime << " -- stime: " << curTime
                          << "-- twc: " << copy->twc << "\n";
        stopForWindow(*copy->engine, "continuous");
    }
    for (auto const& variable : copy->dico)
        moveHistory(copy.get(), variable.get(), contTime, curTime);
    return copy;
}
