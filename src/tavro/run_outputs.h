// The files that a run writes.
//
// Each is opened before the first step, so that a place that cannot be written is known at once,
// and whatever is lost later is told once, by file and reason. A name that is one of the files that
// are read is refused before anything is opened.
#pragma once

#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "console/output_file.h"
#include "report/document.h"

// Where what goes; "" for nowhere, "-" for standard output.
struct RunOutputs {
    std::string document, stream, table, page, graphs;

    bool usesStandardOutput() const;
    // All that needs the bounds of every step.
    bool needsBounds() const { return !document.empty() || !page.empty(); }
};

// A request that cannot be met, before anything is written.
class UsageRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A place that cannot be written, known before the first step.
class ResultsRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class RunWriter {
public:
    // Throws ResultsRefused for a place that cannot be opened, and UsageRefused when two share
    // standard output, or one of *read* would be overwritten.
    RunWriter(RunOutputs const& outputs, std::vector<std::string> const& read);

    // A step as it comes; *numbers* are those of its candidates in the record.
    void step(std::size_t number, tavro::Line const& line, tavro::Step const& step,
              tavro::Plant const& plant, std::vector<std::size_t> const& numbers);
    // The graphs of the candidates of the last step.
    void graphs(tavro::Run const& run, std::size_t count);
    void document(nlohmann::ordered_json const& document);
    // Whether everything that was asked for is written.
    bool close();

private:
    std::unique_ptr<std::ostream> opened(std::string const& path);
    void closeOne(std::unique_ptr<std::ostream>& stream);

    RunOutputs const outputs;
    std::unique_ptr<std::ostream> documentTo, streamTo, tableTo, pageTo;
    bool headed = false;  // the table has its heading
    bool whole = true;
};
