// The engine of a run at its start.
#include "continuous/engine.h"

s_engine::s_engine(Host& host, Rules const& rules)
    : host(host), rules(rules), out(host.out()), err(host.err()) {}

s_Printer peoplePrinter(s_engine& engine) {
    return {engine.err, engine.out, true, &engine.err};
}

s_Printer dataPrinter(s_engine& engine, std::ostream& stream) {
    return {stream, engine.out, false, &engine.err};
}
