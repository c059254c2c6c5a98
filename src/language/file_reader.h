// Texts of plants, from files.
#pragma once

#include "language/source.h"

class FileReader : public SourceReader {
public:
    std::optional<std::string> read(std::string const& path) override;
};
