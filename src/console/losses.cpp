// Telling and counting.
#include "console/losses.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

int count = 0;

}  // namespace

void tellLoss(char const* format, ...) {
    countLoss();
    std::va_list values;
    va_start(values, format);
    std::vfprintf(stderr, format, values);
    va_end(values);
}

void countLoss() {
    ++count;
}

int losses() {
    return count;
}

void tellUnwritten(char const* path, int error) {
    tellLoss("Can't write file %s: %s\n", path, std::strerror(error));
}
