#pragma once

// The files that are installed with the program: found by name, read whole. They are read only.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// The folder of resources that belongs to the running program.
class Bundle {
public:
    static Bundle& main();

    /// Where the resource "`name`.`extension`" lies; nothing if there is none.
    std::optional<std::filesystem::path> url(std::string_view name, std::string_view extension) const;
};

/// The bytes of a file.
struct Data {
    /// The whole content of the file at `url`; nothing if it cannot be read.
    static std::optional<std::string> contentsOf(const std::filesystem::path& url);
};

} // namespace platform
