// A file of numbers as a table: named columns, a row per step.
#pragma once

#include <map>
#include <string>
#include <vector>

struct ValueTable {
    std::map<std::string, std::vector<double>> columns;  // of equal length; NaN is missing
    std::size_t rows = 0;
    bool hasTime = false;  // the rows have been placed by their times
    std::vector<std::string> notes;
};

// *plainNames* are the columns of a file without a heading; *wanted* those that are used of one
// with a heading, whose other columns are told and skipped. *period* is the time from one row to
// the next. Throws DataRefused.
ValueTable readTable(std::string const& path, std::vector<std::string> const& plainNames,
                     std::vector<std::string> const& wanted, double period);
