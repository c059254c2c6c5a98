// Continuous fault isolation: which influences could explain that measures misbehave.
//
// Each misbehaving measure gets a conflict set: the influences upstream of it that could be wrong.
// A diagnosis is a set of suspects that touches every conflict set; the hitting-set tree grows them
// one conflict set at a time. Three levels:
//   1  the misbehaving measures alone;
//   2  also soft conflict sets, from behaving measures that share suspects with misbehaving ones,
//      and an order by preference class;
//   3  the sets of level 1, without the diagnoses that a behaving measure exonerates.
// The suspects are handed to the host as data (Isolation). What lasts is their text in the
// runtime's diagBuf and the atom sets in its bridgeConflicts.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "continuous/records.h"

class Host;

// One suspect. Borrows the influence.
struct Conflict {
    std::string name;  // of the influence; "" for an anonymous one
    s_Influence* influence = nullptr;
    int delay = 0;  // cycles between the influence's action and the measure
    // Accused of acting although the candidate has it rest. Only by the rule `suspects`.
    bool absent = false;
};

// Suspects in the order of their finding, each once. Copying the list shares them. That is what a
// union does, so that a delay that it raises is seen in the sets that went into it; a set that must
// not see it is made by copySuspects.
using Suspects = std::vector<std::shared_ptr<Conflict>>;

// The levels.
enum isolationLevel { LEVEL_PLAIN = 1, LEVEL_PREFERENCE = 2, LEVEL_EXONERATION = 3 };

// ---- Suspects (isolation/suspects.cpp) ----

// Same name, same condition, and accused of the same. The second form also raises the lower of the
// two delays.
bool compareConflicts(Conflict const& a, Conflict const& b);
bool compareAndUpdateConflicts(Conflict& a, Conflict& b);
bool compareConditions(s_Condition const* a, s_Condition const* b);
// The same list with suspects of its own.
Suspects copySuspects(Suspects const& suspects);
// The suspect in the list that equals *conflict*, or null.
Conflict* findConflict(Suspects const& suspects, Conflict const& conflict);
// *name*, or without one "cause->effect".
std::string createConflictName(s_Influence const* influence, char const* name);
// Adds the influence as a suspect, unless an equal one is there, whose delay may rise.
void makeUpConflict(s_Influence* influence, int delay, Suspects& conflicts);
// Walks upstream from a variable: every influence that was active at its delay is a suspect. The
// walk stops at measures and inputs, which are trusted, and visits a variable once. The inactive
// ones that it passes go into *resting*, if there is one.
void findConflictsAux(s_runtime const* rt, s_Variable* variable, Suspects& conflicts,
                      std::vector<s_Variable const*>& visited, int delay,
                      Suspects* resting = nullptr);

// ---- Modes in doubt (isolation/doubted_modes.cpp; the rule `suspects`) ----

// Adds those of the *resting* that could act in another mode, and that no suspect brings along.
void addAbsentSuspects(s_runtime* rt, Suspects const& resting, Suspects& conflicts);
// Hands to the bridge what the modes in the suspect's condition would have to leave, unless what
// was handed over asks for it.
void addDoubtedModes(s_runtime* rt, Conflict const& suspect);

// ---- Soft conflicts (isolation/soft_conflicts.cpp) ----

// A measure with its suspects. The first of the sets is a copy of the suspects.
struct MeasureConflicts {
    s_Variable* var = nullptr;
    Suspects conflicts;
    std::vector<Suspects> conflictSets;  // of a misbehaving measure; soft sets follow the first
};

// 2 to the n, minus 1: the non-empty subsets of n things.
long numberUnionSubsets(int n);
// Adds to each misbehaving measure the sets that the behaving ones sharing suspects with it give.
// Returns the suspects that stand in these sets only.
Suspects generateSoftConflictSets(Host& host, std::vector<MeasureConflicts>& misbVars,
                                  std::vector<MeasureConflicts> const& normalVars);

// ---- The hitting-set tree (isolation/tree.cpp) ----

// One open branch of the tree.
struct Leaf {
    int number = 0;        // in the order of making, from 1
    Suspects conflictSet;  // the suspects on the way to this leaf, in order of adding
};

// Grows a tree by one conflict set after the other. Leaves are bit sets of suspects inside.
// Reference for the tree: R. Reiter, "A theory of diagnosis from first principles", Artificial
// Intelligence 32 (1987); the rule that closes branches is this engine's own, see tree.cpp.
class HittingSetTree {
public:
    // *host* is asked about the memory, and outlives the tree.
    explicit HittingSetTree(Host& host);
    ~HittingSetTree();
    HittingSetTree(HittingSetTree&&) noexcept;
    HittingSetTree& operator=(HittingSetTree&&) noexcept;

    void grow(Suspects const& conflictSet);
    // Drops the leaves that hold a suspect which would have shown in a behaving measure.
    void exonerate(std::vector<MeasureConflicts> const& normalVars);
    // Orders the leaves by how many soft suspects they hold, then by their size.
    void sortByPreference(Suspects const& softConflicts);
    std::vector<Leaf> leaves() const;

private:
    struct Implementation;
    std::unique_ptr<Implementation> own;
};

// ---- Diagnosis (isolation/diagnosis.cpp) ----

// What the isolation of one candidate has found. Borrows the influences: valid while its runtime
// is.
struct Isolation {
    // The level that was worked at: plain where a higher one was asked for and no measure behaves.
    int level;
    std::vector<Leaf> leaves;  // each a set of suspects that touches every conflict set
};

// Makes ready for a diagnosis. Mode 0 keeps a memory of known misbehaviours, mode 1 does not.
void faultIsolationSetup(s_runtime* rt, int mode);
// Whether to diagnose at all; *incremental*: whether only new misbehaviours need a look.
bool configurationHasChanged(s_runtime* rt, bool& incremental, int level);
void hittingSetDiagnosis(s_runtime* rt, int level);
void faultIsolationEnd(s_runtime* rt);
// Isolates the misbehaviours of a candidate at level mode - 2, and yields suspects and text.
void sn_detectAndIsolate(s_runtime* rt, int mode);
// The older cycle, of which isolation alone is in use: mode 6, 7, 8 at level mode - 5, from
// misbehaviours and conditions given from outside. -1 when the model is invalid, else the count of
// failed steps.
int sorn_doCycle(s_runtime* rt, int mode, int threshold);
void sorn_close(s_runtime* rt);

// ---- The text (isolation/text.cpp) ----

void sn_razDiagBuf(s_runtime* rt);
// Empties the text, and keeps a measure misbehaving for the length of the window.
void sn_prepareDiag(s_runtime* rt);
// Appends the leaves to the text, and hands the conditions of their suspects to the bridge.
void printHSTree(s_runtime* rt, std::vector<Leaf> const& leaves);
void printConflict(s_runtime* rt, Conflict const* conflict);
// Under which the suspect acts, as "((thermostat.mode=on))"; "()" for always. Of an absent one,
// under which it rests, as "(! ((thermostat.mode=on)))".
std::string conditionText(Conflict const& conflict);
std::string conditionText(s_Condition const* condition);
// Digits of a number, one for 0: the width of a leaf's number in the headings that the text had
// once.
int numLength(int number);
void sn_printDiagCond(s_runtime* rt, s_Condition const* condition);
void sn_printDiagExpr(s_runtime* rt, s_Expr const* expr);
