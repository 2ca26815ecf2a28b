#include "platform/linux/Resources.hpp"

#include "platform/linux/drawing/Png.hpp"
#include "platform/linux/glib/Handles.hpp"

#include <utility>

namespace platform::linux {

std::optional<std::string> contentsOfFile(const std::filesystem::path& path) {
    char* bytes = nullptr;
    std::size_t length = 0;
    if (!g_file_get_contents(path.c_str(), &bytes, &length, nullptr)) {
        return std::nullopt;
    }
    const TextHandle content{bytes};
    return std::string{bytes, length};
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
