// Building, telling and reading of the tap's history.
#include "reasoning/diagnoser_fixture.h"
#include "fixtures/the_run.h"

namespace diagnoser_fixture {

std::string ErrorTrace::take() {
    std::string const taken = text.str();
    text.str("");
    return taken;
}

Tap::Tap() {
    theRun().scheduler.redux_diag.clear();
    theRun().scheduler.transitions_checked = 0;
    model.comp("k");
    model.variable("m", {"shut", "open", "stuck"});
    model.variable<CommandVar>("cmd", {"none", "go", "back"}, true, "k");
}

Tap::~Tap() {
    theRun().scheduler.redux_diag.clear();
}

Transition* Tap::move(std::string const& name, std::string const& pre, std::string const& post,
                      double proba, std::string const& type, bool idle, std::string const& owner) {
    Transition* made = model.transition(pre, post, proba, type, idle, owner);
    names[made] = name;
    return made;
}

Transition* Tap::manyEffects(std::string const& name, std::string const& pre,
                             std::string const& effect, double proba) {
    auto posts = std::make_unique<Transition::Posts>();
    (*posts)[1] = model.formula(effect).release();
    Transition* made = model.comps.at("c")->addTransitionToC(
        std::make_unique<Transition>(model.formula(pre), std::move(posts), transNominal, proba));
    names[made] = name;
    return made;
}

void Tap::addSensor() {
    model.comp("d");
    model.variable<CondVar>("out", {"lo", "hi"}, true, "d");
    model.clause("!m=shut out=lo");
    model.clause("!m=open out=hi");
    model.clause("!m=stuck out=lo");
}

void Tap::addPulse() {
    model.variable("pulse", {"on", "off"}, true, "k");
    move("beats", "pulse=on", "pulse=on", 1.0, transNominal, true, "k");
}

void Tap::start(int last) {
    model.start();
    for (auto const& entry : model.comps)
        model.weigh({entry.first.c_str()});
    for (auto const& entry : state(0)->elts)
        entry.second->prevTrans = nullptr;
    diagnoser.initPb(state(0));
    state(0)->lockStatePerm();
    state(0)->proba = 1.0;
    for (int t = 1; t <= last; ++t)
        addStep();
}

State* Tap::addStep() {
    int const t = history()->getCurrentTime() + 1;
    history()->addCopyState(t, state(t - 1), false);
    State* added = state(t);
    added->comps = state(t - 1)->comps;
    for (auto const& entry : added->elts)
        entry.second->nextTrans.clear();
    diagnoser.initPb(added);
    command(t, "none");
    return added;
}

void Tap::label(int t, std::string const& literals) {
    for (std::string const& word : SmallModel::words(literals)) {
        char const sign = word[0];
        std::string const name = sign == '!' || sign == '?' ? word.substr(1) : word;
        elt(name, t)->setLabel(sign == '!' ? labelFalse : sign == '?' ? labelUnknown : labelTrue);
    }
}

void Tap::command(int t, std::string const& value) {
    for (char const* each : {"none", "go", "back"}) {
        bool const given = each == value;
        TrajEl* element = elt(std::string("cmd=") + each, t);
        element->setLabel(given ? labelTrue : labelFalse);
        element->lock = given ? LOCK_TRUE_PERM : LOCK_FALSE_PERM;
    }
}

void Tap::takes(Transition* transition, int t) {
    for (auto const& [key, atom] : transition->pre->getAllSignedAtoms())
        if (key)
            state(t - 1)->getElt(atom->getId())->addToNextTrans(transition);
    for (Atom const* atom : transition->post->getAllAtoms()) {
        for (Atom const* sibling : atom->getSiblings())
            state(t)->getElt(sibling->getId())->setLabel(labelFalse);
        state(t)->getElt(atom->getId())->setLabel(labelTrue);
        state(t)->setPrevTrans(atom->getId(), transition);
    }
    if (transition->type == transFail)
        history()->rank += 1.0;
}

void Tap::mode(int t, std::string const& value) {
    for (char const* each : {"shut", "open", "stuck"}) {
        TrajEl* element = elt(std::string("m=") + each, t);
        element->setLabel(each == value ? labelTrue : labelFalse);
        element->lock = LOCK_FREE;
    }
}

void Tap::forget(std::string const& comp, int t) {
    history()->removeComp(model.comps.at(comp), t);
}

std::string Tap::locks(std::string const& names, Trajectory const& in, int t) const {
    std::string digits;
    for (std::string const& name : SmallModel::words(names))
        digits += std::to_string(elt(name, in, t)->lock);
    return digits;
}

std::string Tap::nameOf(Transition const* transition) const {
    return transition == nullptr ? "none" : names.at(transition);
}

std::string Tap::moves(Trajectory const& in) const {
    std::string text;
    if (in.transByTime)
        for (auto const& [t, transition] : *in.transByTime)
            text += (text.empty() ? "" : " ") + std::to_string(t) + ":" + nameOf(transition);
    return text;
}

std::string Tap::toldBehind(std::string const& line, std::string const& text) const {
    std::string told;
    for (std::size_t at = text.find(line); at != std::string::npos; at = text.find(line, at + 1)) {
        int const id = std::stoi(text.substr(at + line.size()));
        told += (told.empty() ? "" : " ") + nameOf(thePlant().active_trans[id]);
    }
    return told;
}

ConflictSet Tap::conflicts(std::vector<disConflict> const& members) const {
    ConflictSet set;
    for (disConflict const& member : members)
        set[member.element->getId()] = member;
    return set;
}

TrajectoryMap Tap::explain(ConflictSet const& set, int t, double rank, bool post) {
    TrajectoryMap finals;
    errors.take();
    diagnoser.immediateSuccessors(set, std::move(model.history), t, rank, finals, post);
    return finals;
}

TrajectoryMap Tap::explainEffect(std::string const& name, double rank) {
    int const t = history()->getCurrentTime();
    return explain(conflicts({conflict(name, t, t - 1)}), t, rank, true);
}

Observations Tap::observed(std::string const& literals) const {
    return model.formula(literals)->getAllSignedAtoms();
}

MovingTap::MovingTap() {
    opens = move("opens", "m=shut cmd=go", "m=open", 0.8);
    sticks = move("sticks", "m=shut", "m=stuck", 0.1, transFail);
    jams = move("jams", "m=shut cmd=go", "m=stuck", 0.3, transFail);
    stays = move("stays", "m=shut cmd=none", "m=shut", 0.7, transNominal, true);
    keeps = move("keeps", "m=open", "m=open", 0.6, transNominal, true);
    remains = move("remains", "m=stuck", "m=stuck", 0.5, transNominal, true);
}

void MovingTap::believedOpen() {
    start(1);
    takes(opens, 1);
    mode(1, "shut");
}

void MovingTap::believedShut() {
    start(2);
    takes(stays, 2);
    mode(1, "open");
}

void ForkedTap::start(std::string const& likely) {
    addSensor();
    addPulse();
    model.propositions("q r");
    model.clause("!out=lo q r");
    Transition* drips = move("drips", "m=shut", "m=open", 0.8);
    move("feeds", "m=shut", likely, 0.5);
    Tap::start(1);
    command(0, "back");
    takes(drips, 1);
    label(1, "!out=lo out=hi !q !r");
}

void ForkedTap::expectFound(TrajectoryMap const& results, std::string const& expected) const {
    ASSERT_EQ(results.size(), 1u);
    Trajectory const& result = *results.begin()->second;
    EXPECT_EQ(moves(result), "1:sticks");
    EXPECT_EQ(labels("q r", result, 1), expected);
}

}  // namespace diagnoser_fixture
