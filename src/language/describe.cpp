// A plant in words.
#include "language/describe.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "language/describe_parts.h"
#include "support/numbers.h"

namespace {

class Description {
public:
    explicit Description(FlatPlant const& plant) : plant(plant) {}

    std::string text() {
        heading();
        for (ComponentRef i = 0; i < static_cast<int>(plant.components.size()); ++i)
            component(i);
        constraints();
        return std::move(all);
    }

private:
    void line(std::string const& words) { all.append(words).append("\n"); }
    void heading();
    void component(ComponentRef component);
    void quantities(ComponentRef component);
    void choices(ComponentRef component);
    void influences(ComponentRef component);
    void moves(ComponentRef component);
    void constraints();
    static bool isIn(std::vector<QuantityRef> const& list, QuantityRef quantity) {
        return std::find(list.begin(), list.end(), quantity) != list.end();
    }

    FlatPlant const& plant;
    std::string all;
};

std::string counted(std::size_t count, char const* what) {
    std::string text = std::to_string(count);
    return text.append(" ").append(what).append(count == 1 ? "" : "s");
}

void Description::heading() {
    std::string words = "plant ";
    words.append(plant.name).append(": ").append(counted(plant.components.size(), "component"));
    if (plant.isContinuous())
        words.append(", a step is ").append(shortText(plant.period)).append(" s");
    line(words);
}

void Description::component(ComponentRef component) {
    FlatComponent const& own = plant.components[static_cast<std::size_t>(component)];
    std::string words = "\n";
    words.append(own.name).append(" (").append(own.type);
    if (own.symbol != own.name)
        words.append(", ").append(own.symbol);
    line(words.append(")"));
    quantities(component);
    choices(component);
    influences(component);
    moves(component);
}

void Description::quantities(ComponentRef component) {
    for (std::size_t i = 0; i < plant.quantities.size(); ++i) {
        FlatQuantity const& own = plant.quantities[i];
        if (own.component != component)
            continue;
        auto const place = static_cast<QuantityRef>(i);
        std::string words = own.isParameter ? "  parameter " : "  variable ";
        words.append(own.name);
        if (own.start)
            words.append(" = ").append(textOf(*own.start));
        if (own.domain)
            words.append(" in ").append(textOf(*own.domain));
        if (isIn(plant.inputs, place))
            words.append(", an input");
        if (isIn(plant.measures, place))
            words.append(", measured");
        if (isIn(plant.displays, place))
            words.append(", displayed");
        line(words);
    }
}

// The end of a space that has none is the greatest number.
bool isOpenEnd(double end) {
    return std::fabs(end) >= std::numeric_limits<double>::max();
}

std::string spaceOf(FlatSpace const& space) {
    std::string text;
    if (!isOpenEnd(space.low))
        text.append(space.lowBelongs ? " from " : " above ").append(shortText(space.low));
    if (!isOpenEnd(space.high))
        text.append(space.highBelongs ? " up to " : " below ").append(shortText(space.high));
    return text;
}

void Description::choices(ComponentRef component) {
    static constexpr char const* kinds[] = {"mode variable", "command", "region", "observed"};
    for (FlatChoice const& choice : plant.choices) {
        if (choice.component != component)
            continue;
        std::string words = "  ";
        words.append(kinds[static_cast<int>(choice.kind)]).append(" ").append(choice.name);
        if (choice.of != nowhere)
            words.append(" of ").append(nameIn(plant, component, choice.of));
        words.append(":");
        for (FlatChoice::Value const& value : choice.values) {
            words.append(&value == &choice.values.front() ? " " : ", ").append(value.name);
            if (choice.kind == ChoiceKind::region)
                words.append(spaceOf(value.space));
        }
        words.append("; starts in ");
        line(words.append(choice.values[static_cast<std::size_t>(choice.start)].name));
    }
}

std::string formOf(EquationForm form) {
    static constexpr char const* verbs[] = {" = ",          " follows ",     " integrates ",
                                            " lags ",       " responds to ", " integrates twice ",
                                            " responds to "};
    return verbs[static_cast<int>(form)];
}

void Description::influences(ComponentRef component) {
    for (FlatInfluence const& influence : plant.influences) {
        if (influence.component != component)
            continue;
        std::string words = "  ";
        words.append(influence.name).append(": ");
        words.append(nameIn(plant, component, influence.effect)).append(formOf(influence.form));
        if (influence.gain.isInterval || influence.gain.low != 1.0)
            words.append(textOf(influence.gain)).append(" * ");
        words.append(nameIn(plant, component, influence.cause));
        if (influence.longestDelay > 0)
            words.append(" @ ").append(std::to_string(influence.shortestDelay));
        if (influence.longestDelay > influence.shortestDelay)
            words.append("..").append(std::to_string(influence.longestDelay));
        if (influence.when)
            words.append("  when ").append(textOf(plant, component, *influence.when));
        line(words);
    }
}

void Description::moves(ComponentRef component) {
    static constexpr char const* kinds[] = {"  ", "  failure ", "  stays "};
    for (FlatMove const& move : plant.moves) {
        if (move.component != component)
            continue;
        std::string words = kinds[static_cast<int>(move.kind)];
        words.append(valueName(plant, move.from));
        if (move.kind != MoveKind::idle)
            words.append(" -> ").append(valueName(plant, move.to));
        std::string const guard = guardOf(plant, move);
        if (!guard.empty())
            words.append(" when ").append(guard);
        line(words.append(" with ").append(shortText(move.probability)));
    }
}

void Description::constraints() {
    if (!plant.constraints.empty() || !plant.clauses.empty())
        line("");
    if (!plant.constraints.empty())
        line(counted(plant.constraints.size(), "constraint"));
    if (!plant.clauses.empty())
        line(counted(plant.clauses.size(), "clause"));
}

}  // namespace

std::string described(FlatPlant const& plant) {
    return Description(plant).text();
}
