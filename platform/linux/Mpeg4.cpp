#include "platform/linux/Mpeg4.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

namespace platform::freedesktop {
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

class Container {
public:
    explicit Container(const std::filesystem::path& path)
        : _file{path, std::ios::binary} {}

    /// The boxes that fill the bytes from `begin` to before `end`; none at all if they are damaged.
    Boxes boxes(std::uint64_t begin, std::uint64_t end) {
        constexpr std::size_t mostInSound = 1000;
        constexpr std::uint64_t longSizeFollows = 1;
        constexpr std::uint64_t extendsToEnd = 0;
        Boxes found;
        while (begin < end) {
            std::uint64_t headerSize = 8;
            const std::optional<std::uint64_t> header = number(begin, end);
            if (!header || found.size() == mostInSound) {
                return {};
            }
            std::uint64_t size = *header >> 32;
            if (size == extendsToEnd) {
                size = end - begin;
            } else if (size == longSizeFollows) {
                headerSize = 16;
                size = number(begin + 8, end).value_or(0);
            }
            if (size < headerSize || size > end - begin) {
                return {};
            }
            found.push_back({static_cast<std::uint32_t>(*header), begin + headerSize, begin + size});
            begin += size;
        }
        return found;
    }

    /// The innermost of the boxes that `path` names, each the first of its name inside the one before.
    std::optional<Box> descend(Box box, std::initializer_list<std::string_view> path) {
        for (const std::string_view step : path) {
            const Boxes inside = boxes(box.begin, box.end);
            const auto next = std::find_if(inside.begin(), inside.end(),
                                           [&](const Box& one) { return one.name == nameOf(step); });
            if (next == inside.end()) {
                return std::nullopt;
            }
            box = *next;
        }
        return box;
    }

    bool isAacTrack(const Box& track) {
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

    static bool contains(const Boxes& boxes, std::string_view name) {
        return std::any_of(boxes.begin(), boxes.end(), [&](const Box& box) { return box.name == nameOf(name); });
    }

private:
    /// The eight bytes at `position` as one number, if they lie before `end`.
    std::optional<std::uint64_t> number(std::uint64_t position, std::uint64_t end) {
        std::array<char, 8> bytes{};
        if (position > end || end - position < bytes.size() ||
            !_file.seekg(static_cast<std::streamoff>(position)).read(bytes.data(), bytes.size())) {
            return std::nullopt;
        }
        std::uint64_t value = 0;
        for (const char byte : bytes) {
            value = value << 8 | static_cast<unsigned char>(byte);
        }
        return value;
    }

    std::ifstream _file;
};

} // namespace

bool holdsAac(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        return false;
    }
    const std::uint64_t size = std::filesystem::file_size(path, error);
    if (error) {
        return false;
    }
    Container container{path};
    const Boxes file = container.boxes(0, size);
    if (!Container::contains(file, "ftyp") || !Container::contains(file, "mdat")) {
        return false;
    }
    for (const Box& movie : file) {
        if (movie.name != nameOf("moov")) {
            continue;
        }
        for (const Box& part : container.boxes(movie.begin, movie.end)) {
            if (part.name == nameOf("trak") && container.isAacTrack(part)) {
                return true;
            }
        }
    }
    return false;
}

} // namespace platform::freedesktop
