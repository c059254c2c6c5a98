// Statements of a file, and what becomes of those that cannot be read.
#include "language/parser.h"

#include <cmath>

namespace {

constexpr int deepest = 200;  // keeps the stack small

std::string described(Token const& token) {
    switch (token.kind) {
        case TokenKind::end:
            return "the end of the file";
        case TokenKind::statementEnd:
            return token.text == ";" ? "a semicolon" : "the end of the line";
        case TokenKind::string:
            return "a text in quotes";
        default:
            return std::string(token.text);
    }
}

}  // namespace

Parser::Nested::Nested(Parser& parser) : parser(parser) {
    if (++parser.depth > deepest) {
        --parser.depth;
        parser.giveUp(parser.current().range, "this is nested too deeply",
                      "name parts of it, so that less stands inside each other");
    }
}

Parser::Parser(Sources const& sources, int file, Messages& messages)
    : messages(messages), file(file), tokens(tokensOf(sources, file, messages)) {}

FileTree Parser::parse() {
    FileTree tree{file, {}, {}};
    while (!is(TokenKind::end)) {
        Body more = body(false);
        for (Statement& statement : more)
            tree.body.push_back(std::move(statement));
        if (is(TokenKind::braceClose)) {
            messages.error(current().range, "this } closes nothing", "take it out");
            take();
        }
    }
    tree.damaged = std::move(damaged);
    return tree;
}

// ---- Tokens ----

Token const& Parser::ahead(std::size_t count) const {
    return tokens[std::min(at + count, tokens.size() - 1)];
}

bool Parser::isWord(std::string_view word) const {
    return is(TokenKind::name) && current().text == word;
}

Token const& Parser::take() {
    Token const& token = current();
    if (at + 1 < tokens.size())
        ++at;
    return token;
}

bool Parser::takeIf(TokenKind kind) {
    bool const found = is(kind);
    if (found)
        take();
    return found;
}

bool Parser::takeWord(std::string_view word) {
    bool const found = isWord(word);
    if (found)
        take();
    return found;
}

void Parser::expect(TokenKind kind, char const* what) {
    if (!takeIf(kind))
        expected(what);
}

void Parser::expectWord(char const* word) {
    if (!takeWord(word))
        expected(word);
}

// From *begin* to the token before the current one.
TextRange Parser::from(TextRange const& begin) const {
    return at == 0 ? begin : through(begin, tokens[at - 1].range);
}

void Parser::giveUp(TextRange const& range, std::string text, std::string advice) {
    messages.error(range, std::move(text), std::move(advice));
    throw GivenUp{};
}

void Parser::expected(char const* what) {
    giveUp(current().range, "here stands " + described(current()),
           std::string("expected is ") + what);
}

NameNode Parser::name(char const* what) {
    if (!is(TokenKind::name))
        expected(what);
    if (isReserved(current().text))
        giveUp(current().range,
               std::string(current().text) + " is a word of the language, and no name",
               std::string("write ") + what);
    Token const& token = take();
    return {std::string(token.text), token.range};
}

// ---- Statements ----

Body Parser::body(bool inType) {
    Body statements;
    while (!is(TokenKind::end) && !is(TokenKind::braceClose))
        if (!takeIf(TokenKind::statementEnd))
            statement(statements, inType);
    return statements;
}

void Parser::statement(Body& into, bool inType) {
    std::size_t const begin = at;
    std::size_t const count = into.size();
    int const outer = depth;
    try {
        Nested const nested(*this);
        Token const& keyword = current();
        // A name like that of a keyword may begin an equation, or be a label.
        TokenKind const next = ahead().kind;
        bool const maybe = is(TokenKind::name) && next != TokenKind::equal &&
                           next != TokenKind::colon && next != TokenKind::dot;
        if (!maybe || !keywordStatement(into, inType, keyword))
            labelledOrInstance(into, inType);
        endOfStatement();
    } catch (GivenUp const&) {
        depth = outer;
        numbersAreBare = termsHaveLabels = false;
        into.resize(count);
        recover(begin, 0);
    }
}

void Parser::endOfStatement() {
    if (!is(TokenKind::end) && !is(TokenKind::braceClose) && !takeIf(TokenKind::statementEnd))
        giveUp(current().range, described(current()) + " does not belong to this statement",
               "end the statement before it, by a new line or a semicolon");
}

// Goes behind the statement, with a block that it opens, and notes the names in it as damaged.
void Parser::recover(std::size_t begin, std::size_t open) {
    for (std::size_t i = begin; i < at; ++i)
        if (tokens[i].kind == TokenKind::name)
            damaged.emplace_back(tokens[i].text);
    for (; !is(TokenKind::end); take()) {
        if (is(TokenKind::braceOpen))
            ++open;
        else if (is(TokenKind::braceClose) && open == 0)
            return;
        else if (is(TokenKind::braceClose))
            --open;
        else if (is(TokenKind::statementEnd) && open == 0)
            return;
        else if (is(TokenKind::name))
            damaged.emplace_back(current().text);
    }
}

bool Parser::keywordStatement(Body& into, bool inType, Token const& keyword) {
    if (keyword.text == "for") {
        take();
        loop(into, inType, keyword.range);
        return true;
    }
    return fileStatement(into, keyword) || typeStatement(into, keyword);
}

// What is told of the file as a whole.
bool Parser::fileStatement(Body& into, Token const& keyword) {
    std::string_view const word = keyword.text;
    auto const add = [&](auto node) { into.push_back({std::move(node), from(keyword.range)}); };
    if (word == "plant") {
        take();
        add(PlantNode{name("the name of the plant")});
    } else if (word == "sample") {
        take();
        add(SampleNode{expression()});
    } else if (word == "window") {
        take();
        add(WindowNode{expression()});
    } else if (word == "include") {
        take();
        if (!is(TokenKind::string))
            expected("the path of a file, in quotes");
        Token const& path = take();
        add(IncludeNode{{std::string(path.text), path.range}});
    } else if (word == "constant") {
        take();
        do {
            NameNode const constant = name("the name of the constant");
            expect(TokenKind::equal, "= and a number");
            add(ConstantNode{constant, expression()});
        } while (takeIf(TokenKind::comma));
    } else if (word == "set") {
        take();
        do {
            NameNode const constant = name("the name of a constant");
            expect(TokenKind::equal, "= and a number");
            add(SetNode{constant, expression()});
        } while (takeIf(TokenKind::comma));
    } else if (word == "type") {
        take();
        type(into, keyword.range);
    } else if (word == "order") {
        take();
        OrderNode order;
        do
            order.instances.push_back(path());
        while (takeIf(TokenKind::comma));
        add(std::move(order));
    } else {
        return false;
    }
    return true;
}

// What is told of a component.
bool Parser::typeStatement(Body& into, Token const& keyword) {
    std::string_view const word = keyword.text;
    auto const add = [&](auto node) {
        into.push_back({std::move(node), from(keyword.range)});
        return true;
    };
    auto const taken = [&](char const* expectedWord) {
        bool const found = word == expectedWord;
        if (found)
            take();
        return found;
    };
    if (taken("parameter"))
        return add(quantities(true));
    if (taken("variable"))
        return add(quantities(false));
    if (taken("input"))
        return add(list(ListKind::input));
    if (taken("measure"))
        return add(list(ListKind::measure));
    if (taken("display"))
        return add(list(ListKind::display));
    if (taken("import"))
        return add(list(ListKind::import));
    if (taken("mode"))
        return add(choice(ChoiceKind::mode));
    if (taken("command"))
        return add(choice(ChoiceKind::command));
    if (taken("region"))
        return add(choice(ChoiceKind::region));
    if (taken("observe"))
        return add(choice(ChoiceKind::observed));
    if (taken("move"))
        return add(move(MoveKind::nominal));
    if (taken("fail"))
        return add(move(MoveKind::fault));
    if (taken("idle"))
        return add(move(MoveKind::idle));
    if (taken("clause"))
        return add(ClauseNode{condition()});
    if (taken("constraint")) {
        Expr target = path();
        expect(TokenKind::equal, "= and what it is equal to");
        return add(ConstraintNode{std::move(target), expression()});
    }
    if (taken("define")) {
        NameNode const defined = name("a name for a part of constraints");
        expect(TokenKind::equal, "= and what it stands for");
        return add(DefineNode{defined, expression()});
    }
    return false;
}

// A header that cannot be read does not hide the mistakes in the body.
void Parser::type(Body& into, TextRange const& begin) {
    TypeNode node;
    std::size_t const headerBegin = at;
    try {
        node.name = name("the name of the type");
        if (is(TokenKind::parenOpen))
            node.formals = formals();
        while (takeIf(TokenKind::statementEnd)) {
        }
        if (!is(TokenKind::braceOpen))
            expected("{ and what the components of this type have");
    } catch (GivenUp const&) {
        for (std::size_t i = headerBegin; i < at; ++i)
            if (tokens[i].kind == TokenKind::name)
                damaged.emplace_back(tokens[i].text);
        while (!is(TokenKind::braceOpen)) {
            if (is(TokenKind::end) || is(TokenKind::braceClose) || is(TokenKind::statementEnd))
                throw;
            if (is(TokenKind::name))
                damaged.emplace_back(current().text);
            take();
        }
        node.name.text.clear();
    }
    TextRange const open = take().range;
    node.body = body(true);
    if (!takeIf(TokenKind::braceClose))
        messages.error(open, "this { is never closed",
                       "write } behind the last statement of the type");
    into.push_back({std::move(node), from(begin)});
}

std::vector<FormalNode> Parser::formals() {
    std::vector<FormalNode> found;
    take();
    while (!is(TokenKind::parenClose)) {
        FormalNode formal{name("the name of something that each instance gives"), {}};
        if (takeIf(TokenKind::equal))
            formal.otherwise = expression();
        found.push_back(std::move(formal));
        if (!takeIf(TokenKind::comma))
            break;
    }
    expect(TokenKind::parenClose, "a comma or )");
    return found;
}

void Parser::loop(Body& into, bool inType, TextRange const& begin) {
    ForNode node;
    node.count.index = name("the name of the index");
    expectWord("in");
    node.count.first = expression();
    expect(TokenKind::dots, ".. and the last value");
    node.count.last = expression();
    while (takeIf(TokenKind::statementEnd)) {
    }
    TextRange const open = current().range;
    expect(TokenKind::braceOpen, "{ and what is to be repeated");
    node.body = body(inType);
    if (!takeIf(TokenKind::braceClose))
        messages.error(open, "this { is never closed",
                       "write } behind the last statement that is repeated");
    into.push_back({std::move(node), from(begin)});
}

// [1..N] or [i in 1..N], from behind the bracket.
CountNode Parser::count(TokenKind close, bool mayLackIndex) {
    CountNode node;
    if (!mayLackIndex || (is(TokenKind::name) && ahead().text == "in")) {
        node.index = name("the name of the index");
        expectWord("in");
    }
    node.first = expression();
    expect(TokenKind::dots, ".. and the last value");
    node.last = expression();
    expect(close, close == TokenKind::colon ? ": and a condition" : "]");
    return node;
}

namespace {

// What may stand behind the type of an instance, and not behind the variable of an equation.
bool endsType(Token const& next) {
    return next.kind == TokenKind::parenOpen || next.kind == TokenKind::statementEnd ||
           next.kind == TokenKind::end || (next.kind == TokenKind::name && next.text == "symbol");
}

}  // namespace

// An equation, maybe behind a label, or an instance: that has a type behind its colon, and no
// equation can begin so.
void Parser::labelledOrInstance(Body& into, bool inType) {
    if (!is(TokenKind::name) && !is(TokenKind::string))
        expected(inType ? "a statement, such as variable, mode, move or an equation"
                        : "a statement, such as plant, type, an instance or an equation");
    TextRange const begin = current().range;
    bool const colon = ahead().kind == TokenKind::colon;
    if (colon && is(TokenKind::name) && ahead(2).kind == TokenKind::name && endsType(ahead(3))) {
        instance(into);
        return;
    }
    if (is(TokenKind::name) && ahead().kind == TokenKind::bracketOpen) {
        std::size_t close = at + 2;
        while (tokens[close].kind != TokenKind::bracketClose &&
               tokens[close].kind != TokenKind::statementEnd && close + 1 < tokens.size())
            ++close;
        if (close + 1 < tokens.size() && tokens[close + 1].kind == TokenKind::colon) {
            instance(into);
            return;
        }
    }
    LabelNode label;
    if (colon) {
        Token const& token = current();
        label.isWhole = token.kind == TokenKind::string;
        label.name =
            label.isWhole ? NameNode{std::string(token.text), token.range} : name("a label");
        if (label.isWhole)
            take();
        take();
    }
    into.push_back({equation(std::move(label)), from(begin)});
}

void Parser::instance(Body& into) {
    InstanceNode node;
    node.name = name("the name of a component");
    TextRange const begin = node.name.range;
    if (takeIf(TokenKind::bracketOpen))
        node.count = count(TokenKind::bracketClose, true);
    take();  // the colon, by which it was known to be an instance
    node.type = name("a type");
    if (is(TokenKind::parenOpen))
        node.arguments = arguments();
    if (takeWord("symbol"))
        node.symbol = name("the symbol");
    into.push_back({std::move(node), from(begin)});
}

std::vector<ArgumentNode> Parser::arguments() {
    std::vector<ArgumentNode> found;
    take();
    while (!is(TokenKind::parenClose)) {
        ArgumentNode argument{name("the name of something that the type asks for"), {}};
        expect(TokenKind::equal, "= and what it is");
        argument.value = expression();
        found.push_back(std::move(argument));
        if (!takeIf(TokenKind::comma))
            break;
    }
    expect(TokenKind::parenClose, "a comma or )");
    return found;
}

ListNode Parser::list(ListKind kind) {
    ListNode node{kind, {}};
    do
        node.names.push_back(path());
    while (takeIf(TokenKind::comma));
    return node;
}
