// Making components, variables and influences; conditions and constraints are in lower_*.cpp.
#include "language/lower.h"

#include <algorithm>
#include <cfloat>

#include "language/derived.h"
#include "language/lowering.h"
#include "model/CommandVar.h"
#include "model/CondVarrt.h"
#include "model/ModeVarrt.h"
#include "model/exclusiveChoice.h"
#include "model/labels.h"
#include "model/transitionParts.h"
#include "reasoning/Scheduler.h"

void lower(FlatPlant const& flat, Scheduler& scheduler) {
    Lowering(flat, scheduler).run();
}

Lowering::Lowering(FlatPlant const& flat, Scheduler& scheduler)
    : flat(flat),
      scheduler(scheduler),
      plant(scheduler.building()),
      runtime(std::make_shared<s_runtime>()),
      rt(*runtime),
      builder(rt, flat.name, flat.period, flat.window),
      own(flat.components.size()),
      variables(flat.quantities.size()),
      choices(flat.choices.size()),
      linked(flat.choices.size()),
      gvars(flat.quantities.size()) {
    auto const sort = [this](auto const& list, std::vector<int> Own::*into) {
        for (std::size_t i = 0; i < list.size(); ++i)
            (own[static_cast<std::size_t>(list[i].component)].*into).push_back(static_cast<int>(i));
    };
    sort(flat.quantities, &Own::quantities);
    sort(flat.choices, &Own::choices);
    sort(flat.influences, &Own::influences);
    sort(flat.moves, &Own::moves);
    sort(flat.clauses, &Own::clauses);
}

// A reference may lead to any component, so all have their variables before any has its influences.
void Lowering::run() {
    for (std::size_t i = 0; i < own.size(); ++i)
        makeComponent(i);
    for (int i = 1; i <= flat.defined; ++i)
        defined.push_back(own.front().part->intermediate(i));
    for (std::size_t i = 0; i < own.size(); ++i) {
        makeConditions(i);
        for (int const influence : own[i].influences)
            makeInfluence(own[i], influence);
        for (int const move : own[i].moves)
            makeMove(own[i], flat.moves[static_cast<std::size_t>(move)]);
        makeStarts(own[i]);
    }
    makeConstraints();
    for (auto const& [place, atom] : awaited)
        *place = linkedCondition(atom);
    makeClauses();
    makeNeighbours();
    if (flat.isContinuous())
        makeLists();
}

// ---- Components ----

void Lowering::makeComponent(std::size_t i) {
    FlatComponent const& from = flat.components[i];
    auto comp = std::make_unique<Comp>(from.name);
    comp->className = from.type;
    comp->symbol = from.symbol;
    own[i].part = &builder.part(*comp);
    own[i].comp = comp.get();
    for (int const quantity : own[i].quantities)
        makeQuantity(own[i], quantity);
    for (int const choice : own[i].choices)
        makeChoice(own[i], choice);
    scheduler.addComp(std::move(comp));
}

void Lowering::makeQuantity(Own& of, QuantityRef reference) {
    FlatQuantity const& from = flat.quantity(reference);
    s_Variable*& made = variables[static_cast<std::size_t>(reference)];
    made = from.isParameter ? of.part->parameter(from.name, from.start->low)
                            : of.part->variable(from.name);
    if (from.domain)
        made->domain = from.domain->object();
}

namespace {

template <typename Variable>
StateVar* addChoice(Comp& comp, FlatChoice const& from) {
    std::set<std::string> domain;
    for (FlatChoice::Value const& value : from.values)
        domain.insert(value.name);
    return comp.addStateVar(
        std::make_unique<Variable>(comp.name + "." + from.name, std::move(domain),
                                   from.values[static_cast<std::size_t>(from.start)].name, &comp));
}

}  // namespace

void Lowering::makeChoice(Own& of, ChoiceRef reference) {
    FlatChoice const& from = flat.choice(reference);
    StateVar*& made = choices[static_cast<std::size_t>(reference)];
    if (from.kind == ChoiceKind::mode) {
        made = addChoice<ModeVar>(*of.comp, from);
    } else if (from.kind == ChoiceKind::region) {
        made = addChoice<CondVar>(*of.comp, from);
    } else if (from.kind == ChoiceKind::command) {
        made = addChoice<CommandVar>(*of.comp, from);
        of.comp->commands.push_back(static_cast<CommandVar*>(made));
    } else {
        made = addChoice<StateVar>(*of.comp, from);
        made->type = typeObservable;
    }
    for (FlatChoice::Value const& value : from.values) {
        std::string const key = of.comp->className + "_" + from.name + "_" + value.name;
        of.comp->newAtom(key.c_str(), made, value.name);
    }
    linked[static_cast<std::size_t>(reference)].resize(from.values.size());
}

Atom* Lowering::atomOf(FlatAtom const& atom) const {
    return choices[static_cast<std::size_t>(atom.choice)]
        ->getAtomLinks()[static_cast<std::size_t>(atom.value)];
}

// ---- Influences ----

namespace {

influType typeOf(EquationForm form) {
    switch (form) {
        case EquationForm::sum:
            return INF_STATIC;
        case EquationForm::coupling:
            return INF_COUPLING;
        case EquationForm::integral:
            return INF_INTEGRAL;
        case EquationForm::firstOrder:
            return INF_DYNAMIC;
        default:
            return INF_DYNAMIC2;
    }
}

s_Objet coefficient(std::vector<std::optional<Value>> const& of, std::size_t power) {
    return of[power] ? of[power]->object() : makeReal(0.0);
}

void setCoefficients(FlatInfluence const& from, s_Influence& influence) {
    if (from.form == EquationForm::firstOrder)
        influence.respTime = from.responseTime.object();
    if (from.form == EquationForm::doubleIntegral) {
        influence.xi = makeReal(DBL_MAX);  // how the engine knows one
        influence.w = makeReal(1.0);
    }
    if (from.form == EquationForm::damped) {
        influence.xi = from.damping.object();
        influence.w = from.frequency.object();
    }
    if (from.form == EquationForm::rational) {
        influence.n1 = coefficient(from.numerator, 0);
        influence.n2 = coefficient(from.numerator, 1);
        influence.d0 = coefficient(from.denominator, 0);
        influence.d1 = coefficient(from.denominator, 1);
        influence.d2 = coefficient(from.denominator, 2);
    }
}

}  // namespace

void Lowering::makeInfluence(Own& of, int number) {
    auto const place = static_cast<std::size_t>(number);
    FlatInfluence const& from = flat.influences[place];
    s_Condition* condition = from.when ? conditionOf(of, *from.when) : nullptr;
    s_Influence* made = of.part->influence(
        from.name, typeOf(from.form), variables[static_cast<std::size_t>(from.cause)],
        variables[static_cast<std::size_t>(from.effect)], condition, from.gain.object(),
        {.delay = from.longestDelay, .condHistoLn = from.keeping, .useOpti = from.sharpened});
    made->delayMin = from.shortestDelay;
    setCoefficients(from, *made);
    if (from.when && condition == nullptr)
        await(&made->cond, from.when->atom);
}

void Lowering::makeStarts(Own& of) {
    for (int const quantity : of.quantities) {
        FlatQuantity const& from = flat.quantity(quantity);
        if (!from.isParameter && from.start)
            of.part->initial(variables[static_cast<std::size_t>(quantity)], from.start->object());
    }
}

// ---- Moves and clauses ----

void Lowering::makeMove(Own& of, FlatMove const& from) {
    std::vector<std::pair<Atom*, bool>> guard;
    for (FlatLiteral const& literal : from.guard)
        guard.push_back({atomOf(literal.atom), literal.holds});
    Transition* made = of.comp->addTransitionToC(
        mkTransition(guard, guard.size() > 1 ? "and" : "", atomOf(from.to),
                     from.kind == MoveKind::fault ? transFail : transNominal, from.probability,
                     from.kind == MoveKind::idle));
    for (FlatSetting const& setting : from.settings) {
        auto function = std::make_unique<MapFunc>();
        if (setting.condition) {
            function->guard = conditionOf(of, *setting.condition);
            if (function->guard == nullptr)
                await(&function->guard, setting.condition->atom);
        }
        function->vars.push_back({variables[static_cast<std::size_t>(setting.target)]->nom,
                                  static_cast<int>(rt.mapExprs.size())});
        rt.mapExprs.push_back(expressionOf(setting.value));
        made->mapFuncs.push_back(std::move(function));
    }
}

// Component by component, the choices before what the text says of them; then those between
// components.
void Lowering::makeClauses() {
    for (ComponentRef const component : flat.order) {
        Own const& of = own[static_cast<std::size_t>(component)];
        for (int const choice : of.choices)
            addExclusiveChoice(plant, choices[static_cast<std::size_t>(choice)]);
        makeClausesOf(of, false);
    }
    for (ComponentRef const component : flat.order)
        makeClausesOf(own[static_cast<std::size_t>(component)], true);
}

void Lowering::makeClausesOf(Own const& of, bool between) {
    for (int const number : of.clauses) {
        FlatClause const& from = flat.clauses[static_cast<std::size_t>(number)];
        auto const isOther = [&](FlatLiteral const& literal) {
            return flat.choice(literal.atom.choice).component != from.component;
        };
        if (std::any_of(from.literals.begin(), from.literals.end(), isOther) != between)
            continue;
        Clause* clause = plant.addClause(std::make_unique<Clause>(of.comp));
        for (FlatLiteral const& literal : from.literals)
            clause->addAtomRef(atomOf(literal.atom), !literal.holds);
    }
}

void Lowering::makeNeighbours() {
    auto const enter = [](Comp* comp, Comp* other) {
        auto& list = comp->neighbours;
        if (std::find(list.begin(), list.end(), other) == list.end())
            list.push_back(other);
    };
    for (std::size_t i = 0; i < own.size(); ++i) {
        for (ComponentRef const other : flat.components[i].mentions) {
            enter(own[i].comp, own[static_cast<std::size_t>(other)].comp);
            enter(own[static_cast<std::size_t>(other)].comp, own[i].comp);
        }
        for (ChoiceRef const command : flat.components[i].imported)
            own[i].comp->importedCommands.push_back(
                static_cast<CommandVar*>(choices[static_cast<std::size_t>(command)]));
    }
}

// ---- The runtime ----

void Lowering::makeLists() {
    auto const fill = [this](std::vector<QuantityRef> const& from, std::vector<s_Variable*>& into) {
        for (QuantityRef const quantity : from)
            into.push_back(variables[static_cast<std::size_t>(quantity)]);
    };
    Updates const updates = updatesOf(flat);
    fill(flat.inputs, rt.input);
    fill(flat.displays, rt.display);
    fill(flat.measures, rt.measure);
    fill(updates.temporal, rt.temporal);
    fill(updates.untemporal, rt.untemporal);
    rt.cgAux = static_cast<int>(flat.components.size());
    std::vector<Comp const*> order;
    for (ComponentRef const component : flat.order)
        order.push_back(own[static_cast<std::size_t>(component)].comp);
    builder.finish(order);
    plant.tavro_rt = std::move(runtime);
}
