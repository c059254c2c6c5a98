// The parts of the resolution, and what they share. See resolve.h; the files resolve_*.cpp hold one
// part each, in the order of the sections below.
#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <unordered_map>

#include "language/resolve.h"

struct Scope;

// What a name stands for.
struct Entity {
    enum Kind {
        bad,  // it was told already
        number,
        component,
        array,
        quantity,
        choice,
        defined,
        written,  // an expression, worked out where it is used
    };

    Kind kind = bad;
    int reference = nowhere;  // into the flat plant; of an array its place in `arrays`
    Value value{};            // of a number
    Expr const* expr = nullptr;
    Scope* scope = nullptr;  // in which `expr` means something
    TextRange range{};       // where the name was given
    bool busy = false;       // being worked out
};

struct Scope {
    Scope* outer = nullptr;
    ComponentRef component = nowhere;  // whose text is read in it
    std::unordered_map<std::string, Entity> names;
    std::vector<std::string> order;  // of the names, for suggestions
};

struct InstanceArray {
    NameNode name;
    int first;
    std::vector<ComponentRef> components;
};

// A statement, with the values that the loops around it have given.
struct PlacedStatement {
    Statement const* statement;
    Scope* scope;
};

class Resolver {
public:
    Resolver(PlantText const& text, Sources const& sources, Messages& messages)
        : text(text), sources(sources), messages(messages) {}

    FlatPlant run();

private:
    // ---- Instances (resolve_instances.cpp) ----
    void gatherFile();
    void setConstants();
    void setConstant(SetNode const& node, std::set<std::string>& known);
    void header(PlacedStatement const& placed);
    void makeInstances(PlacedStatement const& placed);
    void makeInstance(InstanceNode const& node, std::string const& name, Scope* scope);
    void bindArguments(InstanceNode const& node, TypeNode const& type, Scope& inner, Scope* outer);
    void checkArguments(InstanceNode const& node, TypeNode const& type);
    void declareMembers(ComponentRef component);
    void declareQuantity(ComponentRef component, QuantityNode const& node, Scope* scope);
    void declareInputs(ComponentRef component, ListNode const& node,
                       std::vector<std::string> const& declared);
    void declareChoice(ComponentRef component, ChoiceNode const& node);
    void unroll(std::vector<Statement const*> const& body, Scope* scope,
                std::vector<PlacedStatement>& into);
    void unroll(Body const& body, Scope* scope, std::vector<PlacedStatement>& into);
    void unrollLoop(ForNode const& node, Scope* scope, std::vector<PlacedStatement>& into);
    std::optional<std::pair<int, int>> bounds(CountNode const& count, Scope* scope);
    std::optional<std::pair<int, int>> bounds(Expr const& first, Expr const& last, Scope* scope);
    void setOrder(PlacedStatement const& placed);
    void completeOrder();

    // ---- Names (resolve_names.cpp) ----
    Scope* newScope(Scope* outer, ComponentRef component);
    // False, and told, when the scope has that name.
    bool declare(Scope& scope, NameNode const& name, Entity entity);
    Entity* find(Scope* scope, std::string const& name);
    Entity lookup(Expr const& path, Scope* scope, bool quiet = false);
    Entity step(Entity const& from, PathStep const& step, Scope* scope, bool quiet);
    Entity element(Entity const& array, PathStep const& step, Scope* scope, bool quiet);
    Entity settled(Entity& entity, bool quiet);
    Entity member(ComponentRef component, NameNode const& name, bool quiet);
    Entity unknown(NameNode const& name, Scope* scope, bool quiet);
    bool isDamaged(std::string const& name) const { return damaged.count(name) != 0; }
    void mention(ComponentRef from, ComponentRef other);
    void mentionOwner(Scope const* scope, Entity const& entity);
    std::string written(TextRange const& range) const;
    QuantityRef quantityOf(Expr const& path, Scope* scope, char const* wanted);
    ComponentRef componentOf(Expr const& path, Scope* scope);

    // ---- Numbers (resolve_numbers.cpp) ----
    std::optional<Value> number(Expr const& expr, Scope* scope);
    std::optional<Value> namedNumber(Expr const& expr, Scope* scope);
    std::optional<Value> interval(Expr const& expr, Scope* scope);
    std::optional<Value> sum(Expr const& expr, Scope* scope);
    std::optional<Value> product(Expr const& expr, Scope* scope);
    std::optional<Value> power(Expr const& expr, Scope* scope);
    Value multiplied(Value const& a, Value const& b);
    std::optional<Value> dividedBy(Value const& a, Value const& b, TextRange const& range);
    std::optional<int> wholeNumber(Expr const& expr, Scope* scope, char const* what, int least);
    std::optional<double> plainNumber(Expr const& expr, Scope* scope, char const* what);
    // In seconds.
    std::optional<double> duration(Expr const& expr, Scope* scope);
    bool mentionsVariable(Expr const& expr, Scope* scope);
    Value const* valueOf(QuantityRef parameter);
    void settleQuantity(QuantityRef reference);
    void checkUnit(TextRange const& range, std::string const& what, MaybeUnit const& found,
                   MaybeUnit const& wanted);

    // ---- Equations (resolve_equations.cpp) ----
    struct Term {
        LabelNode const* label = nullptr;
        Expr const* expr = nullptr;
        bool negative = false;
    };
    struct Factors {
        struct Number {
            Value value;
            bool divides;
            QuantityRef parameter;
            TextRange range;
        };
        std::vector<Number> numbers;
        QuantityRef cause = nowhere;
        Expr const* delay = nullptr;  // the delayed expression
        TextRange range;
    };
    void equation(EquationNode const& node, Scope* scope, TextRange const& range);
    void splitTerms(Expr const& expr, bool negative, std::vector<Term>& terms);
    void splitTerm(Expr const& expr, Term term, std::vector<Term>& terms);
    std::optional<FlatInfluence> influence(EquationNode const& node, Term const& term,
                                           QuantityRef effect, Scope* scope);
    bool collect(Expr const& expr, bool divides, Scope* scope, Factors& factors);
    bool collectName(Expr const& expr, bool divides, Scope* scope, Factors& factors);
    std::optional<Value> gainOf(Factors& factors, ComponentRef component, bool negative);
    QuantityRef unitInput(ComponentRef component, TextRange const& range);
    bool setDelay(Factors const& factors, Scope* scope, FlatInfluence& influence);
    std::optional<int> steps(Expr const& expr, Scope* scope);
    bool setForm(EquationNode const& node, Scope* scope, FlatInfluence& influence);
    bool setPolynomial(std::vector<std::optional<Expr>> const& from, Scope* scope,
                       std::vector<std::optional<Value>>& into);
    void checkUnits(FlatInfluence const& influence, bool hasGain);
    std::string labelOf(LabelNode const* label, ComponentRef component, TextRange const& range);

    // ---- Conditions (resolve_conditions.cpp) ----
    std::optional<FlatCondition> condition(Expr const& expr, Scope* scope);
    std::optional<FlatCondition> group(ConditionKind kind, Expr const& expr, Scope* scope);
    std::optional<FlatCondition> repeated(ConditionKind kind, Expr const& expr, Scope* scope);
    std::optional<FlatCondition> among(Expr const& expr, Scope* scope);
    std::optional<FlatCondition> comparison(Expr const& expr, Scope* scope);
    std::optional<FlatCondition> relation(Expr const& left, char relation, Expr const& right,
                                          Scope* scope, TextRange const& range);
    std::optional<FlatCondition> atomCondition(ChoiceRef choice, Expr const& value,
                                               TextRange const& range);
    std::optional<FlatAtom> atom(ChoiceRef choice, Expr const& value);
    // Conditions that an influence or a mapping can have.
    bool checkContinuous(FlatCondition const& condition);
    void region(ChoiceNode const& node, Scope* scope);
    std::optional<std::pair<QuantityRef, FlatSpace>> space(Expr const& expr, Scope* scope);
    bool narrow(FlatCondition const& condition, QuantityRef& of, FlatSpace& space);
    void clause(ClauseNode const& node, Scope* scope, TextRange const& range);
    using Disjunctions = std::vector<std::vector<FlatLiteral>>;
    std::optional<Disjunctions> disjunctions(FlatCondition const& condition, bool holds);
    std::optional<Disjunctions> clausesOf(Expr const& expr, Scope* scope, bool holds);
    std::optional<Disjunctions> alternatives(Disjunctions const& a, Disjunctions const& b,
                                             TextRange const& range);

    // ---- Moves (resolve_moves.cpp) ----
    void move(MoveNode const& node, Scope* scope, TextRange const& range);
    bool guard(MoveNode const& node, Scope* scope, FlatMove& move);
    bool literals(FlatCondition const& condition, bool holds, std::vector<FlatLiteral>& into);
    // The value of a mode variable of the component that *expr* names, maybe by its value alone.
    std::optional<FlatAtom> modeOf(Expr const& expr, Scope* scope, ComponentRef component);
    std::optional<FlatAtom> soleMode(NameNode const& value, TextRange const& range,
                                     ComponentRef component);
    bool settings(MoveNode const& node, Scope* scope, FlatMove& move);
    struct IdleOthers {
        std::size_t place;  // among the moves
        ComponentRef component;
        TextRange range;
    };
    void idleOthers();
    std::optional<FlatMove> idleMove(FlatAtom const& mode, IdleOthers const& asked);

    // ---- Lists and constraints (resolve_constraints.cpp) ----
    void list(ListNode const& node, Scope* scope);
    void constraint(ConstraintNode const& node, Scope* scope, TextRange const& range);
    void define(DefineNode const& node, Scope* scope, TextRange const& range);
    std::optional<FlatExpression> expression(Expr const& expr, Scope* scope);
    std::optional<FlatExpression> combined(FlatExpression::Kind kind,
                                           std::optional<FlatExpression> left,
                                           std::optional<FlatExpression> right);

    // ---- Everything (resolve.cpp) ----
    void tellPlaces();
    void tellPlace(PlacedStatement const& placed);
    void readStatement(PlacedStatement const& placed);
    void finish();

    PlantText const& text;
    Sources const& sources;
    Messages& messages;
    FlatPlant plant;
    std::set<std::string> damaged;

    std::deque<Scope> scopes;  // addresses stay
    Scope* fileScope = nullptr;
    std::map<std::string, TypeNode const*> types;
    std::vector<InstanceArray> arrays;
    std::vector<PlacedStatement> fileStatements;

    // Per component.
    struct Member {
        TypeNode const* type;
        Scope* scope;
        std::vector<PlacedStatement> statements;
        std::vector<ChoiceRef> modes;
        int terms = 0;  // that were given a label or counted
    };
    std::vector<Member> members;
    // Per quantity: what it was declared by, until its values are worked out.
    struct Pending {
        QuantityNode const* node;
        Scope* scope;
        bool busy;
    };
    std::vector<Pending> pending;
    std::map<std::string, TextRange> labels;
    std::vector<IdleOthers> idlesAsked;
    bool hasName = false, hasPeriod = false, hasWindow = false, hasOrder = false;
};
