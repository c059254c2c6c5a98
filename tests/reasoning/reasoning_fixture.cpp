// Building and reading of the small models.
#include "reasoning/reasoning_fixture.h"
#include "fixtures/the_run.h"

#include <algorithm>
#include <iostream>

namespace reasoning_fixture {

Trace::Trace() : console(std::cout.rdbuf(text.rdbuf())) {}

Trace::~Trace() {
    std::cout.rdbuf(console);
}

std::string Trace::take() {
    std::string const taken = text.str();
    text.str("");
    return taken;
}

int count(std::string const& text, std::string const& part) {
    int found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos;
         at = text.find(part, at + part.size()))
        ++found;
    return found;
}

namespace {

itms& newEngine(RunSettings const& settings) {
    newPlant("small", settings);
    return theRun().scheduler;
}

}  // namespace

SmallModel::SmallModel(RunSettings const& settings) : engine(newEngine(settings)) {
    comp("c");
}

Comp* SmallModel::comp(std::string const& name) {
    return comps[name] = engine.addComp(std::make_unique<Comp>(name));
}

std::vector<std::string> SmallModel::words(std::string const& text) {
    std::istringstream stream(text);
    std::vector<std::string> found;
    for (std::string word; stream >> word;)
        found.push_back(word);
    return found;
}

namespace {

using Literals = std::vector<std::pair<bool, Atom*>>;

// The sign in front of a name, if there is one, and the name behind it.
std::pair<char, std::string> splitSign(std::string const& word) {
    if (word[0] == '!' || word[0] == '?')
        return {word[0], word.substr(1)};
    return {' ', word};
}

bool isWalk(SignedAtoms const& bag, Literals const& literals) {
    return std::equal(
        bag.begin(), bag.end(), literals.begin(), literals.end(),
        [](auto const& a, auto const& b) { return a.first == b.first && a.second == b.second; });
}

// The order in which the literals must be inserted to be walked as they stand.
std::vector<std::size_t> insertionOrder(Literals const& literals) {
    std::vector<std::size_t> order(literals.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    do {
        SignedAtoms bag;
        for (std::size_t const i : order)
            bag.insert({literals[i].first, literals[i].second});
        if (isWalk(bag, literals))
            return order;
    } while (std::next_permutation(order.begin(), order.end()));
    ADD_FAILURE() << "no order of insertion gives this walk";
    return order;
}

}  // namespace

Clause* SmallModel::clause(std::string const& text) {
    Literals literals;
    for (std::string const& word : words(text)) {
        auto const [sign, name] = splitSign(word);
        literals.emplace_back(sign == '!', atom(name));
    }
    Clause* made = thePlant().addClause(std::make_unique<Clause>(comps.at("c")));
    for (std::size_t const i : insertionOrder(literals))
        made->addAtomRef(literals[i].second, literals[i].first);
    return made;
}

std::unique_ptr<StateFormula> SmallModel::formula(std::string const& literals) const {
    if (literals.empty())
        return nullptr;
    auto made = std::make_unique<StateFormula>();
    for (std::string const& word : words(literals)) {
        auto const [sign, name] = splitSign(word);
        made->addAtom(atom(name), sign != '!');
    }
    return made;
}

Transition* SmallModel::transition(std::string const& pre, std::string const& post, double proba,
                                   std::string const& type, bool idle, std::string const& owner) {
    return comps.at(owner)->addTransitionToC(
        std::make_unique<Transition>(formula(pre), formula(post), type, proba, 0.0, idle));
}

void SmallModel::start() {
    engine.rtInit();
    history = std::make_unique<Trajectory>(theRun().scheduler.book, &thePlant().active_atoms);
    trace.take();
}

TrajEl* SmallModel::elt(std::string const& name, State const* in) const {
    return in->getElt(atom(name)->getId());
}

void SmallModel::label(std::string const& literals) {
    for (std::string const& word : words(literals)) {
        auto const [sign, name] = splitSign(word);
        elt(name)->setLabel(sign == '!' ? labelFalse : sign == '?' ? labelUnknown : labelTrue);
    }
}

std::string SmallModel::labels(std::string const& names, State const* in) const {
    std::string letters;
    for (std::string const& name : words(names))
        letters += elt(name, in)->getLabel().substr(0, 1);
    return letters;
}

ElementTable SmallModel::table(std::string const& names) const {
    ElementTable made;
    for (std::string const& name : words(names))
        made[atom(name)->getId()] = elt(name);
    return made;
}

void SmallModel::weigh(std::initializer_list<char const*> names) {
    for (char const* name : names)
        state()->comps[comps.at(name)->getName()] = comps.at(name);
}

ItmsResults SmallModel::assertAll(std::string const& props, SearchLimits const& limits, bool keep) {
    refused = std::make_unique<State>(state(), true);
    SignedElements asked;
    std::vector<std::string> const listed = words(props);
    // Inserted from the back, so that propositions of one sign are walked in the order of the text.
    for (auto word = listed.rbegin(); word != listed.rend(); ++word) {
        auto const [sign, name] = splitSign(*word);
        asked.insert({sign != '!', elt(name, refused.get())});
    }
    return engine.addPropositions(asked, refused, limits, history.get(), 0, keep);
}

std::unique_ptr<ItmsRes> SmallModel::resolve(Clause* clause, SearchLimits const& limits,
                                             std::string const& changed) {
    auto branch = std::make_unique<ItmsRes>(std::make_unique<State>(state(), true));
    branch->already_changed = itms::copyState(table(changed), branch->state.get());
    engine.initPb(branch->state.get());
    return engine.propagateThroughConflict(clause, std::move(branch), agenda, limits, history.get(),
                                           0);
}

}  // namespace reasoning_fixture
