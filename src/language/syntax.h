// The tree of a text: what was written, with its place, and nothing of what it means.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "language/source.h"

struct NameNode {
    std::string text;
    TextRange range;
};

// m^2*kg/s: names with their powers.
struct UnitNode {
    struct Factor {
        NameNode name;
        int power;
    };
    std::vector<Factor> factors;
    TextRange range;
};

// ---- Expressions and conditions ----

enum class ExprKind {
    number,      // `number`
    interval,    // parts: both ends
    name,        // `path`
    sum,         // parts, each with its sign in `operators`: + or -
    product,     // parts, each with * or /; the first has *
    power,       // parts: base, exponent
    negation,    // parts: one
    delayed,     // parts: what, delay, and the longer delay of a range
    labelled,    // `label`; parts: one
    always,      // or never, when `number` is 0
    comparison,  // parts, with the relations between them in `operators`: = ! < l > g
    among,       // parts: what, then the values, or one interval
    negated,     // parts: one condition
    conjunction,
    disjunction,
    forEvery,  // `label` is the index; parts: first, last, condition
    forSome,   // the same
    implies,   // parts: two
    equivalent
};

struct Expr;

struct PathStep {
    NameNode name;
    std::vector<Expr> index;  // none, or one
};

struct LabelNode {
    NameNode name;
    bool isWhole = false;  // in quotes: not to be put behind a symbol
};

struct Expr {
    ExprKind kind = ExprKind::number;
    TextRange range;
    double number = 0.0;
    std::string operators;
    std::vector<Expr> parts;
    std::vector<PathStep> path;
    LabelNode label;
    std::optional<UnitNode> unit;
};

// ---- Statements ----

struct Statement;
using Body = std::vector<Statement>;

struct PlantNode {
    NameNode name;
};

struct SampleNode {
    Expr value;
};

struct WindowNode {
    Expr value;
};

struct IncludeNode {
    NameNode path;
};

struct ConstantNode {
    NameNode name;
    Expr value;
};

// What a constant is worth in place of what it was given.
struct SetNode {
    NameNode name;
    Expr value;
};

struct FormalNode {
    NameNode name;
    std::optional<Expr> otherwise;
};

struct TypeNode {
    NameNode name;
    std::vector<FormalNode> formals;
    Body body;
};

struct ArgumentNode {
    NameNode name;
    Expr value;
};

// Of an array or a loop.
struct CountNode {
    NameNode index;  // "" for none
    Expr first, last;
};

struct InstanceNode {
    NameNode name;
    std::optional<CountNode> count;
    NameNode type;
    std::vector<ArgumentNode> arguments;
    NameNode symbol;  // "" for none
};

struct ForNode {
    CountNode count;
    Body body;
};

struct OrderNode {
    std::vector<Expr> instances;
};

enum class ListKind { input, measure, display, import };

struct ListNode {
    ListKind kind;
    std::vector<Expr> names;
};

struct QuantityNode {
    bool isParameter;
    NameNode name;
    std::optional<UnitNode> unit;
    std::optional<Expr> start, domain;
};

struct QuantitiesNode {
    std::vector<QuantityNode> quantities;
};

enum class ChoiceKind { mode, command, region, observed };

struct ValueNode {
    NameNode name;
    std::optional<Expr> when;  // of a region
};

struct ChoiceNode {
    ChoiceKind kind;
    NameNode name;
    std::vector<ValueNode> values;
    NameNode start;  // "" for the first
};

enum class MoveKind { nominal, fault, idle };

struct SettingNode {
    Expr target, value;
    std::optional<Expr> condition;
};

struct MoveNode {
    MoveKind kind;
    bool idleOthers = false;   // nothing else is told then
    std::vector<Expr> guards;  // what stood behind from and when, in the order of the text
    int from = -1;             // which of them stood behind from
    std::optional<Expr> to, probability;
    std::vector<SettingNode> settings;
};

struct ClauseNode {
    Expr condition;
};

struct ConstraintNode {
    Expr target, value;
};

struct DefineNode {
    NameNode name;
    Expr value;
};

enum class EquationForm { sum, coupling, integral, firstOrder, damped, doubleIntegral, rational };

struct EquationNode {
    LabelNode label;  // "" for none
    Expr target;
    EquationForm form = EquationForm::sum;
    Expr value;
    // Of the forms that ask for them: the response time; damping and frequency; both polynomials in
    // s, by powers, where what is not written is nothing.
    std::optional<Expr> responseTime, damping, frequency;
    std::vector<std::optional<Expr>> numerator, denominator;
    TextRange transfer;  // both, where there are any
    std::optional<Expr> when, keeping;
    std::optional<bool> sharpened;
};

struct Statement {
    std::variant<PlantNode, SampleNode, WindowNode, IncludeNode, ConstantNode, SetNode, TypeNode,
                 InstanceNode, ForNode, OrderNode, ListNode, QuantitiesNode, ChoiceNode, MoveNode,
                 ClauseNode, ConstraintNode, DefineNode, EquationNode>
        node;
    TextRange range;
};

// A file as it was written. Names that stand in a statement that could not be read are `damaged`:
// what is said of them elsewhere may follow from that alone.
struct FileTree {
    int file;
    Body body;
    std::vector<std::string> damaged;
};
