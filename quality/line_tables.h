// What came out of the stories of the feed line, as tables.
#pragma once

#include <vector>

#include "quality/line_suite.h"
#include "quality/markdown.h"

namespace quality {

std::vector<Table> lineResultTables(std::vector<LineResult> const& results);
// These figures alone differ from run to run and from machine to machine.
Table lineCostTable(std::vector<LineResult> const& results);

}  // namespace quality
