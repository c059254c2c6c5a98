// Opening, reading, writing and closing the data files of a run.
#include "console/exchange.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

#include "console/console.h"
#include "console/data_lines.h"
#include "console/losses.h"
#include "console/output_file.h"
#include "console/run.h"
#include "continuous/sorn-runt.h"
#include "reasoning/Scheduler.h"
#include "support/numbers.h"

std::FILE *dataIn = nullptr, *measIn = nullptr, *dataOut = nullptr, *modesOut = nullptr;
int memFr = 0;

namespace {

// Where dataIn and measIn are.
DataLines inputLines, measureLines;

// How a path is opened.
using Open = std::FILE* (*)(std::string const& path);

std::FILE* openInput(std::string const& path) {
    return std::fopen(path.c_str(), "r");
}

// Opens *path* into *stream*, or gives it *without* when the path is empty. 1 on success.
int prepare(std::FILE*& stream, std::string const& path, Open open, std::FILE* without,
            char const* okText) {
    closeStream(stream);
    stream = path.empty() ? without : open(path);
    if (stream == nullptr && !path.empty()) {
        tellLoss("Can't open file %s\n", path.c_str());
        return 0;
    }
    std::cout << okText;
    return 1;
}

}  // namespace

void closeStream(std::FILE*& stream) {
    if (stream != nullptr && stream != stdout)
        std::fclose(stream);
    stream = nullptr;
}

int prepareEI() {
    std::cout << "inputfile : " << inputFile << "\n";
    inputLines = DataLines(inputFile);
    return prepare(dataIn, inputFile, openInput, nullptr, "input file is ok\n");
}

int prepareMS() {
    std::cout << "inputfile : " << measureFile << "\n";
    measureLines = DataLines(measureFile);
    return prepare(measIn, measureFile, openInput, nullptr, "measure file is ok\n");
}

int prepareDO() {
    return prepare(dataOut, displayFile, openOutput, stdout, "display file is ok\n");
}

int prepareMO() {
    return prepare(modesOut, modesFile, openOutput, nullptr, "modes file is ok\n");
}

namespace {

// Required: that there is no scenario is told only when its directory is missing too.
bool isScenarioNamed() {
    std::error_code error;
    return scenarFile != inputPrefix || !std::filesystem::is_directory(inputPrefix, error);
}

}  // namespace

int prepareSc() {
    std::cout << "scenarFIle: " << scenarFile << "\n";
    if (!scenarFile.empty() && isScenarioNamed())
        consoleRun->sMM->loadScenario(scenarFile);
    return 1;
}

namespace {

int readLine(char const* label, std::FILE* stream, DataLines& lines, int count, double* values) {
    if (stream != nullptr)
        lines.read(stream, count, values);
    std::cout << label;
    for (int i = 0; i < count; ++i)
        std::cout << values[i] << " ";
    std::cout << "\n";
    return 1;
}

}  // namespace

int tavro_getInputs(char const*, int count, double* values) {
    return readLine("inputs: ", dataIn, inputLines, count, values);
}

int tavro_getMeasures(char const*, int count, double* values) {
    return readLine("measures: ", measIn, measureLines, count, values);
}

int tavro_setDisplays(char const*, int count, double const* inf, double const* sup) {
    if (dataOut == stdout)
        std::fprintf(dataOut, "Displays: ");
    for (int i = 0; i < count; ++i)
        std::fprintf(dataOut, "%g %g ", inf[i], sup[i]);
    return 1;
}

// The size of the table is that of the first candidate, for all.
namespace {

// *tableOf* tells the table of an entry of *candidates*. Allocates nothing.
template <typename Candidates, typename TableOf>
void writeRows(std::FILE* stream, Candidates const& candidates, int width, int rows,
               TableOf tableOf) {
    std::cout << "writing " << candidates.size() << " trajectories\n";
    if (candidates.empty() || stream == nullptr || width == 0)
        return;
    rows = std::min(rows, tableOf(*candidates.begin()).size() / width);
    for (int row = 0; row < rows; ++row) {
        for (auto const& entry : candidates)
            for (int k = 0; k < width; ++k)
                std::fprintf(stream, "%g ", tableOf(entry)[row * width + k]);
        std::fprintf(stream, "\n");
    }
}

int widthOf(HybMap const& trajectories) {
    return trajectories.empty()
               ? 0
               : 2 * static_cast<int>(trajectories.begin()->second->rt->display.size());
}

}  // namespace

void writeDispAll(std::FILE* stream, HybMap const& trajectories, int rows) {
    writeRows(stream, trajectories, widthOf(trajectories), rows,
              [](auto const& entry) -> DisplayTable const& { return entry.second->rt->extra; });
}

void writeDispAll(std::FILE* stream, KeptRows const& kept) {
    writeRows(stream, kept.tables, kept.width, kept.rows,
              [](DisplayTable const& table) -> DisplayTable const& { return table; });
}

KeptRows keepRows(HybMap const& trajectories, int rows) {
    KeptRows kept{rows, widthOf(trajectories), {}};
    kept.tables.reserve(trajectories.size());
    for (auto const& entry : trajectories)
        kept.tables.push_back(entry.second->rt->extra);
    return kept;
}

void closeRunFiles() {
    for (std::FILE** stream : {&dataOut, &dataIn, &modesOut, &measIn})
        closeStream(*stream);
}

// An outer system could take alarms here; this one leaves them in the runtime.
int sorn_setAlarms(char const*, int, int const*, int const*, int const*) {
    return 1;
}

int sorn_sendDiagnosis(char const*, char const* text) {
    if (*text != '\0')
        std::fprintf(stderr, "Diagnostic Results:\n%s\n", text);
    return 1;
}
