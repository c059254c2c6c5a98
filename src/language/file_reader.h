// Texts of plants, from files.
#pragma once

#include "language/source.h"

class FileReader : public SourceReader {
public:
    std::optional<std::string> read(std::string const& path) override;
    // In the folder of the library of plants: that which the environment names as TAVRO_LIBRARY,
    // the one beside the program, or the installed one.
    std::string shipped(std::string const& name) override;
};
