// Plants as lines of text, for comparisons.
#include <algorithm>
#include <cstring>
#include <map>
#include <sstream>

#include "continuous/records.h"
#include "language/text_fixture.h"
#include "model/CommandVar.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"

namespace language_fixture {

namespace {

std::string text(s_Objet const& value) {
    std::ostringstream out;
    out.precision(17);
    if (value.type == OBJ_REAL)
        out << value.real;
    else if (value.type == OBJ_RANGE)
        out << (isInfClosed(value.rng) ? "[" : "]") << value.rng.inf << "," << value.rng.sup
            << (isSupClosed(value.rng) ? "]" : "[");
    else
        out << "unset";
    return out.str();
}

std::string text(std::optional<s_Objet> const& value) {
    return value ? text(*value) : "-";
}

template <typename Record>
std::string slot(char const* kind, Record const* record) {
    return record == nullptr ? "-" : kind + std::to_string(record->slot);
}

template <typename Numbers>
std::string joined(Numbers const& numbers) {
    std::ostringstream out;
    for (auto const& number : numbers)
        out << " " << number;
    return out.str();
}

template <typename Record>
std::string slots(char const* kind, std::vector<Record*> const& records) {
    std::string all;
    for (Record const* record : records)
        all += " " + slot(kind, record);
    return all;
}

std::string idOf(Atom const* atom) {
    return atom == nullptr ? "-" : atom->id;
}

CondMap const* linksOf(StateVar const& variable) {
    if (variable.type == typeCond)
        return &static_cast<CondVar const&>(variable).condMap;
    if (variable.type == typeMode)
        return &static_cast<ModeVar const&>(variable).condMap;
    return nullptr;
}

std::string linksOf(Atom const& atom) {
    std::vector<int> numbers;
    if (CondMap const* links = linksOf(*atom.getStateVar()))
        for (auto const& [id, number] : *links)
            if (std::strcmp(id, atom.getId()) == 0)
                numbers.push_back(number);
    return joined(numbers);
}

class Records {
public:
    explicit Records(Plant const& plant) : plant(plant) {
        for (auto const& entry : plant.active_comps)
            for (std::size_t i = 0; i < entry.second->transitions.size(); ++i)
                names[entry.second->transitions[i].get()] =
                    entry.second->name + "#" + std::to_string(i);
    }

    Texts run() {
        for (auto const& entry : plant.active_comps)
            addComponent(entry.first, *entry.second);
        addClauses();
        if (plant.tavro_rt != nullptr)
            addRuntime(*plant.tavro_rt);
        return std::move(lines);
    }

private:
    template <typename... Parts>
    void add(Parts const&... parts) {
        std::ostringstream out;
        out.precision(17);
        ((out << parts << " "), ...);
        lines.push_back(out.str());
    }

    void addComponent(char const* key, Comp const& comp);
    void addVariable(StateVar const& variable);
    void addTransition(Transition const& transition);
    void addClauses();
    void addRuntime(s_runtime const& rt);
    void addQuantities(s_runtime const& rt);
    void addInfluences(s_runtime const& rt);
    void addConditions(s_runtime const& rt);
    void addConstraints(s_runtime const& rt);
    std::string moves(std::vector<Transition*> const& transitions) const {
        std::string all;
        for (Transition const* transition : transitions)
            all += " " + names.at(transition);
        return all;
    }

    Plant const& plant;
    std::map<Transition const*, std::string> names;
    Texts lines;
};

void Records::addComponent(char const* key, Comp const& comp) {
    add("component", key, comp.name, comp.className, comp.symbol, comp.compSize,
        comp.clauses.size(), comp.variables.size());
    for (Comp const* neighbour : comp.neighbours)
        add(" neighbour", neighbour->name);
    for (CommandVar const* command : comp.commands)
        add(" command", command->name);
    for (CommandVar const* command : comp.importedCommands)
        add(" imported", command->name);
    std::map<std::string, std::string> keys;
    for (auto const& entry : comp.atoms)
        keys[entry.first] = entry.second->id;
    for (auto const& entry : keys)
        add(" key", entry.first, entry.second);
    for (s_Influence const* influence : comp.influences)
        add(" influence", influence->nom);
    for (auto const& variable : comp.stateVariables)
        addVariable(*variable);
    for (auto const& transition : comp.transitions)
        addTransition(*transition);
}

void Records::addVariable(StateVar const& variable) {
    add(" choice", variable.name, variable.type, variable.defaultValue, variable.currentState,
        variable.observable, joined(variable.values), variable.clauses.size());
    for (Atom const* atom : variable.atomLinks) {
        add("  atom", atom->id, atom->value, atom->linkIndex, atom->failure, atom->bridged,
            atom->idleTrans == nullptr ? "-" : names.at(atom->idleTrans),
            "pre" + moves(atom->refTransPre), "post" + moves(atom->refTransPost), "links",
            linksOf(*atom));
        std::string all;
        for (Clause const* clause : atom->clauses)
            for (std::size_t i = 0; i < plant.cls.size(); ++i)
                if (plant.cls[i].get() == clause)
                    all += " " + std::to_string(i);
        add("  clauses", all);
    }
}

void Records::addTransition(Transition const& transition) {
    std::string guard;
    for (auto const& [sign, atom] : transition.pre->getAtoms())
        guard += (sign ? " " : " not ") + atom->id;
    add(" transition", transition.type, transition.proba, transition.proba2, transition.idle,
        transition.modeVar->name, idOf(transition.preMode), idOf(transition.postMode),
        transition.unknownPost, "'" + transition.pre->operat + "'", guard, "to",
        idOf(transition.post->getAllAtoms().front()));
    for (auto const& function : transition.mapFuncs)
        for (s_mapfVar const& target : function->vars)
            add("  sets", target.name, target.expr, slot("c", function->guard));
}

void Records::addClauses() {
    for (auto const& clause : plant.cls) {
        std::string literals;
        for (auto const& [negated, atom] : clause->atoms)
            literals += (negated ? " not " : " ") + atom->id;
        add("clause", clause->comp->name, clause->internal, literals);
    }
}

void Records::addRuntime(s_runtime const& rt) {
    add("runtime", rt.name, rt.num, rt.Ts, rt.tStart, rt.twc, rt.cgAux, rt.varsInitialised,
        rt.globalOn, rt.misbWindow, rt.precision, rt.isoMode);
    add("lists", "input" + slots("v", rt.input), "display" + slots("v", rt.display),
        "measure" + slots("v", rt.measure), "temporal" + slots("v", rt.temporal),
        "untemporal" + slots("v", rt.untemporal));
    add("sizes", rt.dinfval.size(), rt.dsupval.size(), rt.lowalarm.size(), rt.condin.size(),
        rt.condout.size(), rt.inAc.size(), rt.valSpc.size(), rt.ccAgenda.size());
    for (s_InitVar const& init : rt.init)
        add("init", slot("v", init.var), text(init.value));
    addQuantities(rt);
    addInfluences(rt);
    addConditions(rt);
    addConstraints(rt);
}

void Records::addQuantities(s_runtime const& rt) {
    for (auto const& v : rt.dico) {
        add("variable", slot("v", v.get()), v->nom, v->isParam, text(v->domain), v->defined,
            text(v->old), text(v->new_), text(v->mes), slot("g", v->graph), v->histo.size(),
            v->mesHisto.size(), v->lowHisto.size(), v->highHisto.size(), joined(v->varConds));
    }
    for (auto const& g : rt.cG)
        add("node", slot("g", g.get()), g->kind, "causes" + slots("i", g->causes),
            "effects" + slots("i", g->effects));
}

void Records::addInfluences(s_runtime const& rt) {
    for (auto const& i : rt.influ) {
        add("influence", slot("i", i.get()), i->nom, i->type, slot("v", i->cause),
            slot("v", i->effect), slot("c", i->cond), i->condHistoLn, joined(i->condHisto),
            text(i->gain), i->delayMin, i->delayMax, i->useOpti);
        add(" coefficients", text(i->respTime), text(i->a1), text(i->b1), text(i->a2), text(i->b2),
            text(i->xi), text(i->w), text(i->n1), text(i->n2), text(i->d0), text(i->d1),
            text(i->d2));
    }
}

void Records::addConditions(s_runtime const& rt) {
    for (auto const& c : rt.condPool)
        add("condition", slot("c", c.get()), c->kind, slot("c", c->left), slot("c", c->right),
            slot("v", c->var), c->op, text(c->value), slot("v", c->var2), c->val, idOf(c->atom),
            c->atomRef, slot("e", c->expr), joined(c->acIdx));
    add("condi", slots("c", rt.condi));
}

void Records::addConstraints(s_runtime const& rt) {
    for (auto const& g : rt.gvPool)
        add("gvar", slot("G", g.get()), g->kind, slot("v", g->var), g->number, text(g->value),
            "gc" + joined(g->gcIdx), "ac" + joined(g->acIdx));
    for (auto const& e : rt.exprPool)
        add("expr", slot("e", e.get()), e->op, slot("G", e->gvar), slot("e", e->left),
            slot("e", e->right));
    add("gV", slots("G", rt.gV), "gC" + slots("e", rt.gC), "aC" + slots("e", rt.aC),
        "mapExprs" + slots("e", rt.mapExprs));
}

// ---- What it means ----

std::string text(s_Expr const& expr);

std::string text(s_GVar const& gvar) {
    if (gvar.kind == GV_CONST)
        return text(gvar.value);
    return gvar.kind == GV_VARIABLE ? gvar.var->nom : "let" + std::to_string(gvar.number);
}

std::string operand(s_Expr const* expr) {
    if (expr == nullptr)
        return "";
    return expr->gvar != nullptr ? text(*expr->gvar) : text(*expr);
}

// A leaf, or what stands behind the variable of a constraint.
std::string text(s_Expr const& expr) {
    if (expr.op == EXPR_CONST || expr.op == EXPR_VAR)
        return text(*expr.gvar);
    return "(" + operand(expr.left) + " " +
           std::string("?v+-*/^~").substr(static_cast<std::size_t>(expr.op), 1) + " " +
           operand(expr.right) + ")";
}

std::string text(s_Condition const* condition) {
    if (condition == nullptr)
        return "-";
    switch (condition->kind) {
        case COND_CONST:
            return std::string(1, condition->val != 0 ? 't' : 'f');
        case COND_ATOM:
            return condition->atom->id;
        case COND_REL:
            return condition->var->nom + " rel" + std::to_string(condition->op) + " " +
                   (condition->var2 != nullptr ? condition->var2->nom : text(condition->value));
        case COND_EXPR:
            return condition->var->nom + " op" + std::to_string(condition->op) + " " +
                   text(*condition->expr);
        default:
            return "cond" + std::to_string(condition->kind) + "(" + text(condition->left) + ", " +
                   text(condition->right) + ")";
    }
}

template <typename... Parts>
void put(Texts& lines, Parts const&... parts) {
    std::ostringstream out;
    out.precision(17);
    ((out << parts << " "), ...);
    lines.push_back(out.str());
}

void addMoves(s_runtime const* rt, Comp const& comp, Texts& lines) {
    for (std::size_t i = 0; i < comp.transitions.size(); ++i) {
        Transition const& move = *comp.transitions[i];
        std::string guard, sets;
        for (auto const& [sign, atom] : move.pre->getAtoms())
            guard += (sign ? " " : " not ") + atom->id;
        for (auto const& function : move.mapFuncs)
            for (s_mapfVar const& target : function->vars)
                sets += " " + target.name + "=" +
                        text(*rt->mapExprs[static_cast<std::size_t>(target.expr)]) + " if " +
                        text(function->guard);
        put(lines, "move", comp.name, i, move.type, move.proba, move.idle, guard, "to",
            idOf(move.post->getAllAtoms().front()), sets);
    }
}

// Regions are told by the conditions of their values.
void addChoices(s_runtime const* rt, Comp const& comp, Texts& lines) {
    for (auto const& variable : comp.stateVariables)
        for (Atom const* atom : variable->atomLinks) {
            put(lines, "value", atom->id, atom->linkIndex, variable->type, variable->defaultValue);
            if (variable->type != typeCond)
                continue;
            CondMap const* links = linksOf(*variable);
            for (auto const& [id, number] : *links)
                if (std::strcmp(id, atom->getId()) == 0)
                    put(lines, "region", atom->id,
                        text(rt->condi[static_cast<std::size_t>(number)]));
        }
}

void addContinuous(s_runtime const& rt, Texts& lines) {
    put(lines, "runtime", rt.name, rt.Ts, rt.twc);
    auto const names = [&lines](char const* what, std::vector<s_Variable*> const& list) {
        std::string all;
        for (s_Variable const* variable : list)
            all += " " + variable->nom;
        put(lines, what, all);
    };
    names("input", rt.input);
    names("measure", rt.measure);
    names("display", rt.display);
    for (s_InitVar const& init : rt.init)
        put(lines, "init", init.var->nom, text(init.value));
    for (auto const& v : rt.dico)
        put(lines, "variable", v->nom, v->isParam, text(v->domain), text(v->old));
    for (auto const& i : rt.influ) {
        put(lines, "influence", i->nom, i->type, i->cause->nom, i->effect->nom, text(i->cond),
            text(i->gain), i->delayMin, i->delayMax, i->useOpti);
        put(lines, "coefficients", i->nom, text(i->respTime), text(i->xi), text(i->w), text(i->n1),
            text(i->n2), text(i->d0), text(i->d1), text(i->d2));
    }
    for (s_Expr const* constraint : rt.gC)
        put(lines, "constraint", text(*constraint->gvar), text(*constraint));
}

}  // namespace

Texts recordsOf(Plant const& plant) {
    return Records(plant).run();
}

Texts meaningOf(Plant const& plant) {
    Texts lines;
    s_runtime const* rt = plant.tavro_rt.get();
    for (auto const& entry : plant.active_comps) {
        addChoices(rt, *entry.second, lines);
        addMoves(rt, *entry.second, lines);
    }
    for (std::size_t i = 0; i < plant.cls.size(); ++i) {
        std::string literals;
        for (auto const& [negated, atom] : plant.cls[i]->atoms)
            literals += (negated ? " not " : " ") + atom->id;
        put(lines, "clause", literals);
    }
    if (rt != nullptr)
        addContinuous(*rt, lines);
    std::sort(lines.begin(), lines.end());
    return lines;
}

}  // namespace language_fixture
