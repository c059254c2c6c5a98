// Asserting propositions, looking for violated clauses, re-supporting and retracting.
#include <algorithm>
#include <set>

#include "fixtures/the_run.h"
#include "reasoning/reasoning_fixture.h"

using reasoning_fixture::count;
using reasoning_fixture::SmallModel;

namespace {

// Reads the record of the propagations in place of its file.
class Record {
public:
    Record() : file(stream().rdbuf(text.rdbuf())) {}
    ~Record() { stream().rdbuf(file); }

    std::vector<std::string> lines() const {
        std::vector<std::string> found;
        std::istringstream in(text.str());
        for (std::string line; std::getline(in, line);)
            found.push_back(line);
        return found;
    }

private:
    static std::ios& stream() { return runHost().propagationLog(); }

    std::stringstream text;
    std::streambuf* file;
};

class ItmsAssertion : public testing::Test {
protected:
    SmallModel model;
};

TEST_F(ItmsAssertion, TheSignOfAPropositionIsTheValueToHold) {
    model.propositions("p q r");
    model.clause("p q r");
    model.start();
    model.label("!p q ?r");
    ItmsResults const results = model.assertAll("p !q r");
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(model.labels("p q r", results[0]->state.get()), "tft");
    EXPECT_EQ(results[0]->already_changed.size(), 3u);
    EXPECT_EQ(results[0]->already_changed.find("c.q=on")->second,
              model.elt("q", results[0]->state.get()));
    EXPECT_EQ(model.refused, nullptr);  // the state was consumed
    EXPECT_EQ(count(model.trace.take(), "[addClause] --> res' size : 1\n"), 1);
}

TEST_F(ItmsAssertion, NoPropositionLeavesOneSolution) {
    model.propositions("p");
    model.clause("p");
    model.start();
    EXPECT_EQ(model.assertAll("").size(), 1u);
}

TEST_F(ItmsAssertion, AnImpossibleStepHasNoResultAndIsRecorded) {
    model.propositions("p q");
    model.clause("p q");
    model.clause("p !q");
    model.start();
    model.label("p !q");
    Record record;
    EXPECT_TRUE(model.assertAll("!p").empty());
    EXPECT_EQ(count(model.trace.take(), "[addClause] --> res' size : 0\n"), 1);
    ASSERT_EQ(record.lines().size(), 1u);
    EXPECT_EQ(record.lines()[0].substr(record.lines()[0].size() - 10), " 0 c.p=on ");
}

TEST_F(ItmsAssertion, EachCallIsRecordedWithItsResultsAndIds) {
    model.propositions("p q");
    model.clause("p q");
    model.start();
    Record record;
    model.assertAll("p !q");
    model.assertAll("q");
    ASSERT_EQ(record.lines().size(), 2u);
    auto const first = SmallModel::words(record.lines()[0]);
    ASSERT_EQ(first.size(), 5u);
    EXPECT_EQ(first[0], "0");
    EXPECT_LT(std::stod(first[1]), 10.0);  // seconds
    EXPECT_EQ(first[2], "1");
    EXPECT_EQ((std::set<std::string>{first[3], first[4]}),
              (std::set<std::string>{"c.p=on", "c.q=on"}));
    EXPECT_EQ(SmallModel::words(record.lines()[1])[0], "1");
}

class ItmsRefusal : public ItmsAssertion {
protected:
    void beginFailure(std::string const& label) {
        model.variable("m", {"on", "bad"}, false);
        fail = model.transition("m=on", "m=bad", 0.1, transFail);
        model.clause("m=on m=bad");
        model.start();
        model.label(label);
    }
    bool isRefused(std::string const& props, double maxRank) {
        bool const empty = model.assertAll(props, {false, maxRank}).empty();
        EXPECT_EQ(empty, model.refused != nullptr);
        return empty;
    }

    Transition* fail = nullptr;
};

TEST_F(ItmsRefusal, TheProjectedRankTakesTheStateOutAndItsFailuresAndOneMoreIn) {
    beginFailure("!m=bad");
    EXPECT_EQ(projectedRank(model.history.get(), model.state()), 1.0);
    model.history->rank = 5.0;
    EXPECT_EQ(projectedRank(model.history.get(), model.state()), 6.0);
    model.elt("m=bad")->prevTrans = fail;
    EXPECT_EQ(projectedRank(model.history.get(), model.state()), 5.0);
    model.state()->failCount = 2.0;
    EXPECT_EQ(projectedRank(model.history.get(), model.state()), 7.0);
}

TEST_F(ItmsRefusal, AFailureBeyondTheRankIsRefused) {
    beginFailure("!m=bad");
    EXPECT_TRUE(isRefused("m=bad", 0.5));
    EXPECT_FALSE(isRefused("m=bad", 1.0));
    model.history->rank = 2.0;
    EXPECT_TRUE(isRefused("m=bad", 2.5));
    EXPECT_FALSE(isRefused("m=bad", 3.0));
}

TEST_F(ItmsRefusal, AFailureThatIsUnknownOrThereOrDeniedIsNot) {
    beginFailure("?m=bad");
    EXPECT_FALSE(isRefused("m=bad", 0.0));
    model.label("m=bad");
    EXPECT_FALSE(isRefused("m=bad", 0.0));
    model.label("!m=bad");
    EXPECT_FALSE(isRefused("!m=bad", 0.0));
    EXPECT_FALSE(isRefused("m=on", 0.0));
}

TEST_F(ItmsRefusal, AForbiddenCommandIsRefusedInBothDirections) {
    model.propositions<CommandVar>("go");
    model.clause("go");
    model.start();
    EXPECT_FALSE(isRefused("go", 9.0));
    static_cast<CommandVar*>(model.atom("go")->var)->forbidden = true;
    EXPECT_TRUE(isRefused("go", 9.0));
    EXPECT_TRUE(isRefused("!go", 9.0));
}

TEST_F(ItmsRefusal, ARefusalHandsTheStateBackAndWritesNoRecord) {
    beginFailure("m=on !m=bad");
    Record record;
    EXPECT_TRUE(isRefused("!m=on m=bad", 0.0));
    EXPECT_EQ(model.labels("m=bad", model.refused.get()), "f");
    EXPECT_TRUE(record.lines().empty());
    EXPECT_EQ(model.trace.take(), "");  // nothing was propagated
}

TEST_F(ItmsRefusal, ARefusalLeavesTheRequestForLocksStanding) {
    beginFailure("!m=bad");
    model.assertAll("m=bad", {false, 0.0}, true);
    EXPECT_TRUE(model.engine.keepLocks);
    model.assertAll("m=bad", {false, 0.0}, false);
    EXPECT_TRUE(model.engine.keepLocks);
    model.assertAll("m=bad", {false, 1.0}, false);
    EXPECT_FALSE(model.engine.keepLocks);  // the next call that ends resets it
}

// Asks for q at step 1, where the clause brings the component of seen forward.
class ItmsKeep : public ItmsAssertion {
protected:
    int lockOfThePulled(bool keep) {
        model.comp("d");
        model.propositions("q", "d");
        model.variable("seen", {"yes"}, false)->type = typeObservable;
        model.clause("!q seen=yes");
        model.start();
        model.label("!q seen=yes");
        model.elt("seen=yes")->lock = LOCK_TRUE_PERM;
        model.history->addState(1, std::make_unique<State>(theRun().scheduler.book));
        std::unique_ptr<State> next = model.history->takeState(1);
        StateSite const site{next.get(), model.history.get(), 1};
        SignedElements props;
        props.insert({true, model.engine.getElt(model.atom("q")->getId(), site)});
        ItmsResults const results =
            model.engine.addPropositions(props, next, {false, 9.0}, model.history.get(), 1, keep);
        EXPECT_FALSE(model.engine.keepLocks);
        int const lock = model.elt("seen=yes", results.at(0)->state.get())->lock;
        model.history->putState(1, std::move(results[0]->state));
        return lock;
    }
};

TEST_F(ItmsKeep, LocksOfObservablesComeAlongOnRequest) {
    EXPECT_EQ(lockOfThePulled(true), LOCK_TRUE_PERM);
}

TEST_F(ItmsKeep, AndNotWithout) {
    EXPECT_EQ(lockOfThePulled(false), LOCK_FREE);
}

TEST_F(ItmsAssertion, TheWeightsStartFromThePriorsUnlessAnUnobservedStateIsObserved) {
    model.variable("m", {"on", "off"});
    int const id = model.transition("m=on", "m=off", 0.25)->id;
    model.start();
    model.weigh({"c"});
    auto const weightAfter = [&](bool observing, bool observed) {
        model.state()->postProbs[id] = 0.9;
        model.state()->observed = observed;
        return model.assertAll("m=on", {observing, 9.0}).at(0)->state->postProbs.at(id);
    };
    EXPECT_EQ(weightAfter(false, false), 0.25);
    EXPECT_EQ(weightAfter(false, true), 0.25);
    EXPECT_EQ(weightAfter(true, true), 0.25);
    EXPECT_EQ(weightAfter(true, false), 0.9);
}

class ItmsChecks : public ItmsAssertion {
protected:
    std::vector<Clause*> drain() {
        std::vector<Clause*> clauses;
        for (; !conflicts.empty(); conflicts.pop())
            clauses.push_back(conflicts.front());
        return clauses;
    }

    std::queue<Clause*> conflicts;
};

TEST_F(ItmsChecks, OfTheViolatedInternalClausesTheLastIsAnswered) {
    StateVar* mode = model.variable("m", {"a", "b", "c"});
    model.start();
    ASSERT_EQ(mode->clauses.size(), 4u);  // not a b, not a c, not b c, one of them
    EXPECT_EQ(model.engine.checkForInternalConflicts(model.elt("m=a"), model.site()), nullptr);
    model.label("m=a m=b m=c");
    EXPECT_EQ(model.engine.checkForInternalConflicts(model.elt("m=a"), model.site()),
              mode->clauses[2]);
    model.label("m=a m=b !m=c");
    EXPECT_EQ(model.engine.checkForInternalConflicts(model.elt("m=c"), model.site()),
              mode->clauses[0]);
    model.label("!m=a !m=b !m=c");
    EXPECT_EQ(model.engine.checkForInternalConflicts(model.elt("m=a"), model.site()),
              mode->clauses[3]);
    model.label("?m=b");
    EXPECT_EQ(model.engine.checkForInternalConflicts(model.elt("m=a"), model.site()), nullptr);
}

TEST_F(ItmsChecks, AVariableGivesOneInternalConflictAtMost) {
    model.variable("m", {"a", "b", "c"});
    StateVar* other = model.variable("n", {"a", "b"});
    model.start();
    model.label("m=a m=b m=c n=a n=b");
    model.engine.checkForFocusedInternalConflicts(model.table("m=a m=b m=c"), conflicts,
                                                  model.site());
    EXPECT_EQ(drain().size(), 1u);
    model.engine.checkForFocusedInternalConflicts(model.table("m=a n=a n=b"), conflicts,
                                                  model.site());
    std::vector<Clause*> const two = drain();
    EXPECT_EQ(two.size(), 2u);
    EXPECT_EQ(std::count(two.begin(), two.end(), other->clauses[0]), 1);
    model.engine.checkForFocusedInternalConflicts({}, conflicts, model.site());
    EXPECT_TRUE(conflicts.empty());
}

TEST_F(ItmsChecks, EveryViolatedClauseOfEveryElementIsQueued) {
    model.propositions("p q r");
    Clause* first = model.clause("p q");
    model.clause("p !q");
    Clause* third = model.clause("p");
    Clause* open = model.clause("p r");
    model.start();
    model.label("!p !q ?r");
    model.engine.checkForFocusedConflicts(model.table("p"), conflicts, model.site());
    EXPECT_EQ(drain(), (std::vector<Clause*>{first, third}));
    model.engine.checkForFocusedConflicts(model.table("q"), conflicts, model.site());
    EXPECT_EQ(drain(), std::vector<Clause*>{first});
    model.label("!r");
    model.engine.checkForFocusedConflicts(model.table("p q"), conflicts, model.site());
    std::vector<Clause*> const all = drain();
    EXPECT_EQ(std::count(all.begin(), all.end(), first), 2);  // once for each element
    EXPECT_EQ(std::count(all.begin(), all.end(), open), 1);
    EXPECT_EQ(all.size(), 4u);
}

TEST_F(ItmsChecks, TheCheckOfAllClausesTellsThoseThatDoNotHold) {
    model.propositions("p q");
    model.clause("p");
    Clause* open = model.clause("q");
    Clause* broken = model.clause("!p");
    model.start();
    model.label("p ?q");
    EXPECT_EQ(model.engine.checkForConflicts(thePlant().cls, model.site()),
              (std::vector<Clause*>{open, broken}));  // an unknown does not hold either
    EXPECT_EQ(model.trace.take(),
              "*** detected conflicts ***\ncl size: 1\nc.q=on\ncl size: 1\nnon - c.p=on\n");
}

class ItmsResupport : public ItmsAssertion {
protected:
    void begin(std::string const& labels) {
        model.start();
        model.label(labels);
    }
    void resupport(char const* name) {
        model.engine.resupportDependence(model.elt(name), focus, model.site());
    }

    ElementTable focus;
};

TEST_F(ItmsResupport, AnUnknownElementOfASatisfiedClauseGetsIt) {
    model.propositions("p q");
    Clause* clause = model.clause("!p q");
    begin("!p ?q");
    model.elt("p")->propagationNumber = 4;
    resupport("p");
    EXPECT_EQ(model.elt("q")->support, clause);
    EXPECT_EQ(model.elt("q")->propagationNumber, 5);
    EXPECT_TRUE(model.elt("q")->isLabelled(labelUnknown));
    EXPECT_EQ(focus.find("c.q=on")->second, model.elt("q"));
    EXPECT_TRUE(model.elt("p")->consequences.empty());  // no link back
    EXPECT_EQ(model.trace.take().find("[resupportDependency] --> resupporting :\n--- Atom"), 0u);
}

TEST_F(ItmsResupport, AnOpenClauseSupportsNothing) {
    model.propositions("p q");
    model.clause("p q");
    begin("!p ?q");
    resupport("p");
    EXPECT_EQ(model.elt("q")->support, nullptr);
    EXPECT_TRUE(focus.empty());
}

TEST_F(ItmsResupport, TheElementItselfAndWhatIsNotResupportableAreLeftOut) {
    model.propositions("p q r");
    model.clause("!p q");
    model.clause("r q");
    begin("!p ?q r");
    resupport("q");
    EXPECT_EQ(model.elt("q")->support, nullptr);
    resupport("r");  // r is true: it would explain the clause already
    EXPECT_EQ(model.elt("q")->support, nullptr);
    model.elt("q")->propagationNumber = 1;
    resupport("p");  // above the number of the atom of p
    EXPECT_EQ(model.elt("q")->support, nullptr);
}

TEST_F(ItmsResupport, TheLinksOfTheOldSupportGo) {
    model.propositions("p q r");
    model.clause("!p q");
    Clause* old = model.clause("q r");
    begin("!p ?q ?r");
    model.engine.setSupport(old, model.elt("q"), model.site());
    model.elt("r")->consequences.push_back(model.elt("q"));
    resupport("p");
    EXPECT_NE(model.elt("q")->support, old);
    EXPECT_EQ(model.elt("r")->consequences.size(), 1u);  // the first of the two went
}

TEST_F(ItmsResupport, AnEntryOfTheFocusStays) {
    model.propositions("p q");
    model.clause("!p q");
    begin("!p ?q");
    focus[model.atom("q")->getId()] = model.elt("p");
    resupport("p");
    EXPECT_EQ(focus.find("c.q=on")->second, model.elt("p"));
}

class ItmsDeletion : public ItmsAssertion {
protected:
    void begin(std::string const& labels) {
        model.start();
        model.label(labels);
    }
    void remove(char const* name) {
        model.engine.deleteClause(model.elt(name), list, model.site());
    }
    std::vector<TrajEl*> elements(std::string const& names) {
        std::vector<TrajEl*> found;
        for (std::string const& name : SmallModel::words(names))
            found.push_back(model.elt(name));
        return found;
    }

    std::vector<TrajEl*> list;
};

TEST_F(ItmsDeletion, ARetractedElementIsUnknownAndUnsupported) {
    model.propositions("p q");
    Clause* clause = model.clause("p q");
    begin("p !q");
    model.elt("p")->support = clause;
    model.elt("p")->propagationNumber = 3;
    remove("p");
    EXPECT_EQ(model.labels("p q"), "uf");
    EXPECT_EQ(model.elt("p")->support, nullptr);
    EXPECT_EQ(model.elt("p")->propagationNumber, 0);
    EXPECT_EQ(list, elements("p"));
    EXPECT_EQ(model.trace.take().find("[deleteClause] --> delete clause :\n--- Atom"), 0u);
}

TEST_F(ItmsDeletion, OnlyConsequencesWhoseSupportNoLongerHoldGoWithIt) {
    model.propositions("p q r s");
    Clause* failing = model.clause("p !q");
    Clause* holding = model.clause("p r");
    model.clause("s");
    begin("p q r s");
    model.elt("q")->support = failing;  // true under a negated literal: p alone kept it
    model.elt("r")->support = holding;  // held by its own literal
    model.elt("p")->consequences = elements("r s q");
    remove("p");
    EXPECT_EQ(model.labels("p q r s"), "uutt");  // s has no support, and no support fails
    EXPECT_TRUE(model.elt("p")->consequences.empty());
    EXPECT_EQ(model.elt("r")->support, holding);
}

TEST_F(ItmsDeletion, AfterEachCascadeTheListIsAppendedToItselfOnce) {
    model.propositions("p q");
    Clause* failing = model.clause("p !q");
    begin("p q");
    model.elt("q")->support = failing;
    model.elt("p")->consequences = elements("q");
    remove("p");
    EXPECT_EQ(list, elements("p q p q"));
}

TEST_F(ItmsDeletion, ACircleOfConsequencesEnds) {
    model.propositions("p q");
    Clause* one = model.clause("p !q");
    Clause* other = model.clause("!p q");
    begin("p q");
    model.elt("q")->support = one;
    model.elt("p")->support = other;
    model.elt("p")->consequences = elements("q q");
    model.elt("q")->consequences = elements("p");
    remove("p");
    EXPECT_EQ(model.labels("p q"), "uu");
    EXPECT_EQ(list, elements("p q p q"));
}

// Each retraction would double the list: forty of them would not fit any memory.
TEST_F(ItmsDeletion, ALongChainOfRetractionsStaysSmall) {
    std::string names;
    for (int i = 0; i < 40; ++i)
        names += "p" + std::to_string(i) + " ";
    model.propositions(names);
    std::vector<Clause*> links;
    for (int i = 1; i < 40; ++i)
        links.push_back(model.clause("p" + std::to_string(i - 1) + " !p" + std::to_string(i)));
    begin(names);
    for (int i = 1; i < 40; ++i) {
        TrajEl* element = model.elt("p" + std::to_string(i));
        element->support = links[static_cast<std::size_t>(i - 1)];
        model.elt("p" + std::to_string(i - 1))->consequences = {element};
    }
    remove("p0");
    EXPECT_EQ(model.labels(names), std::string(40, 'u'));
    EXPECT_LT(list.size(), 20000u);
    for (TrajEl* element : elements(names))
        EXPECT_NE(std::find(list.begin(), list.end(), element), list.end());
}

}  // namespace
