// Equations: what a variable follows from.
#include "language/parser.h"

EquationNode Parser::equation(LabelNode label) {
    EquationNode node;
    node.label = std::move(label);
    node.target = path();
    termsHaveLabels = true;
    form(node);
    termsHaveLabels = false;
    if (takeWord("when"))
        node.when = condition();
    options(node);
    return node;
}

void Parser::form(EquationNode& node) {
    if (takeIf(TokenKind::equal)) {
        node.value = expression();
    } else if (takeWord("follows")) {
        node.form = EquationForm::coupling;
        node.value = expression();
    } else if (takeWord("integrates")) {
        node.form = takeWord("twice") ? EquationForm::doubleIntegral : EquationForm::integral;
        node.value = expression();
    } else if (takeWord("lags")) {
        node.form = EquationForm::firstOrder;
        node.value = expression();
        expectWord("within");
        node.responseTime = expression();
    } else if (takeWord("responds")) {
        expectWord("to");
        response(node);
    } else {
        expected("=, follows, integrates, lags or responds to");
    }
}

void Parser::response(EquationNode& node) {
    node.value = expression();
    if (takeWord("damping")) {
        node.form = EquationForm::damped;
        node.damping = expression();
        expectWord("frequency");
        node.frequency = expression();
        return;
    }
    if (!takeWord("by"))
        expected("damping, or by and a transfer function");
    node.form = EquationForm::rational;
    numbersAreBare = true;
    TextRange const begin = current().range;
    node.numerator = polynomial();
    expect(TokenKind::over, "/ and the denominator in parentheses");
    node.denominator = polynomial();
    node.transfer = from(begin);
    numbersAreBare = false;
}

// In parentheses: numbers, each with s or s^2 behind it or not.
std::vector<std::optional<Expr>> Parser::polynomial() {
    std::vector<std::optional<Expr>> coefficients(3);
    expect(TokenKind::parenOpen, "( and a polynomial in s");
    bool negative = takeIf(TokenKind::minus);
    do {
        TextRange const begin = current().range;
        Expr coefficient;
        coefficient.number = 1.0;
        coefficient.range = begin;
        bool const isS = isWord("s");
        if (!isS) {
            coefficient = is(TokenKind::bracketOpen) ? interval() : primary();
            takeIf(TokenKind::times);
        }
        std::size_t power = 0;
        if (takeWord("s"))
            power = takeIf(TokenKind::power) ? static_cast<std::size_t>(wholeNumber("1 or 2")) : 1;
        if (power > 2)
            giveUp(from(begin), "this transfer function is of higher than second order",
                   "divide it into several variables");
        if (coefficients[power])
            giveUp(from(begin), "this power of s stands here a second time", "add both numbers");
        if (negative) {
            Expr negated;
            negated.kind = ExprKind::negation;
            negated.range = coefficient.range;
            negated.parts.push_back(std::move(coefficient));
            coefficient = std::move(negated);
        }
        coefficients[power] = std::move(coefficient);
        negative = is(TokenKind::minus);
    } while (takeIf(TokenKind::plus) || takeIf(TokenKind::minus));
    expect(TokenKind::parenClose, "+ or )");
    return coefficients;
}

void Parser::options(EquationNode& node) {
    for (;;) {
        if (takeWord("keeping"))
            node.keeping = expression();
        else if (isWord("plain") || isWord("sharpened"))
            node.sharpened = take().text == "sharpened";
        else
            return;
    }
}
