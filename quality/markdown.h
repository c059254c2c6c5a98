// Tables as Markdown, and the figures that stand in them.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace quality {

struct Table {
    std::string title;
    std::vector<std::string> head;
    std::vector<std::vector<std::string>> rows;
};

// Columns padded to one width, so that the text can be read as it is.
void print(std::ostream& out, Table const& table);

std::string decimals(double value, int places);
// "3/24 (13 %)"; "-" of none.
std::string share(long part, long whole);
// "99.97 %"; "-" of none.
std::string percent(long part, long whole);

// The value below which that share of the sorted values lies, 0.5 for the median: the one at the
// next place, no value in between is made up. Needs a value.
double quantile(std::vector<double> values, double share);
// The same as text; "-" of none.
std::string quantileText(std::vector<double> const& values, double share, int places);

}  // namespace quality
