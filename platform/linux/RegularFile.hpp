#pragma once

// Small files that are read and replaced as a whole. Links are followed; what they lead to is left alone unless it
// is a regular file, so that a pipe or a device in a file's place keeps nobody waiting and loses nothing.

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace platform::linux {

struct FileContent {
    std::string bytes;
    bool isMissing = false; ///< There is nothing at all at that path.
    std::string problem;    ///< Why what is there could not be read; empty if it was.
};

constexpr std::size_t largestFile = 1024 * 1024; ///< In bytes; what is larger is not read.

FileContent readRegularFile(const std::filesystem::path& path);

/// Puts `bytes` in place of the file's content, or makes the file for its owner alone, and its folder. A crash
/// leaves the old content or the new one. Returns the problem if that fails, or else an empty text.
std::string replaceRegularFile(const std::filesystem::path& path, std::string_view bytes);

/// Removes what a killed `replaceRegularFile` may have left beside the file.
void removeLeftovers(const std::filesystem::path& path);

/// Where `path` leads when it is a link, whether or not anything is there.
std::filesystem::path linkTarget(std::filesystem::path path);

} // namespace platform::linux
