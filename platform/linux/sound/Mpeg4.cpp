#include "platform/linux/sound/Mpeg4.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

namespace platform::linux {
namespace {

/// A named part of the file; what it holds stands in the bytes from `begin` to before `end`.
struct Box {
    std::uint32_t name;
    std::uint64_t begin;
    std::uint64_t end;
};

using Boxes = std::vector<Box>;

constexpr std::uint32_t nameOf(std::string_view text) {
    std::uint32_t name = 0;
    for (const char character : text) {
        name = name << 8 | static_cast<unsigned char>(character);
    }
    return name;
}

auto isNamed(std::string_view name) {
    return [name = nameOf(name)](const Box& box) { return box.name == name; };
}

bool contains(const Boxes& boxes, std::string_view name) {
    return std::any_of(boxes.begin(), boxes.end(), isNamed(name));
}

class Container {
public:
    explicit Container(const std::filesystem::path& path)
        : _file{open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)} {}

    ~Container() {
        if (_file >= 0) {
            close(_file);
        }
    }

    Container(const Container&) = delete;
    Container& operator=(const Container&) = delete;

    /// In bytes; zero for what is not a regular, readable file.
    std::uint64_t size() const {
        struct stat status{};
        const bool isFile = fstat(_file, &status) == 0 && S_ISREG(status.st_mode);
        return isFile ? static_cast<std::uint64_t>(status.st_size) : 0;
    }

    /// The boxes that fill the bytes from `begin` to before `end`; none at all if they are damaged.
    Boxes boxes(std::uint64_t begin, std::uint64_t end) const {
        const Boxes found = boxesBefore(begin, end);
        return !found.empty() && found.back().end == end ? found : Boxes{};
    }

    /// The boxes from `begin` on, up to `end` or to the first bytes that are no box.
    Boxes boxesBefore(std::uint64_t begin, std::uint64_t end) const {
        constexpr std::size_t mostInSound = 1000;
        constexpr std::uint64_t longSizeFollows = 1;
        constexpr std::uint64_t extendsToEnd = 0;
        Boxes found;
        while (begin < end) {
            std::uint64_t headerSize = 8;
            const std::optional<std::uint64_t> header = number(begin, end);
            if (!header || found.size() == mostInSound) {
                return found;
            }
            std::uint64_t size = *header >> 32;
            if (size == extendsToEnd) {
                size = end - begin;
            } else if (size == longSizeFollows) {
                headerSize = 16;
                size = number(begin + 8, end).value_or(0);
            }
            if (size < headerSize || size > end - begin) {
                return found;
            }
            found.push_back({static_cast<std::uint32_t>(*header), begin + headerSize, begin + size});
            begin += size;
        }
        return found;
    }

    /// The innermost of the boxes that `path` names, each the first of its name inside the one before.
    std::optional<Box> descend(Box box, std::initializer_list<std::string_view> path) const {
        for (const std::string_view step : path) {
            const Boxes inside = boxes(box.begin, box.end);
            const auto next = std::find_if(inside.begin(), inside.end(), isNamed(step));
            if (next == inside.end()) {
                return std::nullopt;
            }
            box = *next;
        }
        return box;
    }

    bool isAacTrack(const Box& track) const {
        constexpr std::uint64_t flagsSize = 4;
        const std::optional<Box> handler = descend(track, {"mdia", "hdlr"});
        const std::optional<Box> formats = descend(track, {"mdia", "minf", "stbl", "stsd"});
        if (!handler || !formats) {
            return false;
        }
        const std::optional<std::uint64_t> kind = number(handler->begin + flagsSize, handler->end);
        if (!kind || static_cast<std::uint32_t>(*kind) != nameOf("soun")) {
            return false;
        }
        const Boxes entries = boxes(formats->begin + flagsSize + sizeof(std::uint32_t), formats->end);
        return contains(entries, "mp4a");
    }

private:
    /// The eight bytes at `position` as one number, if they lie before `end`.
    std::optional<std::uint64_t> number(std::uint64_t position, std::uint64_t end) const {
        std::array<unsigned char, 8> bytes{};
        if (position > end || end - position < bytes.size() ||
            pread(_file, bytes.data(), bytes.size(), static_cast<off_t>(position)) != ssize_t{bytes.size()}) {
            return std::nullopt;
        }
        std::uint64_t value = 0;
        for (const unsigned char byte : bytes) {
            value = value << 8 | byte;
        }
        return value;
    }

    const int _file;
};

} // namespace

bool holdsAac(const std::filesystem::path& path) {
    const Container container{path};
    const Boxes file = container.boxesBefore(0, container.size());
    if (!contains(file, "ftyp") || !contains(file, "mdat")) {
        return false;
    }
    const auto movie = std::find_if(file.begin(), file.end(), isNamed("moov"));
    if (movie == file.end()) {
        return false;
    }
    const Boxes parts = container.boxes(movie->begin, movie->end);
    return std::any_of(parts.begin(), parts.end(),
                       [&](const Box& part) { return isNamed("trak")(part) && container.isAacTrack(part); });
}

} // namespace platform::linux
