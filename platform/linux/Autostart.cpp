#include "platform/linux/Autostart.hpp"

#include "platform/linux/RegularFile.hpp"
#include "platform/linux/glib/Handles.hpp"

#include <memory>
#include <system_error>
#include <utility>

namespace platform::linux {
namespace {

namespace fs = std::filesystem;

using KeyFile = std::unique_ptr<GKeyFile, Release<g_key_file_unref>>;

constexpr const char* entryGroup = G_KEY_FILE_DESKTOP_GROUP;
constexpr const char* hiddenKey = G_KEY_FILE_DESKTOP_KEY_HIDDEN;
constexpr const char* enabledKey = "X-GNOME-Autostart-enabled"; // heeded by others as well

/// The entry at `path`; nothing if there is none that starts a program.
KeyFile entryAt(const fs::path& path) {
    KeyFile file{g_key_file_new()};
    const std::string bytes = readRegularFile(path).bytes;
    const auto flags = static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
    const bool isRead =
        !bytes.empty() && g_key_file_load_from_data(file.get(), bytes.data(), bytes.size(), flags, nullptr);
    return isRead && g_key_file_has_key(file.get(), entryGroup, "Exec", nullptr) ? std::move(file) : nullptr;
}

bool isMarkedOff(GKeyFile* entry) {
    const TextHandle mark{g_key_file_get_value(entry, entryGroup, enabledKey, nullptr)};
    return g_key_file_get_boolean(entry, entryGroup, hiddenKey, nullptr) ||
           (mark && mark.get() == std::string{"false"});
}

} // namespace

Autostart::Autostart(fs::path original, fs::path entry)
    : _original{std::move(original)}
    , _entry{std::move(entry)} {}

Autostart Autostart::ofThisUser(const fs::path& resources) {
    constexpr const char* name = "org.marvelode.Timer.desktop";
    return {resources / "autostart" / name, fs::path{g_get_user_config_dir()} / "autostart" / name};
}

bool Autostart::isOn() const {
    const KeyFile entry = entryAt(_entry);
    return entry && !isMarkedOff(entry.get());
}

std::string Autostart::turnOn() const {
    if (isOn()) {
        return {};
    }
    KeyFile entry = entryAt(_entry);
    if (!entry) {
        entry = entryAt(_original);
    }
    if (!entry) {
        return _original.string() + " is missing";
    }
    g_key_file_remove_key(entry.get(), entryGroup, hiddenKey, nullptr);
    g_key_file_remove_key(entry.get(), entryGroup, enabledKey, nullptr);
    std::size_t length = 0;
    const TextHandle content{g_key_file_to_data(entry.get(), &length, nullptr)};
    return replaceRegularFile(_entry, {content.get(), length});
}

std::string Autostart::turnOff() const {
    std::error_code error;
    fs::remove(_entry, error);
    return error ? _entry.string() + ": " + error.message() : std::string{};
}

} // namespace platform::linux
