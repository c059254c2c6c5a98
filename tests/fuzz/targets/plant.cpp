// A plant as text: read, told of, described, drawn, and built when it is sound. What it includes is
// not there. A text may ask for any number of instances, so run it with -rss_limit_mb=4096 and
// -max_len=4096.
#include "fuzz/targets/target.h"
#include "language/describe.h"
#include "language/language.h"

namespace {

class OneText : public SourceReader {
public:
    explicit OneText(std::string text) : text(std::move(text)) {}
    std::optional<std::string> read(std::string const& path) override {
        return path == "p.plant" ? std::optional<std::string>(text) : std::nullopt;
    }

private:
    std::string const text;
};

}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    OneText reader(textOf(data, size));
    PlantFile const file("p.plant", reader);
    rendered(file.messages(), file.sources());
    if (!file.isSound())
        return 0;
    described(file.flat());
    picturesOf(file.flat());
    Host silent;
    buildPlant(file.source(), silent);
    return 0;
}
