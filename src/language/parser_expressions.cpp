// Expressions over numbers and variables, and conditions.
//
// Sums, products, conjunctions and disjunctions are flat lists, so that a long one is not deep.
#include <cmath>

#include "language/parser.h"

namespace {

Expr made(ExprKind kind, TextRange const& range) {
    Expr expr;
    expr.kind = kind;
    expr.range = range;
    return expr;
}

}  // namespace

int Parser::wholeNumber(char const* what) {
    if (!is(TokenKind::number) || current().number != std::floor(current().number) ||
        current().number > 1000.0)
        expected(what);
    return static_cast<int>(take().number);
}

// ---- Arithmetic ----

Expr Parser::expression() {
    Nested const nested(*this);
    Expr first = product();
    if (!is(TokenKind::plus) && !is(TokenKind::minus))
        return first;
    Expr sum = made(ExprKind::sum, first.range);
    sum.operators = "+";
    sum.parts.push_back(std::move(first));
    while (is(TokenKind::plus) || is(TokenKind::minus)) {
        sum.operators += take().kind == TokenKind::plus ? '+' : '-';
        sum.parts.push_back(product());
    }
    sum.range = from(sum.range);
    return sum;
}

Expr Parser::product() {
    bool const isLabel = is(TokenKind::name) || is(TokenKind::string);
    if (termsHaveLabels && isLabel && ahead().kind == TokenKind::colon) {
        Expr labelled = made(ExprKind::labelled, current().range);
        labelled.label.isWhole = is(TokenKind::string);
        if (labelled.label.isWhole) {
            labelled.label.name = {std::string(current().text), current().range};
            take();
        } else {
            labelled.label.name = name("a label");
        }
        take();
        labelled.parts.push_back(product());
        labelled.range = from(labelled.range);
        return labelled;
    }
    Nested const nested(*this);
    Expr first = unary();
    if (!is(TokenKind::times) && !is(TokenKind::over))
        return first;
    Expr result = made(ExprKind::product, first.range);
    result.operators = "*";
    result.parts.push_back(std::move(first));
    while (is(TokenKind::times) || is(TokenKind::over)) {
        result.operators += take().kind == TokenKind::times ? '*' : '/';
        result.parts.push_back(unary());
    }
    result.range = from(result.range);
    return result;
}

Expr Parser::unary() {
    if (!is(TokenKind::minus))
        return power();
    Nested const nested(*this);
    Expr negation = made(ExprKind::negation, take().range);
    negation.parts.push_back(unary());
    negation.range = from(negation.range);
    return negation;
}

Expr Parser::power() {
    Expr base = delayed(primary());
    if (!takeIf(TokenKind::power))
        return base;
    Nested const nested(*this);
    Expr result = made(ExprKind::power, base.range);
    result.parts.push_back(std::move(base));
    result.parts.push_back(unary());
    result.range = from(result.range);
    return result;
}

Expr Parser::primary() {
    if (is(TokenKind::number))
        return numberOrUnit();
    if (is(TokenKind::bracketOpen))
        return interval();
    if (isWord("inf")) {
        Expr infinite = made(ExprKind::number, take().range);
        infinite.number = HUGE_VAL;
        return infinite;
    }
    if (is(TokenKind::parenOpen)) {
        TextRange const begin = take().range;
        Expr inner = expression();
        expect(TokenKind::parenClose, ")");
        inner.range = from(begin);
        return inner;
    }
    if (is(TokenKind::name))
        return path();
    expected("a number, an interval or a name");
}

Expr Parser::numberOrUnit() {
    Expr number = made(ExprKind::number, current().range);
    number.number = take().number;
    number.unit = maybeUnit();
    number.range = from(number.range);
    return number;
}

Expr Parser::interval() {
    Nested const nested(*this);
    Expr result = made(ExprKind::interval, take().range);
    result.parts.push_back(expression());
    expect(TokenKind::comma, "a comma and the upper end of the interval");
    result.parts.push_back(expression());
    expect(TokenKind::bracketClose, "]");
    result.unit = maybeUnit();
    result.range = from(result.range);
    return result;
}

Expr Parser::path() {
    Expr result = made(ExprKind::name, current().range);
    do {
        PathStep step{name(result.path.empty() ? "a name" : "a name behind the dot"), {}};
        if (takeIf(TokenKind::bracketOpen)) {
            step.index.push_back(expression());
            expect(TokenKind::bracketClose, "]");
        }
        result.path.push_back(std::move(step));
    } while (takeIf(TokenKind::dot));
    result.range = from(result.range);
    return result;
}

Expr Parser::delayed(Expr what) {
    if (!takeIf(TokenKind::at))
        return what;
    Expr result = made(ExprKind::delayed, what.range);
    result.parts.push_back(std::move(what));
    result.parts.push_back(primary());
    if (takeIf(TokenKind::dots))
        result.parts.push_back(primary());
    result.range = from(result.range);
    return result;
}

// ---- Units ----

// Behind a number: in brackets, or a single name.
std::optional<UnitNode> Parser::maybeUnit() {
    if (numbersAreBare)
        return std::nullopt;
    if (is(TokenKind::bracketOpen))
        return unitIn(TokenKind::bracketOpen, TokenKind::bracketClose);
    bool const follows = is(TokenKind::name) && !isReserved(current().text) &&
                         current().text != "damping" && current().text != "frequency" &&
                         current().text != "keeping" && current().text != "plain" &&
                         current().text != "sharpened";
    if (!follows)
        return std::nullopt;
    NameNode const single = name("a unit");
    return UnitNode{{{single, 1}}, single.range};
}

std::optional<UnitNode> Parser::unitIn(TokenKind open, TokenKind close) {
    if (!is(open))
        return std::nullopt;
    TextRange const begin = take().range;
    UnitNode node = unit();
    expect(close, "]");
    node.range = from(begin);
    return node;
}

UnitNode Parser::unit() {
    UnitNode node{{}, current().range};
    int sign = 1;
    if (is(TokenKind::number) && current().number == 1.0) {
        take();
        if (!is(TokenKind::over))
            return node;
    } else {
        node.factors.push_back({name("a unit, such as m or kg/s"), 1});
        if (takeIf(TokenKind::power))
            node.factors.back().power = wholeNumber("the power, a whole number");
    }
    while (is(TokenKind::times) || is(TokenKind::over)) {
        sign = take().kind == TokenKind::times ? 1 : -1;
        node.factors.push_back({name("a unit"), sign});
        if (takeIf(TokenKind::power))
            node.factors.back().power = sign * wholeNumber("the power, a whole number");
    }
    return node;
}

// ---- Conditions ----

Expr Parser::condition() {
    Nested const nested(*this);
    Expr left = disjunction();
    bool const implies = isWord("implies");
    if (!implies && !isWord("iff"))
        return left;
    take();
    Expr result = made(implies ? ExprKind::implies : ExprKind::equivalent, left.range);
    result.parts.push_back(std::move(left));
    result.parts.push_back(disjunction());
    result.range = from(result.range);
    return result;
}

Expr Parser::disjunction() {
    Expr first = conjunction();
    if (!isWord("or"))
        return first;
    Expr result = made(ExprKind::disjunction, first.range);
    result.parts.push_back(std::move(first));
    while (takeWord("or"))
        result.parts.push_back(conjunction());
    result.range = from(result.range);
    return result;
}

Expr Parser::conjunction() {
    Expr first = literal();
    if (!isWord("and"))
        return first;
    Expr result = made(ExprKind::conjunction, first.range);
    result.parts.push_back(std::move(first));
    while (takeWord("and"))
        result.parts.push_back(literal());
    result.range = from(result.range);
    return result;
}

Expr Parser::literal() {
    Nested const nested(*this);
    TextRange const begin = current().range;
    if (takeWord("not")) {
        Expr result = made(ExprKind::negated, begin);
        result.parts.push_back(literal());
        result.range = from(begin);
        return result;
    }
    if (isWord("always") || isWord("never")) {
        Expr result = made(ExprKind::always, begin);
        result.number = take().text == "always" ? 1.0 : 0.0;
        return result;
    }
    if (isWord("all") || isWord("any"))
        return quantified(isWord("all") ? ExprKind::forEvery : ExprKind::forSome);
    if (takeIf(TokenKind::parenOpen)) {
        Expr inner = condition();
        expect(TokenKind::parenClose, ")");
        inner.range = from(begin);
        return inner;
    }
    return comparison();
}

Expr Parser::quantified(ExprKind kind) {
    Expr result = made(kind, take().range);
    expect(TokenKind::parenOpen, "( and an index");
    CountNode counted = count(TokenKind::colon, false);
    result.label.name = std::move(counted.index);
    result.parts.push_back(std::move(counted.first));
    result.parts.push_back(std::move(counted.last));
    result.parts.push_back(condition());
    expect(TokenKind::parenClose, ")");
    result.range = from(result.range);
    return result;
}

// One relation, or a chain such as 10 <= x < 17; a name alone is a value of the mode.
Expr Parser::comparison() {
    Expr first = expression();
    if (isWord("in"))
        return among(std::move(first));
    auto const relationHere = [this]() -> char {
        switch (current().kind) {
            case TokenKind::equal:
                return '=';
            case TokenKind::different:
                return '!';
            case TokenKind::less:
                return '<';
            case TokenKind::lessEqual:
                return 'l';
            case TokenKind::greater:
                return '>';
            case TokenKind::greaterEqual:
                return 'g';
            default:
                return '\0';
        }
    };
    if (relationHere() == '\0')
        return first;
    Expr result = made(ExprKind::comparison, first.range);
    result.parts.push_back(std::move(first));
    while (char const relation = relationHere()) {
        take();
        result.operators += relation;
        result.parts.push_back(expression());
    }
    result.range = from(result.range);
    return result;
}

Expr Parser::among(Expr what) {
    Expr result = made(ExprKind::among, what.range);
    result.parts.push_back(std::move(what));
    take();
    if (is(TokenKind::bracketOpen)) {
        result.parts.push_back(interval());
    } else {
        expect(TokenKind::parenOpen, "( and values, or an interval");
        do
            result.parts.push_back(valueName());
        while (takeIf(TokenKind::comma));
        expect(TokenKind::parenClose, "a comma or )");
    }
    result.range = from(result.range);
    return result;
}

Expr Parser::valueName() {
    NameNode const word = value();
    Expr result = made(ExprKind::name, word.range);
    result.path.push_back({word, {}});
    return result;
}
