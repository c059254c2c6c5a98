// The subcommands of `tavro`. Each enters itself into the command line, and writes the status with
// which the program is to end.
#pragma once

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
