// All texts of one plant, read and parsed: the file that was asked for, and what it includes.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "language/messages.h"
#include "language/syntax.h"

struct PlantText {
    std::vector<std::unique_ptr<FileTree>> files;
    // Of all files; those of an included one stand where it is included. Borrowed from the trees.
    std::vector<Statement const*> statements;
    // From outside of all files; each holds a SetNode. Borrowed likewise.
    std::vector<Statement const*> settings;
    std::set<std::string> damaged;  // names of which nothing more is to be told
};

// Reads *path* and what it includes. What cannot be read or parsed is told.
// *settings* are "NAME=NUMBER" each, as a command line gives them: they stand above what files set.
PlantText readPlantText(std::string const& path, SourceReader& reader, Sources& sources,
                        Messages& messages, std::vector<std::string> const& settings = {});
