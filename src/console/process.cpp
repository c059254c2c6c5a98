// Exits and standard streams, as Linux has them.
#include "console/process.h"

#include <fcntl.h>

#include <cstdlib>

void leaveProcess(int status) {
    std::exit(status);
}

void keepStandardStreams() {
    for (int descriptor = 0; descriptor <= 2; ++descriptor)
        if (fcntl(descriptor, F_GETFD) == -1) {
            // The lowest free descriptor is this one, since the lower ones are open by now.
            [[maybe_unused]] int const opened = open("/dev/null", O_RDWR);
        }
}
