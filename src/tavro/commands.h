// The subcommands of `tavro`. Each enters itself into the command line, and writes the status with
// which the program is to end.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
}

// Statuses of the program.
enum Status {
    succeeded = 0,
    plantIsWrong = 1,
    usageIsWrong = 2,
    dataIsWrong = 4,
    outputIsLost = 5,
};

void addCheck(CLI::App& program, int& status);
void addConsole(CLI::App& program, int& status);
void addRun(CLI::App& program, int& status);
void addShow(CLI::App& program, int& status);
void addSimulate(CLI::App& program, int& status);

// The option --set of a subcommand; what it answers is filled when the command line is read.
std::shared_ptr<std::vector<std::string>> addSettings(CLI::App& command);
