// The registry: lookups, bags, covers, benchmark logs, and error texts.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "fixtures/the_run.h"
#include "model/model_fixture.h"

using model_fixture::complaint;
using model_fixture::printed;
using model_fixture::RegistryTest;
using model_fixture::Valued;

namespace {

TEST(RegistryStart, StatisticsBeginAtTheirInitialValues) {
    EXPECT_EQ(theRun().scheduler.trajectories_created, 1u);
    EXPECT_EQ(theRun().scheduler.trajectories_checked, 0u);
    EXPECT_EQ(theRun().scheduler.transitions_checked, 0u);
    EXPECT_EQ(theRun().scheduler.trajectories_destroyed, 0u);
    EXPECT_EQ(theRun().scheduler.itms_calls, 0u);
    EXPECT_EQ(theRun().scheduler.traj_cover, 0.0);
    EXPECT_EQ(thePlant().name, "");
}

TEST_F(RegistryTest, InitStartsTheCoverOfStepZero) {
    theRun().scheduler.states_cover[0] = 0.5;
    EXPECT_EQ(registry.init(), 1);
    ASSERT_EQ(theRun().scheduler.states_cover.count(0), 1u);
    EXPECT_EQ(theRun().scheduler.states_cover[0], 0.0);
    EXPECT_EQ(theRun().scheduler.states_cover.size(), 1u);
}

TEST_F(RegistryTest, ConstructionStartsTheCoverOfStepZero) {
    EXPECT_EQ(theRun().scheduler.states_cover.size(), 1u);
    EXPECT_EQ(theRun().scheduler.states_cover[0], 0.0);
}

TEST_F(RegistryTest, TellsWhatTheMakingOfAComponentComplainedOf) {
    auto comp = std::make_unique<Comp>("t");
    auto const values = std::set<std::string>{"on"};
    ModeVar* mode =
        comp->addStateVar(std::make_unique<ModeVar>("t.mode", values, "broken", comp.get()));
    comp->newAtom("t_mode_molten", mode, "molten");
    EXPECT_EQ(printed([&] { registry.addComp(std::move(comp)); }),
              "StateVar --> Wrong default value"
              "Atom --> Cannot create the atom : value not in the variable domain\n");
}

TEST_F(RegistryTest, FindsComponentsByTheTextOfTheirName) {
    Comp* room = component("room", {});
    std::string const name = "room";
    EXPECT_EQ(theRun().scheduler.getComp(name.c_str()), room);
    EXPECT_EQ(thePlant().active_comps.size(), 1u);
    EXPECT_EQ(thePlant().active_comps.begin()->first, room->getName())
        << "the key is the component's own text";
}

TEST_F(RegistryTest, AddCompReturnsTheDerivedComponent) {
    struct Room : Comp {
        Room() : Comp("room") {}
        int windows = 2;
    };
    Room* room = registry.addComp(std::make_unique<Room>());
    EXPECT_EQ(room->windows, 2);
    EXPECT_EQ(theRun().scheduler.getComp("room"), room);
}

TEST_F(RegistryTest, UnknownComponentEntersANullThatWalksMeet) {
    component("room", {0.5});
    EXPECT_EQ(theRun().scheduler.getComp("cellar"), nullptr);
    EXPECT_EQ(thePlant().active_comps.size(), 2u);
    EXPECT_EQ(thePlant().active_comps.count("cellar"), 1u);
    EXPECT_EQ(theRun().scheduler.getComp("cellar"), nullptr);
    EXPECT_EQ(thePlant().active_comps.size(), 2u) << "the second question enters no more";
    EXPECT_EQ(printed([] { theRun().scheduler.showComps(); }), "room -- room\n");
}

// Both names have their own bucket (78 and 41 of 193), so neither finds the slot any more.
TEST_F(RegistryTest, RenamingARegisteredComponentLosesItsSlot) {
    Comp* comp = component("aaaa", {});
    comp->setName("bbbb");
    EXPECT_STREQ(thePlant().active_comps.begin()->first, "bbbb");
    EXPECT_EQ(thePlant().active_comps.count("aaaa"), 0u);
    EXPECT_EQ(thePlant().active_comps.count("bbbb"), 0u);
    EXPECT_EQ(thePlant().active_comps.size(), 1u);
}

TEST_F(RegistryTest, FindsAtomsByIdAndEntersANullForAnUnknownOne) {
    Valued<> const mode("m", {"on", "off"});
    registry.addAtom(mode["on"]);
    registry.addAtom(mode["off"]);
    EXPECT_EQ(theRun().scheduler.getAtom("m=on"), mode["on"]);
    EXPECT_EQ(theRun().scheduler.getAtom("m=off"), mode["off"]);
    EXPECT_EQ(thePlant().active_atoms.size(), 2u);
    EXPECT_EQ(theRun().scheduler.getAtom("m=gone"), nullptr);
    EXPECT_EQ(thePlant().active_atoms.size(), 3u);
    thePlant().active_atoms.clear();
}

TEST_F(RegistryTest, TakesClausesInOrder) {
    auto first = std::make_unique<Clause>(static_cast<Comp*>(nullptr));
    Clause* const given = first.get();
    EXPECT_EQ(thePlant().addClause(std::move(first)), given);
    Clause* const second =
        thePlant().addClause(std::make_unique<Clause>(static_cast<Comp*>(nullptr)));
    ASSERT_EQ(thePlant().cls.size(), 2u);
    EXPECT_EQ(thePlant().cls[0].get(), given);
    EXPECT_EQ(thePlant().cls[1].get(), second);
}

TEST_F(RegistryTest, SearchesAVectorByPointer) {
    Valued<> mode("m", {"on", "off"});
    Atom const twin(&mode.variable, "on", "m=on");
    std::vector<Atom*> const atoms = {mode["off"], mode["on"]};
    EXPECT_TRUE(DataManager::inVector(mode["on"], &atoms));
    EXPECT_TRUE(DataManager::inVector(mode["off"], &atoms));
    EXPECT_FALSE(DataManager::inVector(&twin, &atoms));
    std::vector<Atom*> const none;
    EXPECT_FALSE(DataManager::inVector(mode["on"], &none));
}

TEST_F(RegistryTest, SearchesAListByText) {
    std::list<char const*> const texts = {"on", "off"};
    std::string const off = "off";
    EXPECT_TRUE(DataManager::inList(off.c_str(), &texts));
    EXPECT_TRUE(DataManager::inList("on", &texts));
    EXPECT_FALSE(DataManager::inList("of", &texts));
    std::list<char const*> const none;
    EXPECT_FALSE(DataManager::inList("on", &none));
}

TEST_F(RegistryTest, SearchesTheValuesOfAMultimapByPointer) {
    Valued<> mode("m", {"on", "off"});
    Atom const twin(&mode.variable, "on", "m=on");
    std::multimap<std::string, Atom*, eqstring> atoms;
    EXPECT_FALSE(DataManager::inMultimap(mode["on"], &atoms));
    atoms.insert({"a", mode["off"]});
    atoms.insert({"a", mode["on"]});
    EXPECT_TRUE(DataManager::inMultimap(mode["on"], &atoms));
    EXPECT_TRUE(DataManager::inMultimap(mode["off"], &atoms));
    EXPECT_FALSE(DataManager::inMultimap(&twin, &atoms));
}

TEST(RegistryStart, EqualityOfStringsIsAnOrderingObject) {
    eqstring const equal;
    EXPECT_TRUE(equal("a", std::string("a")));
    EXPECT_FALSE(equal("a", "b"));
    EXPECT_FALSE(equal("b", "a"));
}

// A weight of 0.5 over two components is 0.25 each time; over three, a third of the weight.
TEST_F(RegistryTest, CoverOfAStepGrowsByTheWeightPerComponent) {
    Transition* transition = component("room", {0.5})->getCompTransitions()[0].get();
    component("cellar", {});
    transition->weight = 0.5;
    theRun().scheduler.updateStatesCover(3, transition);
    EXPECT_DOUBLE_EQ(theRun().scheduler.states_cover[3], 0.25);
    theRun().scheduler.updateStatesCover(3, transition);
    EXPECT_DOUBLE_EQ(theRun().scheduler.states_cover[3], 0.5);
    theRun().scheduler.updateStatesCover(4, transition);
    EXPECT_DOUBLE_EQ(theRun().scheduler.states_cover[4], 0.25);
    theRun().scheduler.getComp("attic");
    theRun().scheduler.updateStatesCover(5, transition);
    EXPECT_DOUBLE_EQ(theRun().scheduler.states_cover[5], 0.5 / 3.0) << "a null entry counts too";
}

// (0 + 0.2 + 0.4) / 2, then (0.3 + 0.2 + 0.4) / 2: the earlier result is built on.
TEST_F(RegistryTest, CoverOfTheTrajectoriesBuildsOnTheEarlierCall) {
    theRun().scheduler.states_cover[0] = 0.2;
    theRun().scheduler.states_cover[1] = 0.4;
    theRun().scheduler.updateTrajectoriesCover();
    EXPECT_DOUBLE_EQ(theRun().scheduler.traj_cover, 0.3);
    theRun().scheduler.updateTrajectoriesCover();
    EXPECT_DOUBLE_EQ(theRun().scheduler.traj_cover, 0.45);
}

TEST_F(RegistryTest, RequestErrorGoesOnIntoTheWarning) {
    EXPECT_EQ(complaint([] { theRun().scheduler.dataError(0, 1); }),
              "Request error.\n ...component doesn't exist.\n"
              "Warning.\n  ...component doesn't exist.\n");
}

TEST_F(RegistryTest, WarningAlone) {
    EXPECT_EQ(complaint([] { theRun().scheduler.dataError(1, 1); }),
              "Warning.\n  ...component doesn't exist.\n");
}

TEST_F(RegistryTest, OtherKindsOfErrorWriteNothing) {
    for (long const kind : {2L, 3L, -1L})
        EXPECT_EQ(complaint([&] { theRun().scheduler.dataError(kind, 1); }), "") << kind;
}

TEST_F(RegistryTest, CodeOutsideTheTableIsHarmless) {
    for (long const code : {0L, 2L, -1L})
        EXPECT_EQ(complaint([&] { theRun().scheduler.dataError(1, code); }),
                  "Warning.\n  ...unknown error.\n")
            << code;
}

std::string contentOf(std::filesystem::path const& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A host that keeps the lines of the logs.
class KeepingHost : public Host {
public:
    std::ostream& propagationLog() override { return propagations; }
    std::ostream& stepLog() override { return steps; }

    std::ostringstream propagations, steps;
};

TEST(Logs, LineOfAStep) {
    KeepingHost host;
    Plant const plant("logged");
    DataManager run(plant, host);
    run.addBmkEntry(3, 0.25, false, 12);
    run.addBmkEntry(-1, 1.23456789, true, 0);
    run.addBmkEntry(4, 0.000001, false, 1);
    EXPECT_EQ(host.steps.str(), "3 0.25 0 12\n-1 1.23457 1 0\n4 1e-06 0 1\n");
}

TEST(Logs, LineOfAPropagationIsNumbered) {
    KeepingHost host;
    Plant const plant("logged");
    DataManager run(plant, host);
    std::vector<char const*> const ids = {"m=on", "n=off"};
    std::vector<char const*> const none;
    run.addItmsBmkEntry(0.5, 3, &ids);
    run.addItmsBmkEntry(2.0, 0, &none);
    EXPECT_EQ(host.propagations.str(), "0 0.5 3 m=on n=off \n1 2 0 \n");
    EXPECT_EQ(run.itms_calls, 2u);
}

// Makes the console's host in *folder*, in a process of its own, with no standard output when told;
// then a message is written there. Returns the exit status.
int startIn(std::filesystem::path const& folder, bool withOutput) {
    pid_t const child = fork();
    if (child == 0) {
        if (chdir(folder.c_str()) != 0)
            _exit(126);
        close(STDOUT_FILENO);
        if (withOutput)
            open("/dev/null", O_WRONLY);
        {
            ConsoleHost host;
            host.out() << "a message\n" << std::flush;
        }
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class LogsAtStart : public testing::Test {
protected:
    LogsAtStart() : folder(testing::TempDir() + "logs-at-start-" + std::to_string(getpid())) {
        std::filesystem::create_directories(folder);
    }
    ~LogsAtStart() override { std::filesystem::remove_all(folder); }

    std::filesystem::path const folder;
};

TEST_F(LogsAtStart, AppearInTheWorkingDirectory) {
    ASSERT_EQ(startIn(folder, true), 0);
    for (char const* name : {"bench1.bmk", "itmsbench.bmk"}) {
        ASSERT_TRUE(std::filesystem::exists(folder / name)) << name;
        EXPECT_EQ(contentOf(folder / name), "") << name;
    }
}

TEST_F(LogsAtStart, LoseWhatAnEarlierRunWrote) {
    for (char const* name : {"bench1.bmk", "itmsbench.bmk"})
        std::ofstream(folder / name) << "old\n";
    ASSERT_EQ(startIn(folder, true), 0);
    for (char const* name : {"bench1.bmk", "itmsbench.bmk"})
        EXPECT_EQ(contentOf(folder / name), "") << name;
}

// Without standard output the first file opened would take its descriptor, and the messages.
TEST_F(LogsAtStart, ReceiveNoMessagesWhenStandardOutputIsClosed) {
    ASSERT_EQ(startIn(folder, false), 0);
    for (char const* name : {"bench1.bmk", "itmsbench.bmk"})
        EXPECT_EQ(contentOf(folder / name), "") << name;
}

}  // namespace
