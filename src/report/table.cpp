// Rows of text.
#include "report/table.h"

#include <charconv>
#include <cmath>

#include "report/run_record.h"

namespace {

// The shortest text that reads as the same number; nothing for what is none.
std::string text(double value) {
    if (!std::isfinite(value))
        return "";
    char buffer[32];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

std::string cell(std::string const& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (char const c : text) {
        if (c == '"')
            quoted += '"';
        quoted += c;
    }
    return quoted.append("\"");
}

class Row {
public:
    Row& operator<<(std::string const& value) {
        if (!row.empty() || begun)
            row += ',';
        begun = true;
        row += cell(value);
        return *this;
    }
    std::string end() { return row.append("\r\n"); }

private:
    std::string row;
    bool begun = false;
};

void addValues(Row& row, std::size_t count, std::vector<double> const& values) {
    for (std::size_t i = 0; i < count; ++i)
        row << (i < values.size() ? text(values[i]) : "");
}

}  // namespace

std::string tableHeading(tavro::Plant const& plant) {
    Row row;
    row << "step"
        << "time"
        << "place"
        << "candidate"
        << "agrees"
        << "rank"
        << "probability"
        << "story";
    for (auto const* names : {&plant.inputs(), &plant.measures(), &plant.modes()})
        for (std::string const& name : *names)
            row << name;
    for (std::string const& name : plant.variables())
        row << name + " lower" << name + " upper";
    return row.end();
}

std::string tableRows(std::size_t number, tavro::Line const& line, tavro::Step const& step,
                      tavro::Plant const& plant, std::vector<std::size_t> const& numbers) {
    std::string rows;
    for (std::size_t i = 0; i < step.candidates.size(); ++i) {
        tavro::Candidate const& candidate = step.candidates[i];
        Row row;
        row << std::to_string(number) << text(step.time) << std::to_string(i + 1)
            << std::to_string(numbers[i]) << (candidate.agrees ? "1" : "0") << text(candidate.rank)
            << text(candidate.probability) << summaryOf(candidate.moves);
        addValues(row, plant.inputs().size(), line.inputs);
        addValues(row, plant.measures().size(), line.measures);
        for (std::string const& mode : plant.modes())
            row << candidate.modes.at(mode);
        for (std::string const& name : plant.variables()) {
            tavro::Bounds const& bounds = candidate.bounds.at(name);
            row << text(bounds.lower) << text(bounds.upper);
        }
        rows += row.end();
    }
    return rows;
}
