#include "tavro/run_outputs.h"

#include <array>
#include <filesystem>
#include <iostream>

#include "console/overwriting.h"
#include "report/page.h"
#include "report/table.h"

namespace {

constexpr char const* standardOutput = "-";

// Standard output as a file among others; std::cout itself stays.
class StandardOutput : public std::ostream {
public:
    StandardOutput() : std::ostream(std::cout.rdbuf()) {}
};

std::string graphName(std::size_t number) {
    return std::string("candidate").append(std::to_string(number));
}

std::array<std::string const*, 4> filesOf(RunOutputs const& outputs) {
    return {&outputs.document, &outputs.stream, &outputs.table, &outputs.page};
}

void refuseClashes(RunOutputs const& outputs, std::vector<std::string> const& read) {
    std::vector<std::string> seen;
    for (std::string const* path : filesOf(outputs)) {
        if (path->empty())
            continue;
        for (std::string const& other : seen)
            if (*path == standardOutput ? other == standardOutput
                                        : other != standardOutput && leadToOneFile(*path, other))
                throw UsageRefused("two results are to be written to " +
                                   (*path == standardOutput ? "standard output" : *path));
        for (std::string const& input : read)
            if (*path != standardOutput && leadToOneFile(*path, input))
                throw UsageRefused("can't write file " + *path + ": it is read by this run");
        seen.push_back(*path);
    }
}

}  // namespace

bool RunOutputs::usesStandardOutput() const {
    for (std::string const* path : filesOf(*this))
        if (*path == standardOutput)
            return true;
    return false;
}

RunWriter::RunWriter(RunOutputs const& outputs, std::vector<std::string> const& read)
    : outputs(outputs) {
    refuseClashes(outputs, read);
    documentTo = opened(outputs.document);
    streamTo = opened(outputs.stream);
    tableTo = opened(outputs.table);
    pageTo = opened(outputs.page);
    if (outputs.graphs.empty())
        return;
    std::error_code error;
    std::filesystem::create_directories(outputs.graphs, error);
    if (error)
        throw ResultsRefused("can't make directory " + outputs.graphs + ": " + error.message());
}

std::unique_ptr<std::ostream> RunWriter::opened(std::string const& path) {
    if (path.empty())
        return nullptr;
    if (path == standardOutput)
        return std::make_unique<StandardOutput>();
    auto file = std::make_unique<OutputStream>(path);
    if (!file->isOpen())
        throw ResultsRefused("can't write file " + path);
    return file;
}

void RunWriter::step(std::size_t number, tavro::Line const& line, tavro::Step const& step,
                     tavro::Plant const& plant, std::vector<std::size_t> const& numbers) {
    // A line at a time, so that who reads along, or comes after a kill, finds whole ones.
    if (streamTo)
        *streamTo << textOf(stepDocument(number, line, step, plant, numbers)) << '\n' << std::flush;
    if (!tableTo)
        return;
    if (!headed)
        *tableTo << tableHeading(plant);
    headed = true;
    *tableTo << tableRows(number, line, step, plant, numbers);
}

void RunWriter::graphs(tavro::Run const& run, std::size_t count) {
    if (outputs.graphs.empty())
        return;
    auto const fileOf = [this](std::string const& name) {
        return outputs.graphs + "/" + name + ".dot";
    };
    std::size_t number = 1;
    for (; number <= count; ++number) {
        OutputStream file(fileOf(graphName(number)));
        file << run.graph(number - 1, graphName(number));
        whole = file.close() && whole;
    }
    // Those of an earlier run with more candidates would be taken for this one's.
    std::error_code error;
    while (std::filesystem::remove(fileOf(graphName(number)), error))
        ++number;
}

void RunWriter::document(nlohmann::ordered_json const& document) {
    std::string const text = textOf(document);
    if (documentTo)
        *documentTo << text << '\n';
    if (pageTo)
        *pageTo << reportOf(text);
}

void RunWriter::closeOne(std::unique_ptr<std::ostream>& stream) {
    if (!stream)
        return;
    if (auto* const file = dynamic_cast<OutputStream*>(stream.get()))
        whole = file->close() && whole;
    else if (!stream->flush()) {
        std::cerr << "Can't write standard output\n";
        whole = false;
    }
    stream.reset();
}

bool RunWriter::close() {
    closeOne(documentTo);
    closeOne(streamTo);
    closeOne(tableTo);
    closeOne(pageTo);
    return whole;
}
