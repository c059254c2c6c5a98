// tavro-quality: follows seeded truths with the engine and prints tables of how well it did.
#include <iostream>

#include "quality/aims.h"
#include "quality/command_line.h"
#include "quality/line_suite.h"
#include "quality/line_tables.h"
#include "quality/room_suite.h"
#include "quality/room_tables.h"

namespace {

using quality::print;

void roomTables(quality::Wishes const& wishes) {
    auto const healthy =
        watchRooms(quality::healthyRooms(wishes.healthySeeds()), wishes.rules, wishes.jobs);
    for (quality::Table const& table : healthyTables(healthy))
        print(std::cout, table);
    auto const faulty =
        watchRooms(quality::faultyRooms(wishes.faultySeeds()), wishes.rules, wishes.jobs);
    for (quality::Table const& table : faultyTables(faulty))
        print(std::cout, table);
    print(std::cout,
          isolationTable(watchRooms(quality::isolatedRooms(), wishes.rules, wishes.jobs)));
    if (wishes.costs)
        print(std::cout, costTable(healthy, faulty));
}

void lineTables(quality::Wishes const& wishes) {
    auto const results =
        watchLines(quality::feedLines(wishes.lineSeeds()), wishes.rules, wishes.jobs);
    for (quality::Table const& table : lineResultTables(results))
        print(std::cout, table);
    if (wishes.costs)
        print(std::cout, lineCostTable(results));
}

void aimTables(quality::Wishes const& wishes) {
    print(std::cout,
          aimedHealthyTable(watchRooms(quality::aimedHealthyRooms(wishes.aimedHealthySeeds()),
                                       wishes.rules, wishes.jobs)));
    print(std::cout,
          aimedFaultyTable(watchBeside(quality::aimedFaultyRooms(wishes.aimedFaultySeeds()),
                                       wishes.rules, wishes.jobs)));
    print(std::cout,
          wildTable(watchWild(quality::wildRooms(wishes.wildDays()), wishes.rules, wishes.jobs)));
}

}  // namespace

int main(int count, char** words) {
    quality::Wishes wishes;
    std::string const mistake = wishes.read({words + 1, words + count});
    if (!mistake.empty()) {
        std::cerr << "tavro-quality: " << mistake << "\n" << quality::usage;
        return quality::wrongCall;
    }
    if (wishes.help) {
        std::cout << quality::usage;
        return 0;
    }
    std::cout << "Rules: " << wishes.rules << "\n\n";
    if (wishes.aims) {
        aimTables(wishes);
        return 0;
    }
    roomTables(wishes);
    lineTables(wishes);
    return 0;
}
