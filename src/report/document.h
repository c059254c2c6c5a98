// The document of a run: all that is known of it as JSON, for other programs and for the page.
//
// docs/run.md tells what is in it, docs/run.schema.json its form. The order of members is fixed, so
// that equal runs give equal bytes.
#pragma once

#include <nlohmann/json.hpp>

#include "report/outcome.h"
#include "report/run_record.h"

// What was asked, which neither the plant nor the record knows.
struct RunFacts {
    std::string plantFile, measureFile, inputFile, scenarioFile;  // "" for none
    tavro::Options options;
    std::vector<std::string> notes;  // what was told of the data
};

nlohmann::ordered_json documentOf(RunRecord const& record, Outcome const& outcome,
                                  tavro::Plant const& plant, RunFacts const& facts);

// One step as a line of a stream of documents. *numbers* are those of its candidates in the record.
nlohmann::ordered_json stepDocument(std::size_t number, tavro::Line const& line,
                                    tavro::Step const& step, tavro::Plant const& plant,
                                    std::vector<std::size_t> const& numbers);

// As text. What is no number in the sense of JSON is null; what is no UTF-8 is replaced.
std::string textOf(nlohmann::ordered_json const& document);
