// A plant without names to look up: every instance made, every number worked out, every reference
// the place of what it means. What is drawn from it later (records, warnings, pictures) reads it
// alone. Everything keeps its place in the text.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "continuous/objets.h"
#include "language/syntax.h"
#include "language/units.h"

// A number or a closed interval, and the unit that was written.
struct Value {
    double low = 0.0;
    double high = 0.0;
    bool isInterval = false;
    MaybeUnit unit{};
    bool unitMatters = false;  // a unit was written somewhere in it

    s_Objet object() const { return isInterval ? makeRange(low, high, 1, 1) : makeReal(low); }
};

// References are places in the lists of FlatPlant.
using QuantityRef = int;
using ChoiceRef = int;
using ComponentRef = int;
constexpr int nowhere = -1;

struct FlatQuantity {
    ComponentRef component;
    std::string name;  // without that of the component
    bool isParameter;
    std::optional<Value> start;  // of a parameter its value
    std::optional<Value> domain;
    MaybeUnit unit;
    TextRange range;
};

// One value of a choice.
struct FlatAtom {
    ChoiceRef choice;
    int value;

    friend bool operator==(FlatAtom const& a, FlatAtom const& b) {
        return a.choice == b.choice && a.value == b.value;
    }
};

// low to high, with or without its ends; an end that is infinite is none.
struct FlatSpace {
    double low;
    double high;
    bool lowBelongs;
    bool highBelongs;
};

struct FlatChoice {
    struct Value {
        std::string name;
        TextRange range;
        FlatSpace space;  // of a region
    };

    ComponentRef component;
    ChoiceKind kind;
    std::string name;  // without that of the component
    std::vector<Value> values;
    int start;
    QuantityRef of;  // of a region
    TextRange range;
};

enum class ConditionKind { constant, atom, relation, both, either, opposite };

struct FlatCondition {
    ConditionKind kind;
    TextRange range;
    bool holds = true;  // of a constant
    FlatAtom atom{};    // of an atom
    QuantityRef left = nowhere;
    char relation = '=';  // of a relation; as in Expr, and i for within an interval
    Value value{};        // its right side, when `right` is nowhere
    QuantityRef right = nowhere;
    std::vector<FlatCondition> parts;
};

struct FlatInfluence {
    ComponentRef component;
    std::string name;
    EquationForm form;
    QuantityRef cause;
    QuantityRef effect;
    std::optional<FlatCondition> when;
    Value gain;
    int shortestDelay = 0;  // in steps
    int longestDelay = 0;
    Value responseTime{}, damping{}, frequency{};
    std::vector<std::optional<Value>> numerator, denominator;
    std::optional<int> keeping;
    bool sharpened;
    TextRange range;
};

// A literal of a guard.
struct FlatLiteral {
    FlatAtom atom;
    bool holds;
};

// Over variables, in every step or at a move.
struct FlatExpression {
    enum Kind { constant, quantity, defined, add, subtract, multiply, divide, power, negate };

    Kind kind;
    Value value{};            // of a constant
    int reference = nowhere;  // of a quantity or of what is defined
    std::vector<FlatExpression> parts;
};

struct FlatSetting {
    QuantityRef target;
    FlatExpression value;
    std::optional<FlatCondition> condition;
};

struct FlatMove {
    ComponentRef component;
    MoveKind kind;
    std::vector<FlatLiteral> guard;
    FlatAtom from;
    FlatAtom to;
    double probability;
    std::vector<FlatSetting> settings;
    TextRange range;
};

// One of its literals holds.
struct FlatClause {
    ComponentRef component;
    std::vector<FlatLiteral> literals;
    TextRange range;
};

struct FlatConstraint {
    QuantityRef target;  // nowhere: what is defined as number `defines`
    int defines;
    FlatExpression value;
    TextRange range;
};

struct FlatComponent {
    std::string name;
    std::string type;
    std::string symbol;
    TextRange range;                     // where it is made
    std::vector<ChoiceRef> imported;     // commands of others
    std::vector<ComponentRef> mentions;  // components that it names, in the order of the text
};

struct FlatPlant {
    std::string name;
    TextRange nameRange;
    double period = 1.0;  // in seconds
    int window = 300;

    std::vector<FlatComponent> components;
    std::vector<ComponentRef> order;  // all of them, as they stand in lists
    // Each list component by component, and in each of these in the order of the text.
    std::vector<FlatQuantity> quantities;
    std::vector<FlatChoice> choices;
    std::vector<FlatInfluence> influences;
    std::vector<FlatMove> moves;
    std::vector<FlatClause> clauses;
    std::vector<FlatConstraint> constraints;
    int defined = 0;  // how many parts of constraints have a name
    std::vector<QuantityRef> inputs, measures, displays;

    std::string fullName(FlatQuantity const& quantity) const {
        return nameOf(quantity.component) + "." + quantity.name;
    }
    std::string fullName(FlatChoice const& choice) const {
        return nameOf(choice.component) + "." + choice.name;
    }
    std::string const& nameOf(ComponentRef component) const {
        return components[static_cast<std::size_t>(component)].name;
    }
    FlatQuantity const& quantity(QuantityRef reference) const {
        return quantities[static_cast<std::size_t>(reference)];
    }
    FlatChoice const& choice(ChoiceRef reference) const {
        return choices[static_cast<std::size_t>(reference)];
    }
    bool isContinuous() const { return !quantities.empty(); }
};
