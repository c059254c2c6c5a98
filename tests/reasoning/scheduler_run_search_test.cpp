// Which copy of a refuted history a discrete run searches.
//
// Copying a state turns around the order of the elements whose ids share a bucket of its table, and
// the search meets them in that order. The ids of af and ba have one hash: the text hash takes five
// times what came before and adds the letter, and 5 * 'a' + 'f' is 5 * 'b' + 'a'.
#include "fixtures/the_run.h"
#include "reasoning/scheduler_fixture.h"

using namespace scheduler_fixture;

namespace {

// A tap that is af, a command turns it to ba, or it breaks; and a sensor of its flow.
class SearchedCopy : public testing::Test {
protected:
    SearchedCopy() {
        Comp* tap = model.comp("tap");
        auto* cmd = model.variable<CommandVar>(tap, "cmd", {"none", "go"});
        auto* mode = model.variable<ModeVar>(tap, "mode", {"af", "ba", "broken"});
        Atom *shut = mode->getAtomLinks()[0], *open = mode->getAtomLinks()[1],
             *broken = mode->getAtomLinks()[2], *go = cmd->getAtomLinks()[1];
        auto* flow = model.variable<StateVar>(tap, "flow", {"zero", "positive"});
        flow->type = typeObservable;
        HandModel::exclude(tap, flow->getAtomLinks()[0], open);
        HandModel::exclude(tap, flow->getAtomLinks()[1], shut);
        HandModel::exclude(tap, flow->getAtomLinks()[1], broken);
        HandModel::transition(tap, {{true, go}, {true, shut}}, {{true, open}});
        HandModel::transition(tap, {{true, go}, {true, shut}}, {{true, broken}}, transFail);
        HandModel::transition(tap, {{false, go}, {true, shut}}, {{true, shut}}, transNominal, true);
        HandModel::idle(tap, open);
        HandModel::idle(tap, broken);
        addLamp(flow->getAtomLinks()[1]);
        model.start();
        theRun().scheduler.tracked_traj.clear();
        theRun().scheduler.tracked_traj.emplace(1.0, std::move(model.traj));
    }

    // Always dark, and beside the tap in a clause: it weighs what is observed of the tap.
    void addLamp(Atom* positive) {
        Comp* lamp = model.comp("lamp");
        auto* light = model.variable<ModeVar>(lamp, "mode", {"dark", "lit"});
        HandModel::idle(lamp, light->getAtomLinks()[0])->proba = 1.0;
        HandModel::exclude(lamp, light->getAtomLinks()[1], positive);
    }
    static void run(std::string const& lines) {
        TextFile const file(lines);
        theRun().sMM->time = 0;
        complaint([&] { theRun().sMM->runSchD(file.path); });
    }
    // The ids of every state of the histories, in the order of their tables.
    static std::string orderIn(TrajectoryMap const& histories) {
        std::string order;
        for (auto const& entry : histories)
            for (auto const& [t, state] : entry.second->states) {
                order += "\n" + std::to_string(t) + ":";
                for (auto const& element : state->elts)
                    order += std::string(" ") + element.first;
            }
        return order;
    }

    HandModel model;
};

TEST_F(SearchedCopy, TheSearchGetsTheCopyOfBeforeTheObservation) {
    run("Command tap.cmd=go\n");
    Trajectory const* followed = theRun().scheduler.tracked_traj.begin()->second.get();
    ASSERT_EQ(followed->getCurrentTime(), 1);
    std::string expected, copiedOnceMore;
    complaint([&] {
        Observations const seen{{true, HandModel::atom("tap.flow=zero")}};
        double reached = 0.0;
        auto copy = std::make_unique<Trajectory>(followed, 2);
        auto further = std::make_unique<Trajectory>(copy.get(), 2);
        expected = orderIn(theRun().sMM->coverTrack3(std::move(copy), 1.0, 10.0, seen, reached));
        copiedOnceMore =
            orderIn(theRun().sMM->coverTrack3(std::move(further), 1.0, 10.0, seen, reached));
    });
    ASSERT_NE(expected, copiedOnceMore);
    run("Observation tap.flow=zero\n");
    EXPECT_EQ(orderIn(theRun().scheduler.tracked_traj), expected);
}

}  // namespace
