// A log as a table. It is read by name, so it stands in a file in memory.
#include <sys/mman.h>
#include <unistd.h>

#include "fuzz/targets/target.h"
#include "tavro/day.h"
#include "tavro/value_table.h"

namespace {

class MemoryFile {
public:
    explicit MemoryFile(std::string const& text) : descriptor(memfd_create("log", MFD_CLOEXEC)) {
        [[maybe_unused]] ssize_t const written = write(descriptor, text.data(), text.size());
    }
    ~MemoryFile() { close(descriptor); }
    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor); }

private:
    int const descriptor;
};

}  // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    MemoryFile const log(textOf(data, size));
    try {
        readTable(log.path(), {"room.x", "room.xd"}, {"room.xd"}, 1.0);
    } catch (DataRefused const&) {
    }
    return 0;
}
