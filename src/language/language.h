// Plants as text: from a file to a plant that can be built, with every message on the way.
//
//   PlantFile const file("room.plant", reader);
//   show rendered(file.messages(), file.sources())
//   if (file.isSound()) ... buildPlant(file.source(), host)
//
// Nothing here prints or exits, and no file is opened but by the reader (file_reader.h). A
// PlantFile is constant once it is made; what source() gives lives on its own.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "language/flat.h"
#include "language/messages.h"
#include "run/plant_source.h"

class PlantFile {
public:
    // Reads and checks *path* with all that it includes. *settings* are constants that are given
    // other values, as "rooms=64".
    PlantFile(std::string const& path, SourceReader& reader,
              std::vector<std::string> const& settings = {});

    Sources const& sources() const { return texts; }
    Messages const& messages() const { return told; }
    // There is no error; there may be warnings.
    bool isSound() const { return !told.hasErrors(); }

    // The following are for a sound plant.
    FlatPlant const& flat() const { return *plant; }
    PlantSource source() const;

private:
    Sources texts;
    Messages told;
    std::shared_ptr<FlatPlant const> plant;
};
