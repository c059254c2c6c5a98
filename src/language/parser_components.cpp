// Quantities, choices and moves.
#include "language/parser.h"

// ---- Quantities ----

QuantitiesNode Parser::quantities(bool isParameter) {
    QuantitiesNode node;
    do
        node.quantities.push_back(quantity(isParameter));
    while (takeIf(TokenKind::comma));
    return node;
}

QuantityNode Parser::quantity(bool isParameter) {
    QuantityNode node;
    node.isParameter = isParameter;
    node.name = name(isParameter ? "the name of a parameter" : "the name of a variable");
    node.unit = unitIn(TokenKind::bracketOpen, TokenKind::bracketClose);
    if (takeIf(TokenKind::equal))
        node.start = expression();
    else if (isParameter)
        expected("= and the value of the parameter");
    if (!isParameter && takeWord("in"))
        node.domain = expression();
    return node;
}

// ---- Choices ----

// Without a name of its own, and so without a colon, a mode variable is called mode.
ChoiceNode Parser::choice(ChoiceKind kind) {
    ChoiceNode node{kind, {}, {}, {}};
    if (kind == ChoiceKind::mode && ahead().kind != TokenKind::colon) {
        node.name = {"mode", tokens[at - 1].range};
    } else {
        node.name = name("the name of what is chosen");
        expect(TokenKind::colon, ": and the values");
    }
    node.values = values(kind, node.start);
    return node;
}

std::vector<ValueNode> Parser::values(ChoiceKind kind, NameNode& start) {
    std::vector<ValueNode> found;
    do {
        if (takeWord("starts")) {
            start = value();
            return found;
        }
        ValueNode node{value(), {}};
        if (kind == ChoiceKind::region) {
            expectWord("when");
            node.when = condition();
        }
        found.push_back(std::move(node));
    } while (takeIf(TokenKind::comma));
    if (takeWord("starts"))
        start = value();
    return found;
}

// A value may be a whole number, as in a circuit.
NameNode Parser::value() {
    if (is(TokenKind::number)) {
        Token const& token = take();
        return {std::string(token.text), token.range};
    }
    return name("a value");
}

// ---- Moves ----

MoveNode Parser::move(MoveKind kind) {
    MoveNode node;
    node.kind = kind;
    if (kind == MoveKind::idle) {
        idle(node);
        return node;
    }
    TextRange const begin = tokens[at - 1].range;
    while (movePart(node)) {
    }
    if (node.from < 0)
        giveUp(begin, "this move leaves no mode", "write from and the mode that it leaves");
    if (!node.to)
        giveUp(begin, "this move leads nowhere", "write to and the mode that it leads to");
    if (!node.probability)
        giveUp(begin, "this move has no probability", "write with and a number from 0 to 1");
    return node;
}

// False when no further part follows.
bool Parser::movePart(MoveNode& node) {
    TextRange const begin = current().range;
    auto const once = [&](bool again, char const* what) {
        if (again)
            giveUp(begin, std::string(what) + " stands here a second time", "keep one of them");
    };
    if (takeWord("from")) {
        once(node.from >= 0, "from");
        node.from = static_cast<int>(node.guards.size());
        node.guards.push_back(literal());
    } else if (takeWord("when")) {
        node.guards.push_back(condition());
    } else if (takeWord("to")) {
        once(node.to.has_value(), "to");
        node.to = literal();
    } else if (takeWord("with")) {
        once(node.probability.has_value(), "with");
        node.probability = expression();
    } else if (takeWord("setting")) {
        once(!node.settings.empty(), "setting");
        node.settings = settings();
    } else {
        return false;
    }
    return true;
}

std::vector<SettingNode> Parser::settings() {
    std::vector<SettingNode> found;
    do {
        SettingNode node{path(), {}, {}};
        expect(TokenKind::equal, "= and the value that it is set to");
        node.value = expression();
        if (takeWord("if"))
            node.condition = condition();
        found.push_back(std::move(node));
    } while (takeIf(TokenKind::comma));
    return found;
}

void Parser::idle(MoveNode& node) {
    if (takeWord("others")) {
        node.idleOthers = true;
        return;
    }
    TextRange const begin = tokens[at - 1].range;
    if (isWord("when"))
        movePart(node);
    node.from = static_cast<int>(node.guards.size());
    node.guards.push_back(literal());
    while ((isWord("when") || isWord("with") || isWord("setting")) && movePart(node)) {
    }
    if (!node.probability)
        giveUp(begin, "this idle move has no probability", "write with and a number from 0 to 1");
}
