// Layout of tables.
#include "quality/markdown.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdio>
#include <ostream>

namespace quality {

namespace {

using Row = std::vector<std::string>;

std::vector<std::size_t> widthsOf(Table const& table) {
    std::vector<std::size_t> widths(table.head.size(), 3);
    auto const widen = [&](Row const& row) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    };
    widen(table.head);
    for (Row const& row : table.rows)
        widen(row);
    return widths;
}

void printRow(std::ostream& out, Row const& row, std::vector<std::size_t> const& widths) {
    for (std::size_t i = 0; i < row.size(); ++i)
        out << "| " << row[i] << std::string(widths[i] - row[i].size() + 1, ' ');
    out << "|\n";
}

double hundredths(long part, long whole) {
    return 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

}  // namespace

void print(std::ostream& out, Table const& table) {
    std::vector<std::size_t> const widths = widthsOf(table);
    out << "**" << table.title << "**\n\n";
    printRow(out, table.head, widths);
    for (std::size_t const width : widths)
        out << "|" << std::string(width + 2, '-');
    out << "|\n";
    for (Row const& row : table.rows)
        printRow(out, row, widths);
    out << "\n";
}

std::string decimals(double value, int places) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", places, value);
    return text;
}

std::string share(long part, long whole) {
    if (whole == 0)
        return "-";
    return std::to_string(part) + "/" + std::to_string(whole) + " (" +
           decimals(hundredths(part, whole), 0) + " %)";
}

std::string percent(long part, long whole) {
    return whole == 0 ? "-" : decimals(hundredths(part, whole), 2) + " %";
}

double quantile(std::vector<double> values, double share) {
    assert(!values.empty());
    std::sort(values.begin(), values.end());
    double const place = std::ceil(share * static_cast<double>(values.size())) - 1.0;
    return values[static_cast<std::size_t>(std::max(place, 0.0))];
}

std::string quantileText(std::vector<double> const& values, double share, int places) {
    return values.empty() ? "-" : decimals(quantile(values, share), places);
}

}  // namespace quality
