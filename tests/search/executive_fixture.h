// A random model as the engine runs it: its scenario from the first line, and what the histories
// that are followed then tell.
#pragma once

#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "search/executive_models_fixture.h"
#include "search/search_fixture.h"

class Transition;

namespace executives {

// Catches both streams while it lives.
class CaughtStreams {
public:
    CaughtStreams() : out(std::cout.rdbuf(text.rdbuf())), err(std::cerr.rdbuf(text.rdbuf())) {}
    ~CaughtStreams() {
        std::cout.rdbuf(out);
        std::cerr.rdbuf(err);
    }
    CaughtStreams(CaughtStreams const&) = delete;

    std::ostringstream text;

private:
    std::streambuf *out, *err;
};

// One history, from the first step that it still holds.
struct Told {
    int first;
    std::vector<Labels> steps;
};

// Borrows the model.
class Executive {
public:
    explicit Executive(Model const& model);

    // Every failure may then be expanded any number of times in one search.
    void allowRepeatedFailures();
    // Runs the first lines of the scenario. Once.
    void run(std::size_t lines);

    // Whether a text was written by the run.
    bool said(char const* words) const;
    // All that was written, with the measured times left out.
    std::string told() const;
    // What is wrong with a history goes to *errors*.
    std::vector<Told> histories(std::vector<std::string>& errors) const;
    // Whether each history obeyed what it was told and shows what was observed.
    void checkScenario(std::vector<std::string>& errors) const;
    // Whether each history is one that the model can take. Answers how many of its modes changed
    // without a transition that led there, as those that delayed effects reach may do.
    int checkMoves(std::vector<std::string>& errors) const;

private:
    struct Built {
        Comp* comp = nullptr;
        StateVar* variables[3] = {};                 // by kind
        std::vector<Transition const*> transitions;  // in the order of the rules
    };
    using Errors = std::vector<std::string>;

    void build(int index);
    void addRules(int index);
    void addClauses(int index);
    void link(int index);
    Atom* atom(Fact const& fact) const;
    Labels labelsAt(Trajectory const* trajectory, int step, Errors& errors) const;
    Told tell(Trajectory const* trajectory, Errors& errors) const;
    Rule const* ruleOf(int component, Transition const* transition) const;
    bool isTouchedByDelays(int component) const;
    bool checkMove(Trajectory const* trajectory, Told const& told, int component, int step,
                   Errors& errors) const;
    void checkTaken(Rule const* rule, Labels const& before, Fact const& now,
                    std::string const& where, Errors& errors) const;
    void checkRank(Trajectory const* trajectory, Errors& errors) const;
    void checkLines(Trajectory const* trajectory, Errors& errors) const;

    Model const& model;
    std::size_t ran = 0;  // lines
    std::vector<Built> built;
    CaughtStreams streams;
    search_fixture::Engine engine{"executive"};
};

}  // namespace executives
