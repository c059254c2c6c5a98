// From a text to its tree: recursive descent, a function for each thing that can be written.
//
// What cannot be read is told once, and the parser goes on behind the end of the statement, so that
// a later mistake is told too. Names in a statement that was given up are noted as damaged. What is
// nested too deeply is a mistake like any other, so that no text can exhaust the stack.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "language/lexer.h"
#include "language/syntax.h"

class Parser {
public:
    Parser(Sources const& sources, int file, Messages& messages);
    FileTree parse();

private:
    // Thrown where a statement cannot be read on, after it was told; caught by the statement.
    struct GivenUp {};

    // ---- Tokens ----
    Token const& current() const { return tokens[at]; }
    Token const& ahead(std::size_t count = 1) const;
    bool is(TokenKind kind) const { return current().kind == kind; }
    bool isWord(std::string_view word) const;
    Token const& take();
    bool takeIf(TokenKind kind);
    bool takeWord(std::string_view word);
    void expect(TokenKind kind, char const* what);
    void expectWord(char const* word);
    TextRange from(TextRange const& begin) const;
    [[noreturn]] void giveUp(TextRange const& range, std::string text, std::string advice);
    [[noreturn]] void expected(char const* what);
    NameNode name(char const* what);
    int wholeNumber(char const* what);

    // ---- Statements ----
    Body body(bool inType);
    void statement(Body& into, bool inType);
    void endOfStatement();
    void recover(std::size_t begin, std::size_t depthOfBraces);
    bool keywordStatement(Body& into, bool inType, Token const& keyword);
    bool fileStatement(Body& into, Token const& keyword);
    bool typeStatement(Body& into, Token const& keyword);
    void type(Body& into, TextRange const& begin);
    std::vector<FormalNode> formals();
    void loop(Body& into, bool inType, TextRange const& begin);
    CountNode count(TokenKind close, bool mayLackIndex);
    void labelledOrInstance(Body& into, bool inType);
    void instance(Body& into);
    std::vector<ArgumentNode> arguments();
    ListNode list(ListKind kind);

    // ---- Components ----
    QuantitiesNode quantities(bool isParameter);
    QuantityNode quantity(bool isParameter);
    ChoiceNode choice(ChoiceKind kind);
    std::vector<ValueNode> values(ChoiceKind kind, NameNode& start);
    NameNode value();
    MoveNode move(MoveKind kind);
    bool movePart(MoveNode& move);
    std::vector<SettingNode> settings();
    void idle(MoveNode& move);

    // ---- Equations ----
    EquationNode equation(LabelNode label);
    void form(EquationNode& equation);
    void response(EquationNode& equation);
    std::vector<std::optional<Expr>> polynomial();
    void options(EquationNode& equation);

    // ---- Expressions ----
    Expr expression();  // arithmetic
    Expr product();
    Expr unary();
    Expr power();
    Expr primary();
    Expr numberOrUnit();
    Expr interval();
    Expr path();
    Expr delayed(Expr what);
    std::optional<UnitNode> unitIn(TokenKind open, TokenKind close);
    UnitNode unit();
    std::optional<UnitNode> maybeUnit();
    Expr condition();
    Expr disjunction();
    Expr conjunction();
    Expr literal();
    Expr comparison();
    Expr among(Expr what);
    Expr quantified(ExprKind kind);
    Expr valueName();

    // Counts how deep the parser is, and gives up when that is too deep.
    class Nested {
    public:
        explicit Nested(Parser& parser);
        ~Nested() { --parser.depth; }
        Nested(Nested const&) = delete;
        Nested& operator=(Nested const&) = delete;

    private:
        Parser& parser;
    };

    Messages& messages;
    int const file;
    std::vector<Token> tokens;
    std::size_t at = 0;
    int depth = 0;
    bool numbersAreBare = false;   // in a polynomial, whose s is no unit
    bool termsHaveLabels = false;  // in an equation; elsewhere a colon means something else
    std::vector<std::string> damaged;
};
