#pragma once

// What the running build calls itself: three texts, read once at start-up from a small resource file. Reading
// never fails; what cannot be read is "UNKNOWN".

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace marvelode {

class BuildInfo {
public:
    BuildInfo(std::string build, std::string date, std::string version)
        : build{std::move(build)}
        , date{std::move(date)}
        , version{std::move(version)} {}

    /// Reads the resource "`basename`.txt": lines of "Build=", "Date=" and "Version=" with their values. A
    /// line with an unknown key ends the reading; a line without a key or a value stops the program.
    static std::shared_ptr<BuildInfo> fromResourceFile(std::string_view basename);

    std::string build;   ///< The build's number.
    std::string date;    ///< The day of the build, as it stands in the file.
    std::string version; ///< The version, as it stands in the file.
};

} // namespace marvelode
