#include "platform/linux/Resources.hpp"

#include "platform/linux/RegularFile.hpp"
#include "platform/linux/drawing/Png.hpp"
#include "platform/linux/glib/Handles.hpp"

#include <glib.h>

#include <utility>

namespace platform::linux {

std::optional<std::string> contentsOfFile(const std::filesystem::path& path) {
    FileContent content = readRegularFile(path);
    const bool isRead = !content.isMissing && content.problem.empty();
    return isRead ? std::optional{std::move(content.bytes)} : std::nullopt;
}

Resources::Resources(std::filesystem::path folder)
    : _folder{std::move(folder)} {
    const FolderHandle files{g_dir_open(_folder.c_str(), 0, nullptr)};
    while (const char* name = files ? g_dir_read_name(files.get()) : nullptr) {
        if (std::string_view{name}.ends_with(".png")) {
            imageNamed(name);
        }
    }
}

std::optional<std::filesystem::path> Resources::find(std::string_view name, std::string_view extension) const {
    std::filesystem::path file = _folder / (std::string{name} + "." + std::string{extension});
    const bool isThere = g_file_test(file.c_str(), G_FILE_TEST_IS_REGULAR);
    return isThere ? std::optional{std::move(file)} : std::nullopt;
}

std::optional<NSImage> Resources::imageNamed(std::string_view name) {
    if (const auto known = _images.find(name); known != _images.end()) {
        return known->second;
    }
    const std::filesystem::path file = _folder / name;
    const std::optional<NSSize> size = pngSize(contentsOfFile(file).value_or(""));
    if (!size) {
        return std::nullopt;
    }
    return _images.emplace(name, NSImage{std::string{name}, file, *size}).first->second;
}

} // namespace platform::linux
