// The engine's form of a plain case: a scheduler with its model, which is commanded step by step,
// observed at the end, and asked for the histories that it then holds.
//
// A run is command(), then observe(). The search works in between on the followed history alone.
#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "search/random_models_fixture.h"
#include "search/search_fixture.h"

namespace random_models {

// A component and the index of one of its moves.
using MoveOf = std::pair<int, int>;

// Borrows the case.
class EngineModel {
public:
    explicit EngineModel(Case const& example, RunSettings const& settings = {});

    // Every failure may then be expanded any number of times in one search.
    void allowRepeatedFailures();
    // Runs the commands of the case.
    void command();
    // Brings into every state of the followed history every component, idle.
    void fillGaps();
    // Inserts what the case observed, with a search if the followed history does not explain it.
    void observe();

    // Of the followed history: the first step that it still holds, and whether the state of a step
    // itself holds a component.
    int windowStart() const;
    bool holds(int component, int step) const;

    bool hasSearched() const;
    // The failing moves that the search left out although the rank allowed for one more failure.
    std::set<MoveOf> leftOutWithinRank() const;
    // What observe() wrote on the error stream.
    std::string trace;

    // A history as the engine tells it, from the start of its window; what is wrong with it goes to
    // *errors*.
    ModeHistory read(Trajectory const* trajectory, std::vector<std::string>& errors) const;
    // All that the engine holds, as texts of their moves from *first* on, in no order.
    std::vector<std::string> histories(int first, std::vector<std::string>& errors) const;

private:
    struct Built {
        Comp* comp = nullptr;
        StateVar* mode = nullptr;
        StateVar* command = nullptr;
        StateVar* out = nullptr;
        std::vector<Transition const*> transitions;  // in the order of the plain moves
    };
    void build(int index);
    void addMoves(int index);
    void addClauses(int index);
    static void addModeClauses(Built const& made, Built const* above, int mode, int shows);
    std::string commandLines() const;
    std::string observationLine() const;
    static Trajectory* followed();
    MoveOf moveOf(int id) const;

    bool isMeant(int component, int move, Transition const* taken, int to) const;
    int moveInto(Trajectory const* trajectory, int component, int step, Modes const& from, int to,
                 std::vector<std::string>& errors) const;
    Modes modesAt(Trajectory const* trajectory, int step, std::vector<std::string>& errors) const;
    void readMoves(Trajectory const* trajectory, int step, Modes const& modes, ModeHistory& history,
                   std::vector<std::string>& errors) const;
    void checkEnd(Trajectory const* trajectory, ModeHistory const& history,
                  std::vector<std::string>& errors) const;

    Case const& example;
    std::vector<Built> built;
    search_fixture::QuietStreams streams;
    search_fixture::Engine engine;
};

}  // namespace random_models
