// What a run inside another program reads and tells.
#include "run/library_host.h"

#include <algorithm>
#include <cstddef>

#include "continuous/isolation.h"

LineStream::LineStream(Sink sink) : std::ostream(nullptr), buffer(sink) {
    if (sink)
        rdbuf(&buffer);
}

int LineStream::Buffer::overflow(int c) {
    if (c != traits_type::eof())
        put(static_cast<char>(c));
    return traits_type::not_eof(c);
}

std::streamsize LineStream::Buffer::xsputn(char const* text, std::streamsize count) {
    std::for_each(text, text + count, [this](char c) { put(c); });
    return count;
}

void LineStream::Buffer::put(char c) {
    if (c != '\n') {
        line += c;
        return;
    }
    sink(line);
    line.clear();
}

LibraryHost::LibraryHost(tavro::Options const& options)
    : trace(options.trace),
      told(options.messages),
      watchesMemory(options.watchMemory),
      giveUp(options.giveUp) {}

void LibraryHost::inputs(int count, double* values) {
    std::copy_n(firstInputs.begin(), std::min<std::size_t>(firstInputs.size(), count), values);
}

void LibraryHost::measures(int count, double* values) {
    std::copy_n(firstMeasures.begin(), std::min<std::size_t>(firstMeasures.size(), count), values);
}

namespace {

tavro::SuspectSet toldOf(Leaf const& leaf) {
    tavro::SuspectSet set;
    for (auto const& suspect : leaf.conflictSet)
        set.push_back({suspect->name, suspect->delay, conditionText(*suspect)});
    return set;
}

}  // namespace

void LibraryHost::isolated(Isolation const& found) {
    for (Leaf const& leaf : found.leaves) {
        watchMemory(*this);
        tavro::SuspectSet set = toldOf(leaf);
        if (std::find(suspects.begin(), suspects.end(), set) == suspects.end())
            suspects.push_back(std::move(set));
    }
}

void LibraryHost::diagnosis(std::string const& text) {
    if (!text.empty())
        diagnoses.push_back(text);
}
