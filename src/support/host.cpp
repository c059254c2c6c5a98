// The silent host.
#include "support/host.h"

Host::Host() = default;
Host::~Host() = default;

void Host::inputs(int, double*) {}
void Host::measures(int, double*) {}

bool Host::misbehaviours(int, int*) {
    return false;
}

bool Host::activity(int, int*) {
    return false;
}

void Host::alarms(int, int const*, int const*, int const*) {}
void Host::isolated(Isolation const&) {}
void Host::diagnosis(std::string const&) {}

std::unique_ptr<std::istream> Host::open(std::string const&) {
    return nullptr;
}

bool Host::write(std::string const&, std::string const&) {
    return false;
}

void Host::optimiserOptions(Nelder_options&) {}

std::shared_ptr<std::ostream> Host::optimiserTrace(Nelder_options const&) {
    return nullptr;
}
