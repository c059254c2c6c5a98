// The phases in their order.
#include "language/language.h"

#include "language/findings_in_text.h"
#include "language/lower.h"
#include "language/resolve.h"
#include "language/warnings.h"

PlantFile::PlantFile(std::string const& path, SourceReader& reader,
                     std::vector<std::string> const& settings) {
    PlantText const text = readPlantText(path, reader, texts, told, settings);
    if (text.files.empty())
        return;
    auto flat = std::make_shared<FlatPlant>(resolve(text, texts, told));
    plant = flat;
    if (!isSound())
        return;
    tellFindings(*flat, told);
    if (isSound())
        warn(*flat, told);
}

PlantSource PlantFile::source() const {
    return {plant->name, [held = plant](Scheduler* scheduler) { lower(*held, *scheduler); }};
}
