// The helper program that tells whether reminders are to be held back, where the resident program would need more
// libraries to find out: `marvelode-timer-hold do-not-disturb` or `marvelode-timer-hold full-screen`. Status 0 says
// yes, 1 no, and 3 that it cannot be known here.

#include "platform/linux/glib/Handles.hpp"
#include "platform/linux/holding/helper/FullScreen.hpp"

#include <sys/prctl.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string_view>

namespace {

using platform::linux::ObjectHandle;

using SchemaHandle = std::unique_ptr<GSettingsSchema, platform::linux::Release<g_settings_schema_unref>>;

/// GNOME's own setting. Its schema comes with GTK, so that other desktops have it as well, with a value that means
/// nothing there.
bool doesGnomeHideNotifications() {
    constexpr const char* schemaName = "org.gnome.desktop.notifications";
    constexpr const char* key = "show-banners";
    const char* const desktop = std::getenv("XDG_CURRENT_DESKTOP");
    GSettingsSchemaSource* const schemas = g_settings_schema_source_get_default();
    if (!desktop || std::string_view{desktop}.find("GNOME") == std::string_view::npos || !schemas) {
        return false;
    }
    const SchemaHandle schema{g_settings_schema_source_lookup(schemas, schemaName, TRUE)};
    if (!schema || !g_settings_schema_has_key(schema.get(), key)) {
        return false;
    }
    const ObjectHandle<GSettings> settings{g_settings_new_full(schema.get(), nullptr, nullptr)};
    return !g_settings_get_boolean(settings.get(), key);
}

std::optional<bool> answerTo(std::string_view question) {
    return question == "full-screen" ? isFullScreen() : doesGnomeHideNotifications();
}

} // namespace

int main(int argc, char** argv) {
    constexpr int wrongUsage = 2;
    constexpr int cannotBeKnown = 3;
    prctl(PR_SET_NAME, "marvelode-timer-hold"); // the system would call it by the number of its open file
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const std::string_view question = argc == 2 ? argv[1] : "";
    if (question != "do-not-disturb" && question != "full-screen") {
        std::cerr << "Usage: marvelode-timer-hold do-not-disturb | full-screen\n";
        return wrongUsage;
    }
    const std::optional<bool> answer = answerTo(question);
    return !answer ? cannotBeKnown : *answer ? EXIT_SUCCESS : EXIT_FAILURE;
}
