// Results of one kind of run, grouped by what was varied: a row of figures for each group. A result
// has a `verdict`, and that has a `cost`.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "quality/markdown.h"

namespace quality {

using Row = std::vector<std::string>;

template <typename Result>
using GroupOf = std::vector<Result const*>;

template <typename Result>
using KeyOf = std::function<Row(Result const&)>;

// In the order in which the keys come first.
template <typename Result>
std::vector<std::pair<Row, GroupOf<Result>>> grouped(std::vector<Result> const& results,
                                                     KeyOf<Result> const& key) {
    std::vector<std::pair<Row, GroupOf<Result>>> groups;
    for (Result const& result : results) {
        Row const name = key(result);
        auto const at = std::find_if(groups.begin(), groups.end(),
                                     [&](auto const& group) { return group.first == name; });
        if (at != groups.end())
            at->second.push_back(&result);
        else
            groups.push_back({name, {&result}});
    }
    return groups;
}

// `head` names the parts of the key, `columns` the figures.
template <typename Result, typename Figures>
Table tableOf(std::string title, Row head, std::vector<Result> const& results,
              KeyOf<Result> const& key, Row const& columns, Figures figures) {
    Table table{std::move(title), std::move(head), {}};
    table.head.insert(table.head.end(), columns.begin(), columns.end());
    for (auto const& [name, group] : grouped(results, key)) {
        Row row = name;
        Row const values = figures(group);
        row.insert(row.end(), values.begin(), values.end());
        table.rows.push_back(std::move(row));
    }
    return table;
}

template <typename Result, typename Test>
long count(std::vector<Result const*> const& group, Test test) {
    return std::count_if(group.begin(), group.end(),
                         [&](Result const* result) { return test(result->verdict); });
}

template <typename Result, typename Value>
long sum(std::vector<Result const*> const& group, Value value) {
    long total = 0;
    for (Result const* result : group)
        total += value(result->verdict);
    return total;
}

template <typename Result>
std::string mostCandidates(std::vector<Result const*> const& group) {
    std::size_t most = 0;
    for (Result const* result : group)
        most = std::max(most, result->verdict.mostCandidates);
    return std::to_string(most);
}

inline Row costColumns(std::string const& what) {
    return {what, "runs", "ms median", "ms most", "KiB median", "KiB most"};
}

template <typename Result>
Row costRow(std::string name, std::vector<Result> const& results) {
    std::vector<double> milliseconds, kibibytes;
    for (Result const& result : results) {
        milliseconds.push_back(1000.0 * result.verdict.cost.seconds);
        kibibytes.push_back(static_cast<double>(result.verdict.cost.bytes) / 1024.0);
    }
    return {std::move(name),
            std::to_string(results.size()),
            quantileText(milliseconds, 0.5, 1),
            quantileText(milliseconds, 1.0, 1),
            quantileText(kibibytes, 0.5, 0),
            quantileText(kibibytes, 1.0, 0)};
}

}  // namespace quality
