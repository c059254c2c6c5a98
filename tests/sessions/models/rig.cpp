// A test rig with a drive that a brake can hold: one effect for every form of a dynamic influence,
// each with numbers and with intervals for its parameters, at a sample period of half a second. It
// is for what the reference model, which has no dynamic influence, cannot show.
//
//   inputs    rig.u, rig.v
//   measured  rig.lag, rig.over (temporal), rig.late, rig.out (untemporal)
//   numbers   lag, held, late, drift, under, crit, over, acc, ratio, swing, out
//   intervals ilag, iint, iunder, iover, iacc, iratio, still, gratio, istat
//
// It starts at rest: every dynamic effect that is not measured has the initial value 0 (iint 1),
// but for rig.drift and rig.ratio, whose first values come from that of rig.lag. In the one of
// rig.ratio stands the bare coefficient a1 of its own state, which is not there yet.
//
// The brake is commanded. It takes rig.u from rig.lag, from rig.under and from rig.ilag, and lets
// rig.out see rig.v instead of rig.u.
#include <cfloat>

#include "continuous/model_parts.h"
#include "model/CommandVar.h"
#include "model/Comprt.h"
#include "model/ModeVarrt.h"
#include "model/exclusiveChoice.h"
#include "model/labels.h"
#include "model/transitionParts.h"
#include "reasoning/Scheduler.h"
#include "run/compiled_model.h"

namespace {

constexpr int window = 20;
constexpr double pi = 3.14159265358979323846;

s_Objet number(double value) {
    return makeReal(value);
}

s_Objet between(double inf, double sup) {
    return makeRange(inf, sup, 1, 1);
}

// The drive is free, or held by its brake.
struct Drive {
    Drive(Plant& plant, Comp* rig) {
        command = rig->addStateVar(std::make_unique<CommandVar>(
            "rig.cmd", std::set<std::string>{"none", "hold", "let"}, "none", rig));
        rig->newAtom("rig_cmd_none", command, "none");
        hold = rig->newAtom("rig_cmd_hold", command, "hold");
        let = rig->newAtom("rig_cmd_let", command, "let");
        mode = rig->addStateVar(std::make_unique<ModeVar>(
            "rig.mode", std::set<std::string>{"free", "held"}, "free", rig));
        free = rig->newAtom("rig_mode_free", mode, "free");
        held = rig->newAtom("rig_mode_held", mode, "held");
        rig->commands = {command};
        addMove(rig, {{free, true}}, free, true);
        addMove(rig, {{held, true}}, held, true);
        addMove(rig, {{hold, true}, {free, true}}, held, false);
        addMove(rig, {{let, true}, {held, true}}, free, false);
        addExclusiveChoice(plant, command);
        addExclusiveChoice(plant, mode);
    }

    static void addMove(Comp* rig, std::vector<std::pair<Atom*, bool>> const& guard, Atom* to,
                        bool idle) {
        rig->addTransitionToC(
            mkTransition(guard, guard.size() > 1 ? "and" : "", to, transNominal, 0.99, idle));
    }

    CommandVar* command;
    ModeVar* mode;
    Atom *hold, *let, *free, *held;
};

// The continuous side. Influences are named after their effects: rig.lag.1, rig.lag.2 and so on.
class Builder {
public:
    Builder(s_runtime& rt, Drive const& drive) : rt(rt) {
        whenFree = mkAtomCond(rt, drive.free, 0);
        whenHeld = mkAtomCond(rt, drive.held, 1);
        rt.condi = {whenFree, whenHeld};
        linkAtom(drive.mode, drive.free, 0);
        linkAtom(drive.mode, drive.held, 1);
    }

    s_Variable* variable(char const* nom) {
        s_Variable* made = mkVariable(rt, std::string("rig.") + nom, window);
        mkGraph(rt, made, INF_STATIC, {}, {});
        return made;
    }

    s_Influence* link(s_Variable* cause, s_Variable* effect, influType type, s_Objet const& gain,
                      s_Condition* cond = nullptr) {
        std::vector<s_Influence*>& causes = effect->graph->causes;
        std::string const nom = effect->nom + "." + std::to_string(causes.size() + 1);
        s_Influence* made = mkInfluence(rt, nom, type, cause, effect, cond, 1, gain, 0, 0);
        effect->graph->kind = type == INF_COUPLING ? INF_STATIC : type;
        causes.push_back(made);
        cause->graph->effects.push_back(made);
        return made;
    }

    static void delay(s_Influence* influence, int least, int most) {
        influence->delayMin = least;
        influence->delayMax = most;
    }

    s_Influence* lag(s_Variable* cause, s_Variable* effect, s_Objet const& gain,
                     s_Objet const& respTime, s_Condition* cond = nullptr) {
        s_Influence* made = link(cause, effect, INF_DYNAMIC, gain, cond);
        made->respTime = respTime;
        return made;
    }

    s_Influence* damped(s_Variable* cause, s_Variable* effect, s_Objet const& xi, s_Objet const& w,
                        s_Objet const& gain, s_Condition* cond = nullptr) {
        s_Influence* made = link(cause, effect, INF_DYNAMIC2, gain, cond);
        made->xi = xi;
        made->w = w;
        return made;
    }

    // (n1 + n2 s) / (d0 + s + s^2)
    s_Influence* rational(s_Variable* cause, s_Variable* effect, s_Objet const& n1,
                          s_Objet const& n2, s_Objet const& d0, s_Objet const& gain) {
        s_Influence* made = link(cause, effect, INF_DYNAMIC2, gain);
        made->n1 = n1;
        made->n2 = n2;
        made->d0 = d0;
        made->d1 = made->d2 = number(1.0);
        return made;
    }

    void inputs() {
        u = variable("u");
        v = variable("v");
        rt.input = {u, v};
    }
    void numbers();
    void intervals();
    void lists();

private:
    s_runtime& rt;
    s_Condition *whenFree, *whenHeld;
    s_Variable *u, *v;
    s_Variable *lag_, *held, *late, *drift, *under, *crit, *over, *acc, *ratio, *swing, *out;
    s_Variable *ilag, *iint, *iunder, *iover, *iacc, *iratio, *still, *gratio, *istat;
};

void Builder::numbers() {
    lag_ = variable("lag");
    lag(u, lag_, number(2.0), number(6.0), whenFree);
    lag(v, lag_, number(-0.5), number(3.0));  // the last one: its response time counts
    held = variable("held");
    delay(lag(u, held, number(3.0), number(0.0)), 2, 2);  // no response time
    late = variable("late");
    lag(v, late, number(4.0), number(1.5));
    drift = variable("drift");
    delay(link(lag_, drift, INF_INTEGRAL, number(0.5)), 1, 1);
    delay(link(u, drift, INF_INTEGRAL, number(0.25)), 1, 3);
    under = variable("under");
    damped(u, under, number(0.25), number(2.0), number(3.0), whenFree);
    crit = variable("crit");
    damped(v, crit, number(1.0), number(1.5), number(2.0));
    over = variable("over");
    damped(u, over, number(2.0), number(1.0), number(2.0));
    delay(damped(v, over, number(2.0), number(1.0), number(-1.0)), 1, 1);
    acc = variable("acc");
    damped(u, acc, number(DBL_MAX), number(1.0), number(0.5));
    ratio = variable("ratio");
    rational(lag_, ratio, number(1.0), number(0.5), number(2.0), number(1.5));
    swing = variable("swing");
    damped(u, swing, number(0.0), number(4.0 * pi / 3.0), number(2.0));
    out = variable("out");
    link(over, out, INF_STATIC, number(0.5));
    link(acc, out, INF_COUPLING, number(7.0));
    link(u, out, INF_STATIC, number(0.25), whenFree);
    link(v, out, INF_STATIC, number(4.0), whenHeld);
}

void Builder::intervals() {
    ilag = variable("ilag");
    lag(u, ilag, between(1.5, 2.5), between(3.0, 6.0), whenFree);
    iint = variable("iint");
    link(ilag, iint, INF_INTEGRAL, between(0.9, 1.1));
    iunder = variable("iunder");
    damped(u, iunder, between(0.2, 0.3), between(1.9, 2.1), between(2.8, 3.2));
    iover = variable("iover");
    damped(v, iover, between(1.9, 2.1), between(0.9, 1.1), between(1.5, 2.0));
    iacc = variable("iacc");
    damped(u, iacc, number(DBL_MAX), number(1.0), between(0.4, 0.6));
    iratio = variable("iratio");
    rational(u, iratio, between(0.9, 1.1), number(0.5), between(1.8, 2.2), number(1.0))->d1 =
        between(0.9, 1.1);
    still = variable("still");
    rational(u, still, number(1.0), number(0.5), between(1.8, 2.2), number(1.0));
    gratio = variable("gratio");
    rational(u, gratio, number(1.0), number(0.5), number(2.0), between(1.0, 2.0))->useOpti = 1;
    istat = variable("istat");
    link(ilag, istat, INF_STATIC, between(0.9, 1.1));
}

void Builder::lists() {
    rt.temporal = {lag_, held, drift,  under, crit, over,   acc,   ratio, swing,
                   ilag, iint, iunder, iover, iacc, iratio, still, gratio};
    rt.untemporal = {late, istat, out};
    rt.measure = {lag_, over, late, out};
    rt.display = {lag_, acc, swing, out, ilag, iacc, istat};
    for (s_Variable* atRest :
         {held, under, crit, acc, swing, ilag, iunder, iover, iacc, iratio, still, gratio})
        rt.init.push_back({atRest, number(0.0)});
    rt.init.push_back({iint, number(1.0)});
    sizeArrays(rt);
    rt.name = "rig";
    rt.Ts = 0.5;
    rt.twc = window;
}

void startinit(Scheduler* scheduler) {
    auto runtime = std::make_shared<s_runtime>();
    Drive const drive(scheduler->building(), scheduler->addComp(std::make_unique<Comp>("rig")));
    Builder builder(*runtime, drive);
    builder.inputs();
    builder.numbers();
    builder.intervals();
    builder.lists();
    scheduler->building().tavro_rt = std::move(runtime);
}

}  // namespace

// Unchecked: a delay behind a history, an effect without a response time, one without a first value
// and one updated late are what its tests are about.
extern CompiledModel const rig_model{"rig", startinit, false};
