// Options of the command line, a line each. One that cannot be taken ends the process: that way out
// is bound to this file when it is linked, and leads back. What the option held then is lost, which
// is no leak of the program's. Run it with -close_fd_mask=2.
#include <csetjmp>
#include <cstdlib>

#include "console/options.h"
#include "fuzz/targets/target.h"

namespace {

std::jmp_buf refused;
bool reading = false;

}  // namespace

extern "C" {

char const* __asan_default_options() {
    return "detect_leaks=0";
}

[[noreturn]] void __real_exit(int status);

[[noreturn]] void __wrap_exit(int status) {
    if (reading)
        std::longjmp(refused, 1);
    __real_exit(status);
}

}  // extern "C"

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::istringstream text(textOf(data, size));
    std::string line;
    while (std::getline(text, line)) {
        reading = true;
        if (setjmp(refused) == 0) {
            RunSettings settings;
            if (takeOption(line.c_str(), settings))
                checkNoise(settings, room().tavro_rt.get());
        }
        reading = false;
    }
    return 0;
}
