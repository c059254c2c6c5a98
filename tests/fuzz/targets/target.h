// What the targets share: a host that holds one text in place of every file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>

#include "hybrid/run_state.h"
#include "reasoning/Scheduler.h"
#include "run/build_plant.h"
#include "support/host.h"

extern CompiledModel const therm_model;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

class TextHost : public Host {
public:
    explicit TextHost(std::string text) : text(std::move(text)) {}
    std::unique_ptr<std::istream> open(std::string const&) override {
        return std::make_unique<std::istringstream>(text);
    }

private:
    std::string const text;
};

inline std::string textOf(std::uint8_t const* data, std::size_t size) {
    return {reinterpret_cast<char const*>(data), size};
}

// Built once, and constant.
inline Plant const& room() {
    static Host silent;
    static std::unique_ptr<Plant> const plant = buildPlant(therm_model, silent);
    return *plant;
}

// A stream over a text; not empty, since the library takes no empty memory.
struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
inline std::unique_ptr<std::FILE, Closer> streamOver(std::string& text) {
    return std::unique_ptr<std::FILE, Closer>(fmemopen(text.data(), text.size(), "r"));
}
