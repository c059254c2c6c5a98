// The enumeration: event by event, and within a command component by component.
#include "quality/line_histories.h"

#include <algorithm>

namespace quality {

namespace {

class Enumeration {
public:
    Enumeration(std::vector<LineEvent> const& events, std::size_t count)
        : events(events), count(count) {}

    void from(std::size_t at, LineHistory const& history) {
        if (at == count) {
            found.push_back(history);
            return;
        }
        if (events[at].isCommand)
            move(at, 0, history);
        else if (lineFlows(history.modes) == events[at].flows)
            from(at + 1, history);
    }

    std::vector<LineHistory> found;

private:
    void move(std::size_t at, std::size_t component, LineHistory const& history) {
        if (component == lineComponents) {
            from(at + 1, history);
            return;
        }
        for (LineMove const& taken :
             lineMoves(history.modes[component], events[at].commands[component])) {
            if (taken.failure && history.failures.size() == mostFailures)
                continue;
            LineHistory next = history;
            next.modes[component] = taken.to;
            next.weight *= taken.probability;
            if (taken.failure)
                next.failures.push_back({lineNames[component], taken.to, static_cast<int>(at) + 1});
            move(at, component + 1, next);
        }
    }

    std::vector<LineEvent> const& events;
    std::size_t count;
};

}  // namespace

std::vector<LineHistory> lineHistories(std::vector<LineEvent> const& events, std::size_t count) {
    Enumeration all(events, count);
    all.from(0, {{}, 1.0, firstLineModes});
    return all.found;
}

std::vector<LineHistory> minimalHistories(std::vector<LineHistory> const& histories) {
    std::size_t fewest = mostFailures + 1;
    for (LineHistory const& history : histories)
        fewest = std::min(fewest, history.failures.size());
    std::vector<LineHistory> minimal;
    for (LineHistory const& history : histories)
        if (history.failures.size() == fewest)
            minimal.push_back(history);
    std::stable_sort(minimal.begin(), minimal.end(),
                     [](auto const& a, auto const& b) { return a.weight > b.weight; });
    return minimal;
}

}  // namespace quality
