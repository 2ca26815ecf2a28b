#pragma once

// The files that are installed with the program. The folder that holds them lies at a fixed place relative to the
// program, in an installation and in a build folder alike.

#include "platform/NSImage.hpp"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace platform::linux {

/// The whole content of the file at `path`; nothing if it cannot be read.
std::optional<std::string> contentsOfFile(const std::filesystem::path& path);

class Resources {
public:
    /// Looks at the pictures in `folder` at once: they are known for as long as this object lives, even after the
    /// package was removed.
    explicit Resources(std::filesystem::path folder);

    /// Where the resource of that name and extension lies; nothing if there is none.
    std::optional<std::filesystem::path> find(std::string_view name, std::string_view extension) const;

    /// The picture of that file name in its own size; nothing if it is missing or no PNG.
    std::optional<NSImage> imageNamed(std::string_view name);

private:
    std::filesystem::path _folder;
    std::map<std::string, NSImage, std::less<>> _images; // asked for every second
};

} // namespace platform::linux
