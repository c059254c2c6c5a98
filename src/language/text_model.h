// A plant as text that is compiled into the program: it is built as any compiled model is, and no
// file is opened for it.
//
// The build makes one of a shipped text (tavro_text_model in cmake/TavroTargets.cmake): of
// line.plant the TextModel line_text, and the CompiledModel line_model that is built from it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class Scheduler;

// Constants of the program.
struct TextModel {
    char const* path;  // under which the text speaks of itself
    std::string_view text;
};

// Builds it in the plant that the scheduler is building. *settings* are constants that are given
// other values, as "valves=8". The text and these settings must be sound, and include nothing.
void buildText(TextModel const& model, Scheduler& scheduler,
               std::vector<std::string> const& settings = {});
