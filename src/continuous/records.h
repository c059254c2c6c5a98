// The records of the continuous engine: one s_runtime is the causal graph of one configuration of
// the physical system, with interval values, histories, conditions and constraints.
//
// The compiled model fills these records once at start-up; every candidate then owns a deep copy.
// Records are plain and are worked on by free functions (sorn-runt.h). A runtime owns every record
// under it in its pools; all other pointers between records are borrowed and stay inside one
// runtime. `slot` is a record's position in its pool and is the same in every copy, which is how a
// copy keeps the sharing of its source.
//
// Numbers called "cycles" count sample periods; "list" fields hold indices into an array of the
// runtime.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "continuous/displayTable.h"
#include "continuous/history.h"
#include "continuous/objets.h"
#include "model/signedAtoms.h"

class Atom;
class Transition;
struct s_CGraph;
struct s_Condition;
struct s_Expr;
struct s_Variable;
struct s_engine;

enum influType {
    INF_DYNAMIC = 1,
    INF_INTEGRAL = 2,
    INF_STATIC = 3,
    INF_COUPLING = 4,
    INF_DYNAMIC2 = 5
};

// One physical quantity. A parameter holds its value in `old` and is never updated.
struct s_Variable {
    std::string nom;  // unique, component name and suffix
    int slot = 0;     // in dico
    int isParam = 0;
    std::optional<s_Objet> domain;  // physical bounds; none for a parameter
    int defined = 0;                // `old` and `new_` hold a value
    s_Objet old;                    // end of the previous cycle; type 0 until there is a value
    s_Objet new_;                   // computed in this cycle; meaningless for a parameter
    s_Objet mes;                    // last measure; of type 0 when it is missing, or none is made
    // Of a measured variable: the prediction of this cycle before its measures narrowed anything.
    // What is told of it to who asks how far a measure could have strayed; nothing reads it.
    // Of type 0 until there is one.
    s_Objet foretold;
    int lowalarm = 0;     // consecutive measures below the prediction; not 0: not trusted
    int highalarm = 0;    // consecutive measures above the prediction
    int meslowmisb = 0;   // a low alarm is established
    int meshighmisb = 0;  // a high alarm is established
    int mesmisb = 0;      // the measure misbehaves, in either direction
    // How far a measure may be from the truth. Not 0 only by the rule `narrow`, in a run that was
    // told so.
    double noise = 0.0;
    // 1 or -1: in this cycle the measure lies above or below what all others leave for it, though
    // inside its own prediction. Not 0 only by the rule `narrow`.
    int sideOfOthers = 0;
    std::vector<int> misbHisto;  // last `misbWindow` values of mesmisb, newest first; may be empty
    s_CGraph* graph = nullptr;   // null without causes and effects
    History<s_Objet> histo;      // past values; entry 0 is that of the cycle before `old`
    History<s_Objet> mesHisto;   // past measures; entry 0 is the measure before `mes`
    History<int> lowHisto;       // 1 where a low alarm applied to that measure
    History<int> highHisto;
    std::vector<int> varConds;  // conditions (in condi) that bound this variable

    // Length of the histories in cycles, 0 for none.
    int histLen() const { return histo.size(); }
};

// A causal link from one variable to another.
struct s_Influence {
    std::string nom;  // "" for an anonymous one
    int slot = 0;     // in influ
    influType type = INF_STATIC;
    s_Variable* cause = nullptr;
    s_Variable* effect = nullptr;
    s_Condition* cond = nullptr;  // null: always active
    int condHistoLn = 0;
    // Past values of the condition, newest first. Entry 0 is written even when condHistoLn is 0.
    std::vector<boolVal> condHisto;
    s_Objet gain;
    int delayMin = 0;  // in cycles; delayMax must not exceed the cause's history
    int delayMax = 0;
    s_Objet respTime;
    // Discrete coefficients, computed once by sn_evalInfluCoefs.
    s_Objet a1, b1, a2, b2;
    // Second-order forms: damping and natural frequency, or a rational transfer function.
    std::optional<s_Objet> xi, w;
    std::optional<s_Objet> n1, n2, d0, d1, d2;
    int useOpti = 0;  // the bound search may sharpen this influence
};

// A node of the causal graph: the causes and effects of one variable. The arrays are borrowed.
struct s_CGraph {
    int slot = 0;                       // in cG
    influType kind = INF_STATIC;        // shared by all causes; meaningless without causes
    std::vector<s_Influence*> causes;   // influences that end here
    std::vector<s_Influence*> effects;  // influences that start here
};

struct s_InitVar {
    s_Variable* var = nullptr;
    s_Objet value;
};

enum conditionKind {
    COND_CONST = 1,
    COND_REL = 2,
    COND_OR = 3,
    COND_AND = 4,
    COND_NOT = 5,
    COND_ATOM = 6,
    COND_EXPR = 7
};

enum relation {
    REL_EQ = 1,
    REL_DIFF = 2,
    REL_LE = 3,
    REL_LT = 4,
    REL_GE = 5,
    REL_GT = 6,
    REL_IN = 7
};

struct s_Condition {
    int kind = COND_CONST;
    int slot = 0;                  // in condPool
    s_Condition* left = nullptr;   // operand of or, and, not
    s_Condition* right = nullptr;  // operand of or, and
    s_Variable* var = nullptr;     // left side of a relation
    int op = 0;                    // a relation
    std::optional<s_Objet> value;  // right side when var2 is null
    s_Variable* var2 = nullptr;    // right side, a variable
    boolVal val = 0;               // last computed value; of a COND_ATOM, set by the discrete side
    Atom* atom = nullptr;          // what this condition is on the discrete side, or null
    int atomRef = 0;               // number of this condition in the component's own table
    s_Expr* expr = nullptr;        // of a COND_EXPR
    std::vector<int> acIdx;        // constraints (in aC) behind this condition
};

enum constraintVarKind { GV_CONST = 0, GV_VARIABLE = 1, GV_INTERMEDIATE = 2 };

// A variable of the constraint network.
struct s_GVar {
    int kind = GV_CONST;
    int slot = 0;               // in gvPool
    s_Variable* var = nullptr;  // of a GV_VARIABLE
    int number = 0;             // of a GV_INTERMEDIATE
    s_Objet value;
    std::vector<int> gcIdx;  // entries from 1 are constraints (in gC) that depend on this variable
    std::vector<int> acIdx;  // entry 0 is the count; entries from 1 are constraints in aC
};

enum expressionOp {
    EXPR_CONST = 0,
    EXPR_VAR = 1,
    EXPR_ADD = 2,
    EXPR_SUB = 3,
    EXPR_MUL = 4,
    EXPR_DIV = 5,
    EXPR_POW = 6,
    EXPR_NEG = 7
};

struct s_Expr {
    int op = EXPR_CONST;
    int slot = 0;            // in exprPool
    s_GVar* gvar = nullptr;  // the leaf; on a top node the constrained variable; else null
    s_Expr* left = nullptr;
    s_Expr* right = nullptr;
};

// A pending event or condition of the bridge between the two sides: atoms with a sign, true
// positive.
using BridgeAtoms = SignedAtoms;

// Invariants of a runtime (told broken by sn_brokenRuntime, and 6 by sn_brokenValues):
//   1. every record is at its slot of its pool, and every pointer between records stays inside;
//   2. per measure, display variable, influence and constraint, the arrays below hold one entry;
//   3. the causes of a node end at its variable and are of its kind, its effects start there;
//   4. histories of one measure are of one length, misbHisto is empty or of that of the window;
//   5. lists of indices point into the arrays that they are said to;
//   6. once a cycle is done, a defined variable has a value, and no interval ends before it begins.
struct s_runtime {
    s_engine* engine = nullptr;  // of the run; borrowed; null only in a plant's template
    std::string name;
    int num = 0;          // identity: every copy takes the next value of its engine's rt_num
    double Ts = 1.0;      // sample period, in seconds
    double tStart = 0.0;  // the discrete step reached, written by the discrete cycle
    int twc = 0;          // continuous temporal window, in cycles

    std::vector<std::unique_ptr<s_Variable>> dico;     // all variables
    std::vector<s_Variable*> input, display, measure;  // subsets of dico
    double* inval = nullptr;  // current inputs and measures: the cycle driver owns the arrays
    double* mesval = nullptr;
    std::vector<double> dinfval, dsupval;  // per display, the current bounds
    DisplayTable extra;                    // bounds of the whole run; see the display file
    // Per measure, a mirror of the variable's field of the same name.
    std::vector<int> lowalarm, highalarm, meslowmisb, meshighmisb, mesmisb;
    std::vector<s_Variable*> temporal;    // updated before inputs and measures enter, in this order
    std::vector<s_Variable*> untemporal;  // updated after they entered, in causal order

    std::vector<std::unique_ptr<s_Influence>> influ;
    std::vector<int> condin;   // per influence, the externally given condition value
    std::vector<int> condout;  // per influence, the condition value after a cycle
    std::vector<std::unique_ptr<s_CGraph>> cG;
    int cgAux = 0;  // carried by copies, read by nothing

    std::vector<s_InitVar> init;
    std::vector<std::unique_ptr<s_GVar>> gvPool;
    std::vector<s_GVar*> gV;  // the variables of the constraint network, without the constants
    std::vector<std::unique_ptr<s_Expr>> exprPool;
    std::vector<s_Expr*> gC;        // global constraints
    std::vector<int> inAc;          // per global constraint: on the agenda
    std::vector<s_Expr*> aC;        // condition constraints
    std::vector<int> valSpc;        // per condition constraint: part of the validity space
    std::vector<int> ccAgenda;      // per condition constraint: still to be applied in this split
    std::vector<s_Expr*> mapExprs;  // expressions of the mapping functions
    std::vector<std::unique_ptr<s_Condition>> condPool;
    std::vector<s_Condition*> condi;  // the numbered conditions

    int varsInitialised = 0;
    int globalOn = 0;        // global constraints run in each cycle
    int misbWindow = 0;      // entries of each misbHisto
    double precision = 0.0;  // relative tolerance when a measure is compared with a number
    int isoMode = 0;         // 1: misbehaviours are given anew each time, 0: known ones are kept
    int nbMisb = 0;          // misbehaving measures of the last diagnosis
    int nbNormal = 0;        // well-behaving ones
    int nbKnown = 0;         // entries of knownMisb in use; not carried by copies
    std::vector<s_Variable*> knownMisb;  // a place per measure in mode 0; not carried by copies
    std::string diagBuf;                 // text of the last diagnosis

    BridgeAtoms bridgeEvents;              // conditions that entered the validity space
    BridgeAtoms bridgeConds;               // atoms that the discrete step settled
    std::vector<Transition*> bridgeTrans;  // transitions that fired in this step
    std::optional<std::vector<std::vector<Atom*>>> bridgeConflicts;  // atoms blamed by conflicts

    s_runtime() = default;
    s_runtime(s_runtime const&) = delete;
    s_runtime& operator=(s_runtime const&) = delete;
};
