// Any bytes in place of a sound.

#include "platform/linux/sound/Mpeg4.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

namespace {

using namespace std::string_literals;

/// A file in memory.
class MemoryFile {
public:
    void write(std::string_view bytes) const {
        const auto size = static_cast<off_t>(bytes.size());
        fuzz::require(ftruncate(_file, size) == 0, "the file can be cut");
        fuzz::require(pwrite(_file, bytes.data(), bytes.size(), 0) == size, "the file can be written");
    }
    std::string path() const { return "/proc/self/fd/" + std::to_string(_file); }

private:
    int _file = memfd_create("sound", MFD_CLOEXEC);
};

bool holdsAac(std::string_view bytes) {
    static const MemoryFile file;
    file.write(bytes);
    return platform::linux::holdsAac(file.path());
}

} // namespace

void fuzz::check(std::string_view input) {
    if (!holdsAac(input)) {
        return;
    }
    for (const char* name :
         {"ftyp", "mdat", "moov", "trak", "mdia", "hdlr", "soun", "minf", "stbl", "stsd", "mp4a"}) {
        require(input.find(name) != std::string_view::npos, "a sound has all the parts of one");
    }
    require(holdsAac("\0\0\0\x08skip"s + std::string{input}), "a part that is unknown is passed over");
}
