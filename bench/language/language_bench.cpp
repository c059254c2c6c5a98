// How long a large text takes to be read: 10,000 lines, as 256 rooms with a type each would be.
#include <benchmark/benchmark.h>

#include "language/language.h"
#include "language/resolve.h"

namespace {

constexpr int lines = 10000;

class OneText : public SourceReader {
public:
    explicit OneText(std::string text) : text(std::move(text)) {}
    std::optional<std::string> read(std::string const&) override { return text; }

private:
    std::string text;
};

// Types of twenty lines, an instance of each.
std::string largeText() {
    std::string text = "plant large\nsample 1 s\n";
    for (int i = 0; i < lines / 20; ++i) {
        std::string const number = std::to_string(i);
        text.append("type t").append(number).append(" {\n");
        text += "  variable x = 4\n  variable xd, xdq\n  parameter xext = 4, Qc = 0.05\n";
        text += "  command c: none, open, close\n";
        text +=
            "  region r: hot when x >= 17, mild when 10 <= x < 17, cold when x < 10, starts "
            "cold\n";
        text += "  mode closed, open, unknown\n";
        text += "  xdq follows xext when mode in (closed, open)\n";
        text += "  x integrates [0.95, 1.05] * xd when mode in (closed, open)\n";
        text += "  xd = [0, 0.3] + Qc * xdq when mode = closed\n";
        text += "  xd = 0.0002 * xdq when mode = open\n  xdq = -1 * x @ 1\n";
        text += "  idle closed with 0.98\n  idle open with 0.98\n  idle unknown with 1\n";
        text += "  move from open when c = close to closed with 0.99\n";
        text += "  move from closed when c = open to open with 0.99\n";
        text += "  fail from open to unknown with 0.01\n  measure xd\n}\n";
        text.append("a").append(number).append(": t").append(number).append("()\n");
    }
    return text;
}

void parse(benchmark::State& state) {
    OneText reader(largeText());
    for ([[maybe_unused]] auto const _ : state) {
        Sources sources;
        Messages messages;
        benchmark::DoNotOptimize(readPlantText("large.plant", reader, sources, messages));
    }
}
BENCHMARK(parse)->Unit(benchmark::kMillisecond);

void parseAndResolve(benchmark::State& state) {
    OneText reader(largeText());
    for ([[maybe_unused]] auto const _ : state) {
        Sources sources;
        Messages messages;
        PlantText const text = readPlantText("large.plant", reader, sources, messages);
        benchmark::DoNotOptimize(resolve(text, sources, messages));
    }
}
BENCHMARK(parseAndResolve)->Unit(benchmark::kMillisecond);

}  // namespace
