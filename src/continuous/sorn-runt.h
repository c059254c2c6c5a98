// The continuous engine: everything that is done to an s_runtime (records.h).
//
// One runtime simulates its system through time: each cycle updates every variable from its causes,
// takes in inputs and measures, and moves new values to old. One rule runs through all of it: the
// value of a measured variable that is not in alarm is the measure, not the prediction.
//
// The functions are grouped by the file of sorn-runt/ that holds them. Integer results are 1 for
// success or truth and 0 otherwise unless told. A function reaches the engine of its run, and with
// it the host, through its runtime; one without a runtime is given the engine.
#pragma once

#include <memory>
#include <ostream>
#include <vector>

#include "continuous/engine.h"
#include "continuous/printer.h"
#include "continuous/records.h"

// Codes of the cycle.
enum cycleMode {
    CYCLE_SIMULATE = 0,  // open loop
    CYCLE_RESET = 1,     // open loop, predictions reset to the measures after the step
    CYCLE_DETECT = 2,    // closed loop, measures checked by the caller
    CYCLE_ISOLATE = 3,   // 3, 4, 5: detection and isolation at levels 1, 2, 3
    CYCLE_DIAGNOSE = 6   // 6, 7, 8: isolation alone, with no step
};

// Truth of a condition that may be undecided.
enum class Truth { FALSE, TRUE, OPEN };

// ---- Building and copying (records.cpp, copy.cpp) ----

// A new condition with every field zero.
std::unique_ptr<s_Condition> mkCond();
// Give a record to the runtime and its slot to the record.
s_Variable* adoptVariable(s_runtime& rt, std::unique_ptr<s_Variable> variable);
s_Condition* adoptCondition(s_runtime& rt, std::unique_ptr<s_Condition> condition);
s_GVar* adoptGVar(s_runtime& rt, std::unique_ptr<s_GVar> gvar);
s_Expr* adoptExpr(s_runtime& rt, std::unique_ptr<s_Expr> expr);
s_Influence* adoptInfluence(s_runtime& rt, std::unique_ptr<s_Influence> influence);
s_CGraph* adoptGraph(s_runtime& rt, std::unique_ptr<s_CGraph> node);

// A deep copy with a new identity; no pointer in common but inval, mesval and the engine. The copy
// belongs to the run of *engine*, or of the source when that is null.
std::unique_ptr<s_runtime> sn_copyRuntime(s_runtime const* source, s_engine* engine = nullptr);

// A copy moved back to *contTime*. The run stops when the fault lies outside the discrete window
// (in steps, *window*) or outside the continuous one.
std::unique_ptr<s_runtime> sn_copyPartialFaultyRt(s_runtime const* source, int faultCycle,
                                                  double contTime, double curTime, int window);
// A copy as it stood at the end of the cycle *cycles* before this one, to the cycle: values,
// measures and alarms in the making. Conditions and the validity space stay as they are, for the
// caller to set.
std::unique_ptr<s_runtime> sn_copyMovedBack(s_runtime const* source, int cycles);
// Moves the histories of *variable* back from time *to* to time *from*.
void moveHistory(s_runtime* rt, s_Variable* variable, double from, double to);

// The first variable of that name, or null.
s_Variable* sn_getVarDico(s_runtime const* rt, char const* name);
// Clears the values for a fresh start: nothing defined, histories and alarms at 0.
void sn_updateDico(s_runtime* rt);
int sn_isInput(s_runtime const* rt, s_Variable const* variable);
int sn_isDisplay(s_runtime const* rt, s_Variable const* variable);
int sn_isMeasure(s_runtime const* rt, s_Variable const* variable);

// ---- Invariants (invariants.cpp) ----

// What does not hold of the invariants that records.h lists at s_runtime, or null. Debug builds ask
// after each copy and each cycle, and the second form after each cycle alone, since a model's
// template has no values yet.
char const* sn_brokenRuntime(s_runtime const* rt);
char const* sn_brokenValues(s_runtime const* rt);

// ---- The cycle (cycle.cpp) ----

void sorn_initialize(s_runtime* rt, int global, double precision, char const* diagBuf, int window);
// One cycle of a candidate. -1 when no activation condition holds: the model is invalid; else the
// count of failed steps.
int sorn_doCycle2(s_runtime* rt, int mode);
void sn_doStepTempo(s_runtime* rt);
void sn_doStepUntemp(s_runtime* rt);
void sn_moveAllOld(s_runtime* rt);
void sn_moveInputs(s_runtime* rt);
// The result of clipping to the domain.
int sn_new2OldValue(s_runtime* rt, s_Variable* variable);

// ---- Initial values (initial.cpp) ----

void sn_initVars(s_runtime* rt);
// Computes the first value of a variable from its causes, recursively.
void sn_compInitVar(s_runtime* rt, s_Variable* variable);

// ---- Updating from causes (update.cpp) ----

void sn_updateVariable(s_runtime* rt, s_Variable* variable);
// The cause's value at the influence's delay goes into TMP2; for INF_DYNAMIC2, the one before into
// TMP5.
void sn_loadCauseValue(s_runtime* rt, s_Influence* influence);
// Evaluates the condition, pushes it on the influence's history, and returns it.
int sn_pushCond(s_Influence* influence, s_runtime* rt);
void sn_pushExternCond(s_Influence* influence, boolVal value);
// Evaluates the condition and pushes it as sn_pushCond does. Without a condition an influence acts;
// with an open one (open.cpp) it may act or not, which its history keeps as acting.
Truth sn_pushActivity(s_Influence* influence, s_runtime* rt);
// Counts an influence as active: it acts, or may act.
bool sn_isActive(s_Influence* influence, s_runtime* rt);
// *value* grows to the closed hull of it and 0: the share of an influence that may act or not.
void sn_coverNothing(s_Objet* value);
// Measured, with no alarm on either side: its measure stands for its value.
bool sn_isTrusted(s_runtime const* rt, s_Variable const* variable);

// ---- Narrowing by measures (narrow.cpp; the rule `narrow`) ----

// Histories begin with values of this age in cycles; `new_` has age 0 and `old` age 1.
inline constexpr int sn_firstHistoryAge = 2;

// The ages of the cause's values that an influence reads, both included.
struct AgesRead {
    int least;
    int most;
};

// What a measure tells of its variable: the number shown, and the noise on both sides.
s_Objet sn_observed(s_Variable const* variable);
// A number that was measured, or no value for one that is missing (not a number); and back.
s_Objet sn_measured(double number);
double sn_numberOf(s_Objet const& measured);
// Has causes, which tell its value.
bool sn_isPredicted(s_Variable const* variable);
AgesRead sn_agesRead(s_Influence const& influence);
// The value of that age in the middle of a cycle; the oldest one kept when the history is shorter.
s_Objet const& sn_predictedAt(s_Variable const* variable, int age);
// The form of sn_loadCauseValue that reads predictions alone, each at its age.
void sn_loadPredicted(s_runtime* rt, s_Influence const* influence);
// *value* becomes the smallest interval that covers both.
void sn_coverBoth(s_Objet* value, s_Objet const& other);
// Before a cycle: what trusted measures tell enters `old`.
void sn_takeMeasures(s_runtime* rt);
// In a cycle, between the updates and the move to `old`: narrows every `new_`, or marks the
// measures that contradict the others.
void sn_narrowCycle(s_runtime* rt);

// ---- Histories (histories.cpp) ----

void sn_fillHisto(s_Variable* variable);
void sn_fillHistoMes(s_Variable* variable);
void sn_fillAllHistos(s_runtime* rt);
void sn_fillAllHistosMes(s_runtime* rt);
void sn_pushHisto(s_Variable* variable);
void sn_pushHistoMes(s_Variable* variable);

// ---- Inputs, measures, outputs (exchange.cpp) ----

int sn_enterInputs(s_runtime* rt);
int sn_enterMeasures(s_runtime* rt);
// The variant for a model that writes measures straight into the state.
int sn_enterMeasuresOld(s_runtime* rt);
int sn_enterMisbs(s_runtime* rt);
// 2 when every condition is false.
int sn_enterConds(s_runtime* rt);
int sn_yieldDisplays(s_runtime* rt);
// 2 when every condition is false, else 1.
int sn_yieldConds(s_runtime* rt);
// Splits, then the same over each runtime of the split.
int sn_yieldMRTConds(s_runtime* rt);

// ---- Dynamic influences (dynamic.cpp) ----

// Computes the discrete coefficients of every influence from its continuous parameters.
void sn_evalInfluCoefs(s_runtime* rt, double Ts);
// The recursion of a dynamic effect. In: the sum over the causes in TMP1 (for interval second-order
// coefficients, the corner sums in TMPII to TMPSS). Out: the new value in TMP1.
void sn_evalDynInfl(s_runtime* rt, s_Influence* influence);
// The same for the initial value.
void sn_evalInitDynInfl(s_engine& engine, s_Influence* influence);
// Adds the contribution of one second-order influence to TMP1, from TMP2 and TMP5; with interval
// coefficients, makes the corner sums instead.
void sn_addSecondOrder(s_engine& engine, s_Influence* influence);

// ---- Bound search (search.cpp) ----

// Sets the costs that the engine searches with.
void init_nelder(s_engine& engine);
// Without the rule `narrow`, and with no cause that may act or not.
bool sn_mayBeSearched(s_CGraph const& graph, s_runtime* rt);
void call_nelder_second(s_Influence* influence, s_runtime* rt, s_Objet* prev1, s_Objet* prev2);
void call_nelder_obs(s_Variable* variable, s_runtime* rt, s_Objet* prev1, s_Objet* prev2,
                     s_Objet* result, influType kind, bool useMeasure);

// ---- Conditions (conditions.cpp) and validity spaces (validity.cpp) ----

boolVal sn_evalCond(s_Condition* condition, s_runtime* rt);
// Truth with three values (open.cpp; the rule `unknown`). *leaf* tells that of conditions which are
// neither made of others nor on an atom.
using LeafTruth = Truth (*)(s_Condition* condition, s_runtime* rt);
Truth sn_truthOf(s_Condition* condition, s_runtime* rt, LeafTruth leaf);
// A leaf's truth as sn_evalCond has it: never open.
Truth sn_certainTruth(s_Condition* condition, s_runtime* rt);
// Left open by an unknown mode. Never so without the rule; null is not open.
bool sn_isOpen(s_Condition* condition, s_runtime* rt);
// Some cause of the node may act or not.
bool sn_anyOpen(s_CGraph const& graph, s_runtime* rt);
// 1 when the condition covers the current value of its constraint variable.
int sn_evalCondExpr(s_Condition* condition, s_runtime* rt);
// First placing of a runtime in its space: 1 when a cover was found for at least one variable, or
// when there are no constraint variables.
int sn_initValSpc(s_runtime* rt);
void sn_fillCondAgenda(s_runtime* rt);
void sn_setOutOfValSpc(s_runtime* rt, s_Condition* condition);
void sn_setInValSpc(s_runtime* rt, s_Condition* condition);
void sn_updateValSpc(s_runtime* rt, s_Condition* out, s_Condition* in);
int sn_updateCondAgenda(s_runtime* rt, s_GVar* gvar);
// The conditions that cover the value of *gvar*. The run stops when there is none.
std::vector<s_Condition*> sn_findCondCover(s_GVar* gvar, s_runtime* rt);
// Splits *rt* into one runtime for each region of its values; the results go into the engine's nrt.
void sn_splitValiditySpc(s_runtime* rt);
void viewValSpc(s_runtime const* rt);
void viewCcAgenda(s_runtime const* rt);
void viewSplitState(s_Printer const& to, s_GVar const* gvar, s_Objet const* current,
                    s_Objet const* filtered);

// ---- Constraints (constraints.cpp) ----

void sn_globalConstraints(s_runtime* rt);
void sn_fillAgenda(s_runtime* rt);
int sn_updateAgenda(s_runtime* rt, s_GVar const* gvar);
// The value of an expression, in TMP4.
void sn_evalSolFunc(s_runtime* rt, s_Expr const* expr);
s_Objet* sn_evalExpr(s_runtime* rt, s_Expr const* expr);

// ---- Alarms (alarms.cpp) ----

void sn_setAlarms(s_runtime* rt);
void sn_resetMs(s_runtime* rt);
int sn_checkMs(s_runtime* rt, int threshold);
int sn_yieldAlarms(s_runtime* rt);
int sn_yieldDiags(s_runtime* rt);

// ---- Printing (print.cpp, print_runtime.cpp) ----

void sn_printGVar(s_Printer const& to, s_GVar const* gvar);
void sn_printExpr(s_Printer const& to, s_Expr const* expr);
void sn_printGContr(s_Printer const& to, s_Expr const* constraint);
void sn_printCondition(s_Printer const& to, s_Condition const* condition);
// The same with the current value after each variable.
void sn_printCondValues(s_Printer const& to, s_Condition const* condition);
// An influence as a component shows it: bare data.
void printInfluence(std::ostream& out, s_Influence const* influence);
// The letter of a kind of influence, as rules show it.
char const* sn_letterOf(influType type);

void sn_printVarNom(s_Printer const& to, s_Variable const* variable);
void sn_printVarValue(s_Printer const& to, s_Variable const* variable);
void sn_printVarValueNV(s_Printer const& to, s_Variable const* variable);
void sn_printVariable(s_Printer const& to, s_runtime const* rt, s_Variable const* variable);
void sn_printVarHistory(s_Printer const& to, s_runtime const* rt, s_Variable const* variable);
void sn_printInitVar(s_Printer const& to, s_InitVar const* initial);

void sn_printDic(s_Printer const& to, s_runtime const* rt);
void sn_printConds(s_Printer const& to, s_runtime const* rt);
void sn_printSpace(s_Printer const& to, s_runtime const* rt);
void sn_printInputs(s_Printer const& to, s_runtime const* rt);
void sn_printDisplays(s_Printer const& to, s_runtime const* rt);
void sn_printMeasures(s_Printer const& to, s_runtime const* rt);
void sn_printInits(s_Printer const& to, s_runtime const* rt);
void sn_printRules(s_Printer const& to, s_runtime const* rt);
void sn_printCGraph(s_Printer const& to, s_runtime const* rt);
void sn_printUpdateListsorn(s_Printer const& to, s_runtime const* rt);
void sn_printGlobVs(s_Printer const& to, s_runtime const* rt);
void sn_printGlobCs(s_Printer const& to, s_runtime const* rt);
