// The page of a report: one HTML file that holds the document of a run and what draws it. The page
// is made of src/report/page/ when the program is built, and needs nothing beside it.
#pragma once

#include <string>
#include <string_view>

// The page without a run. It holds "<!--RUN-->" once, where the run goes.
std::string_view reportPage();

// The page with a run. No text in the document can end the element that holds it: every "<", which
// JSON has in strings alone, is written as an escape.
std::string reportOf(std::string_view json);
