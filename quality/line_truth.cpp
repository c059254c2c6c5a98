// A story of the feed line, command by command.
#include "quality/line_truth.h"

#include <algorithm>
#include <set>

#include "support/dice.h"

namespace quality {

namespace {

class Line {
public:
    explicit Line(LineSetting const& setting)
        : setting(setting), orders(setting.seed, 11), fate(setting.seed, 12) {
        // A component can fail at each command, each at another one.
        while (static_cast<int>(strikes.size()) < setting.failures)
            strikes.insert(
                1 + static_cast<int>(fate.below(static_cast<std::size_t>(setting.commands))));
    }

    LineStory tell() {
        for (int order = 1; order <= setting.commands; ++order) {
            command(order);
            if (order % setting.observeEvery == 0 || order == setting.commands)
                observe();
        }
        return story;
    }

private:
    // Components that a clause links are commanded one at a time.
    LineCommands ordersOf(int order) {
        LineCommands given{"none", "none", "none"};
        static constexpr char const* startUp[] = {"start", "open", "open"};
        if (order <= static_cast<int>(lineComponents)) {
            std::size_t const component = static_cast<std::size_t>(order) - 1;
            given[component] = startUp[component];
            return given;
        }
        std::size_t const drawn = orders.below(2 * lineComponents);
        if (drawn < lineComponents)
            given[drawn] = opposite(intended[drawn]);
        return given;
    }

    static std::string opposite(std::string const& mode) {
        if (mode == "on" || mode == "off")
            return mode == "on" ? "stop" : "start";
        return mode == "open" ? "close" : "open";
    }

    void command(int order) {
        LineCommands const given = ordersOf(order);
        story.events.push_back({true, given, false});
        LineModes next;
        for (std::size_t i = 0; i < lineComponents; ++i) {
            intended[i] = lineMoves(intended[i], given[i]).front().to;
            next[i] = lineMoves(modes[i], given[i]).front().to;
        }
        if (strikes.count(order) != 0)
            strike(next);
        modes = next;
        story.modes.push_back(modes);
    }

    // One failure of those that can happen, as likely as the model says. Of three components one at
    // most has failed before, so there is one.
    void strike(LineModes& next) {
        double left = fate.within(0.0, sumOfFailures());
        for (std::size_t i = 0; i < lineComponents; ++i)
            for (LineMove const& move : lineMoves(modes[i], "none"))
                if (move.failure && (left -= move.probability) < 0.0) {
                    next[i] = move.to;
                    story.failures.push_back({lineNames[i], move.to, now()});
                    return;
                }
    }

    double sumOfFailures() const {
        double total = 0.0;
        for (std::string const& mode : modes)
            for (LineMove const& move : lineMoves(mode, "none"))
                total += move.failure ? move.probability : 0.0;
        return total;
    }

    void observe() {
        LineEvent seen;
        seen.isCommand = false;
        seen.flows = lineFlows(modes);
        story.events.push_back(seen);
        story.modes.push_back(modes);
    }

    int now() const { return static_cast<int>(story.events.size()); }

    LineSetting setting;
    Dice orders, fate;
    std::set<int> strikes;
    LineModes modes = firstLineModes;
    LineModes intended = firstLineModes;  // as the one who commands believes
    LineStory story;
};

}  // namespace

LineStory lineStory(LineSetting const& setting) {
    return Line(setting).tell();
}

}  // namespace quality
