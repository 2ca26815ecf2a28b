#pragma once

// A look into MPEG-4 files without a decoder. It finds out whether a decoder would find music there, at the cost of
// reading a few headers.

#include <filesystem>

namespace platform::linux {

/// Whether the file at `path` is a readable, complete MPEG-4 container with an audio track in AAC, behind which
/// other bytes may follow. Any bytes at all are a valid question; what is not a regular file is not read.
bool holdsAac(const std::filesystem::path& path);

} // namespace platform::linux
