// Memory that gives out within a cycle: at any allocation, whether of the continuous step, a split,
// the discrete step, the isolation, the search or the replay, the cycle ends with no candidate,
// nothing is lost or destroyed twice (which the sanitizers watch), and the next run is a sound one.
#include <map>

#include "fault_run.h"
#include "fixtures/failing_memory.h"
#include "fixtures/the_run.h"
#include "support/memory_watch.h"

// The library's hash table forgets the nodes that it has made when an allocation fails in the
// middle of a copy: a few dozen bytes, once. Everything else must be given back.
extern "C" char const* __lsan_default_suppressions() {
    return "leak:_M_copy_from\n";
}

using namespace diagnosis_fixture;
using failing_memory::Shortage;

namespace {

// The room whose thermostat sticks on; the alarm, with its diagnosis, comes at step 27.
constexpr int alarm = 27, end = 32;

// Reading what the system tells takes memory too, at moments that the clock decides.
bool never() {
    return false;
}

class MemoryTest : public testing::Test {
protected:
    MemoryTest() { runHost().onMemory = never; }
    ~MemoryTest() override { runHost().onMemory = nullptr; }

    void init() {
        if (measIn != nullptr)
            std::fclose(measIn);
        measIn = std::fopen((std::string(TAVRO_ROOM) + "/obs/stuck_on.obs").c_str(), "r");
        theRun().engine.rt_num = 0;
        tavro_initialize(theRun(), 1, 0.01, "", 0);
        initDispAll(theRun().hybNT->rt.get(), 250.0);
    }
    int cycle(int time) {
        RunOptions options;
        options.mode = RUN_DETECT;
        options.isolation = CYCLE_DETECT + 1;
        options.threshold = 3;
        tavro_getMeasures("", 1, theRun().engine.meas.data());
        bool nominal = false;
        return tavro_tryCycle(theRun(), options, 0.0, time, nominal);
    }
    void cyclesTo(int last) {
        for (int time = 1; time <= last; ++time)
            ASSERT_EQ(cycle(time), 1);
    }
    // A whole run in which memory is there: the rows of every candidate.
    std::string soundRun() {
        init();
        cyclesTo(end);
        std::string rows;
        for (auto const& entry : theRun().tracked_trajs)
            for (int i = 0; i < entry.second->rt->extra.size(); ++i)
                rows += std::to_string(entry.second->rt->extra[i]) + " ";
        clearMultiTrajs(theRun());
        return rows;
    }
    static void expectNothingLeft() {
        EXPECT_EQ(theRun().hybNT, nullptr);
        EXPECT_TRUE(theRun().tracked_trajs.empty());
        EXPECT_TRUE(theRun().ntrajs.empty());
        EXPECT_TRUE(theRun().misbtrajs.empty());
        EXPECT_TRUE(theRun().engine.nrt.empty());
    }
    // How many allocations the cycle of a step makes.
    long allocationsAt(int step) {
        init();
        cyclesTo(step - 1);
        long const before = failing_memory::counted;
        cycle(step);
        return failing_memory::counted - before;
    }
    // The cycle of a step, in which the *nth* allocation fails.
    void failAt(int step, long nth, bool andAllLater) {
        init();
        cyclesTo(step - 1);
        int result = 1;
        {
            Shortage const shortage(nth, andAllLater);
            result = cycle(step);
        }
        EXPECT_EQ(result, 0);
        expectNothingLeft();
    }
    // Allocations spread over the whole cycle of a step.
    void failEverywhere(int step, bool andAllLater) {
        quietly([&] { failOneByOne(step, andAllLater); });
    }
    // Without the traces of the engine, unless something fails.
    template <typename Act>
    static void quietly(Act act) {
        Streams const streams = streamsOf(act);
        if (HasFailure())
            std::cout << streams.out.substr(0, 20000);
    }

    ReferenceModel model;

private:
    void failOneByOne(int step, bool andAllLater) {
        std::string const sound = soundRun();
        long const count = allocationsAt(step);
        for (long nth = 1; nth <= count; nth += 1 + count / 60) {
            SCOPED_TRACE("allocation " + std::to_string(nth) + " of " + std::to_string(count));
            failAt(step, nth, andAllLater);
            ASSERT_EQ(soundRun(), sound);
        }
    }
};

TEST_F(MemoryTest, AnyAllocationOfADiagnosisMayFail) {
    failEverywhere(alarm, false);
}

TEST_F(MemoryTest, MemoryMayGiveOutForGoodWithinADiagnosis) {
    failEverywhere(alarm, true);
}

// At step 7 the room passes 10 degrees: the value lies on both sides of a threshold.
TEST_F(MemoryTest, AnyAllocationOfASplitMayFail) {
    failEverywhere(7, false);
}

// ---- The watch ----

int looksLeft = 0;

bool afterSomeLooks() {
    return looksLeft-- == 0;
}

// Calls to the watch in a cycle, each of which may stop it.
TEST_F(MemoryTest, TheWatchStopsADiagnosisWhereverItLooks) {
    std::map<int, int> results;
    quietly([&] {
        std::string const sound = soundRun();
        for (int looks = 0; results[1] == 0 && looks < 500; looks += 7) {
            init();
            cyclesTo(alarm - 1);
            looksLeft = looks;
            runHost().onMemory = afterSomeLooks;
            int const result = cycle(alarm);
            runHost().onMemory = never;
            ++results[result];
            if (result == 0)
                expectNothingLeft();
            ASSERT_EQ(soundRun(), sound);
        }
    });
    EXPECT_GT(results[0], 5) << "looks that stopped the cycle";
    EXPECT_EQ(results[1], 1) << "and once there was memory enough";
}

}  // namespace
