// What came out of the days of the room, as tables.
#pragma once

#include <vector>

#include "quality/markdown.h"
#include "quality/room_suite.h"

namespace quality {

std::vector<Table> healthyTables(std::vector<RoomResult> const& results);
std::vector<Table> faultyTables(std::vector<RoomResult> const& results);
Table isolationTable(std::vector<RoomResult> const& results);
// What runs cost; these figures alone differ from run to run and from machine to machine.
Table costTable(std::vector<RoomResult> const& healthy, std::vector<RoomResult> const& faulty);

}  // namespace quality
