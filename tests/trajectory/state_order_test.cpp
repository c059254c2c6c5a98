// The order in which the elements of a state are walked. It decides which of two equal choices is
// taken first, so it may not change by chance.
//
// The rule, on plain lists: the hash of an id is h = 5 * h + c over its characters; a table of up
// to 193 entries has 193 buckets; a new entry goes to the front of its bucket, and the walk goes
// through the buckets in order. A state that is copied is walked and entered again, so that entries
// of one bucket change their order with every copy.
#include <algorithm>
#include <cstdint>
#include <list>
#include <map>

#include "fixtures/reference_model.h"
#include "fixtures/the_run.h"
#include "trajectory/trajectory_fixture.h"

using trajectory_fixture::atomsOf;
using trajectory_fixture::Unit;
using trajectory_fixture::walk;

namespace {

using Ids = std::vector<std::string>;

std::uint64_t bucketOf(std::string const& id) {
    std::uint64_t hash = 0;
    for (char const c : id)
        hash = 5 * hash + static_cast<unsigned char>(c);
    return hash % 193;
}

// What a table walks that was given *ids* in this order.
Ids walkOfTable(Ids const& ids) {
    std::map<std::uint64_t, std::list<std::string>> buckets;
    for (std::string const& id : ids)
        buckets[bucketOf(id)].push_front(id);
    Ids walked;
    for (auto const& bucket : buckets)
        walked.insert(walked.end(), bucket.second.begin(), bucket.second.end());
    return walked;
}

// Worked out by hand: 5 * 'b' + 'f' = 5 * 98 + 102 = 592 = 5 * 99 + 97 = 5 * 'c' + 'a', and
// 5 * 'd' + 92 = 592 with 92 the code of the backslash; so the three ids share a bucket.
class OneBucket : public testing::Test {
protected:
    OneBucket() {
        unit.variable("v", {"bf", "ca", "d\\"});
        for (char const* value : {"v=bf", "v=ca", "v=d\\"})
            entered.addElt(
                std::make_unique<TrajEl>(theRun().scheduler.book, unit[value], nullptr, nullptr, "")
                    .get(),
                false);
    }

    Unit unit{"u"};
    State entered{theRun().scheduler.book};
};

TEST_F(OneBucket, TheLastOneEnteredIsWalkedFirst) {
    ASSERT_EQ(bucketOf("u.v=bf"), bucketOf("u.v=ca"));
    ASSERT_EQ(bucketOf("u.v=bf"), bucketOf("u.v=d\\"));
    EXPECT_EQ(walk(entered), (Ids{"u.v=d\\", "u.v=ca", "u.v=bf"}));
}

TEST_F(OneBucket, EveryCopyTurnsTheOrderAround) {
    for (bool const full : {true, false}) {
        State const once(&entered, full);
        EXPECT_EQ(walk(once), (Ids{"u.v=bf", "u.v=ca", "u.v=d\\"}));
        State const twice(&once, full);
        EXPECT_EQ(walk(twice), (Ids{"u.v=d\\", "u.v=ca", "u.v=bf"}));
    }
}

TEST_F(OneBucket, ATruncatedHistoryTurnsItAroundToo) {
    string_map<Atom*> const none;
    Trajectory path(theRun().scheduler.book, &none);
    path.addState(0, std::make_unique<State>(&entered, true));
    Trajectory const copy(&path, 1);
    EXPECT_EQ(walk(*copy.getState(0)), (Ids{"u.v=d\\", "u.v=ca", "u.v=bf"})) << "turned twice";
}

TEST_F(OneBucket, ReplacingAnElementKeepsItsPlace) {
    entered.addElt(entered.getElt("u.v=bf"), false);
    EXPECT_EQ(walk(entered), (Ids{"u.v=d\\", "u.v=ca", "u.v=bf"}));
}

TEST(StateOrder, FollowsTheRuleWhenManyShareBuckets) {
    Unit unit("wide");
    Ids ids;
    std::vector<std::string> values;
    for (int i = 0; i < 150; ++i)
        values.push_back("value" + std::to_string(i * i));
    unit.variable("v", values);
    State state{theRun().scheduler.book};
    for (std::string const& value : values) {
        TrajEl const element(theRun().scheduler.book, unit["v=" + value], nullptr, nullptr, "");
        state.addElt(&element, false);
        ids.push_back("wide.v=" + value);
    }
    EXPECT_EQ(walk(state), walkOfTable(ids));
    State const copy(&state, true);
    EXPECT_EQ(walk(copy), walkOfTable(walkOfTable(ids)));
    EXPECT_NE(walk(copy), walk(state)) << "150 ids in 193 buckets: some share one";
}

// ---- The room ----

// The atoms stand in the order of their buckets: on 52, cmdin=open 53, c10 94, c11 95, c12 and
// thermostat=unknown 96, stuck_off 105, off 129, none 132, open 153, closed 159, stuck_on 163,
// close 168, room=unknown 178. Only the two of bucket 96 depend on how often they were entered
// anew.
Ids roomOrder(bool unknownFirst) {
    char const* const first = unknownFirst ? "thermostat.mode=unknown" : "room.c1=c12";
    char const* const second = unknownFirst ? "room.c1=c12" : "thermostat.mode=unknown";
    return {"thermostat.mode=on",
            "room.cmdin=open",
            "room.c1=c10",
            "room.c1=c11",
            first,
            second,
            "thermostat.mode=stuck_off",
            "thermostat.mode=off",
            "room.cmdin=none",
            "room.mode=open",
            "room.mode=closed",
            "thermostat.mode=stuck_on",
            "room.cmdin=close",
            "room.mode=unknown"};
}

// The table of atoms is filled from the clauses, those of the thermostat first: so c12 comes later
// and stands in front. The initial state is filled from a walk of that table.
TEST(StateOrder, OfTheRoomsInitialStateAndItsCopies) {
    ReferenceModel const model;
    Ids registered;
    for (auto const& entry : thePlant().active_atoms)
        registered.emplace_back(entry.first);
    EXPECT_EQ(registered, roomOrder(false));
    State const initial(theRun().scheduler.book, &thePlant().active_atoms);
    EXPECT_EQ(walk(initial), roomOrder(true));
    State const copy(&initial, true);
    EXPECT_EQ(walk(copy), roomOrder(false));
    State const copyOfCopy(&copy, false);
    EXPECT_EQ(walk(copyOfCopy), roomOrder(true));
}

// The same orders from the rule, with the ids in the order in which the clauses name them first.
TEST(StateOrder, OfTheRoomFollowsTheRule) {
    ReferenceModel const model;
    Ids named;
    for (auto const& clause : thePlant().cls)
        for (auto const& literal : clause->atoms)
            if (std::find(named.begin(), named.end(), literal.second->id) == named.end())
                named.push_back(literal.second->id);
    ASSERT_EQ(named.size(), 14u);
    Ids const registered = walkOfTable(named);
    State const initial(theRun().scheduler.book, &thePlant().active_atoms);
    EXPECT_EQ(walk(initial), walkOfTable(registered));
    EXPECT_EQ(walk(State(&initial, true)), walkOfTable(walkOfTable(registered)));
}

}  // namespace
