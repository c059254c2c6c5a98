// The product of everything that is varied.
#include "quality/line_suite.h"

#include "quality/in_parallel.h"
#include "quality/rules.h"

namespace quality {

std::vector<LineSetting> feedLines(int seeds) {
    std::vector<LineSetting> settings;
    for (int const failures : {0, 1, 2})
        for (int const commands : {4, 8, 12})
            for (int const observeEvery : {1, 3})
                for (int seed = 1; seed <= seeds; ++seed)
                    settings.push_back(
                        {failures, commands, observeEvery, static_cast<std::uint64_t>(seed)});
    return settings;
}

std::vector<LineResult> watchLines(std::vector<LineSetting> const& settings,
                                   std::string const& rules, unsigned jobs) {
    tavro::Plant const plant = tavro::Plant::builtin("line");
    tavro::Options const options = underRules(rules, {});
    std::vector<LineResult> results(settings.size());
    inParallel(settings.size(), jobs, [&](std::size_t i) {
        results[i] = {settings[i], watchLine(plant, settings[i], options)};
    });
    return results;
}

}  // namespace quality
