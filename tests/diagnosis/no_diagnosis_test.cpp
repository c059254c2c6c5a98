// A misbehaviour that accuses no atom, met by the console in the middle of a run: the process ends,
// and the files that were open are whole.
#include <unistd.h>

#include "console/run.h"
#include "continuous/model_parts.h"
#include "diagnosis/fault_run.h"
#include "fixtures/the_run.h"

using namespace diagnosis_fixture;

namespace {

using scheduler_fixture::HandModel;

// A gauge that shows 1 when the plant is powered and its valve is open, as both are. The measures
// are 1 at time 0 and 1, and 9 from time 2 on.
class Gauge : public testing::Test {
protected:
    Gauge() : measures("1\n1\n9\n") {
        Comp* plant = model.comp("plant");
        Atom* powered = model.variable<ModeVar>(plant, "power", {"on", "off"})->getAtomLinks()[0];
        Atom* open = model.variable<ModeVar>(plant, "valve", {"open", "shut"})->getAtomLinks()[0];
        model.start();
        s_runtime& rt = model.rt;
        s_Variable* supply = mkParameter(rt, "plant.supply", 1.0, 20);
        s_Variable* gauge = mkVariable(rt, "plant.gauge", 20);
        s_Condition* both = mkBinaryCond(rt, COND_AND, holding(powered), holding(open), 0);
        s_Influence* shows =
            mkInfluence(rt, "i1", INF_STATIC, supply, gauge, both, 1, makeReal(1.0), 0, 0);
        mkGraph(rt, supply, INF_STATIC, {}, {shows});
        mkGraph(rt, gauge, INF_STATIC, {shows}, {});
        rt.untemporal = rt.measure = rt.display = {gauge};
        rt.twc = 20;
        rt.Ts = 1.0;
        rt.name = "plant";
        sizeArrays(rt);
        theRun().tavro_rt = &rt;
        measIn = std::fopen(measures.path.c_str(), "r");
        streamsOf([] { tavro_initialize(theRun(), 1, 0.01, "", 0); });
    }
    ~Gauge() {
        std::fclose(measIn);
        measIn = nullptr;
        clearMultiTrajs(theRun());
        theRun().tavro_rt = nullptr;
        std::filesystem::remove_all(directory);
    }
    s_Condition* holding(Atom* atom) {
        s_Condition* condition = mkAtomCond(model.rt, atom, 0);
        condition->val = 1;
        return condition;
    }
    // `detect` in a directory of its own, in a child process.
    void detect(char const* parameters) const {
        std::filesystem::current_path(directory);
        try {
            snDetect(parameters);
        } catch (RunStopped const& stop) {
            std::fflush(nullptr);
            _exit(stop.exitStatus());
        }
        _exit(0);
    }
    std::vector<std::string> cyclesLogged() const {
        std::ifstream file(directory + "/cycbench.bmk");
        std::vector<std::string> counts;
        for (std::string line; std::getline(file, line);)
            counts.push_back(line.substr(0, line.find('\t')));
        return counts;
    }

    TextFile measures;
    std::string directory = madeDirectory();
    HandModel model;

private:
    static std::string madeDirectory() {
        char name[] = "/tmp/tavro_test_XXXXXX";
        return mkdtemp(name);
    }
};

using GaugeDeath = Gauge;

// The cycle of time 1 is logged; that of time 2 does not come to its end.
TEST_F(GaugeDeath, TheProcessEndsWithWholeFiles) {
    EXPECT_EXIT(detect("5 fault1 1"), testing::ExitedWithCode(255),
                "Diagnosis completed\n"
                "\\[Error\\]: Can't find any diagnose for this fault.\n"
                "run stopped at time 1: nothing explains the misbehaviour\n$");
    EXPECT_EQ(cyclesLogged(), std::vector<std::string>{"1"});
}

TEST_F(GaugeDeath, WithoutIsolationTheRunGoesOn) {
    EXPECT_EXIT(detect("5 nofault 1"), testing::ExitedWithCode(0), "all trajs misbehave !\n");
    EXPECT_EQ(cyclesLogged(), std::vector<std::string>(5, "1"));
}

}  // namespace
