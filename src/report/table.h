// The table of a run, as CSV: a row for each step and candidate.
#pragma once

#include <string>

#include "tavro/tavro.hpp"

// Columns: step, time, place (1 is the best), candidate (its number in the record), agrees, rank,
// probability, story, each input and measure, each mode, and of each variable its lower and its
// upper bound. A cell is empty where nothing is known. A cell with a comma, a quote or a line end
// stands in quotes (RFC 4180).
std::string tableHeading(tavro::Plant const& plant);
// The rows of one step.
std::string tableRows(std::size_t number, tavro::Line const& line, tavro::Step const& step,
                      tavro::Plant const& plant, std::vector<std::size_t> const& numbers);
