// Texts of plants, from files.
#pragma once

#include "language/source.h"

class FileReader : public SourceReader {
public:
    std::optional<std::string> read(std::string const& path) override;
    // In the folder of the library of plants, which stands beside the program wherever it runs
    // from.
    std::string shipped(std::string const& name) override;
};
