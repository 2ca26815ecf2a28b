#include "platform/linux/holding/BusQuestions.hpp"

#include <algorithm>
#include <string_view>

namespace platform::linux {
namespace {

constexpr const char* properties = "org.freedesktop.DBus.Properties";
constexpr const char* notifications = "org.freedesktop.Notifications";
constexpr const char* notificationsObject = "/org/freedesktop/Notifications";

constexpr BusQuestion screenSaver(const char* service, const char* object) {
    return {{service, object, service, "GetActive"}, {}, false};
}

constexpr std::array<BusQuestion, 4> doNotDisturb{
    {{{notifications, notificationsObject, properties, "Get"}, {notifications, "Inhibited"}, false},
     {{notifications, notificationsObject, properties, "Get"}, {"org.dunstproject.cmd0", "paused"}, false},
     {{notifications, "/fr/emersion/Mako", "fr.emersion.Mako", "ListModes"}, {}, false},
     {{"org.xfce.Xfconf", "/org/xfce/Xfconf", "org.xfce.Xfconf", "GetProperty"},
      {"xfce4-notifyd", "/do-not-disturb"},
      false}}};

/// The login manager's own, which not every screen locker tells, and then those of the lockers.
constexpr std::array<BusQuestion, 6> locked{
    {{{"org.freedesktop.login1", "/org/freedesktop/login1/session/auto", properties, "Get"},
      {"org.freedesktop.login1.Session", "LockedHint"},
      true},
     screenSaver("org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"),
     screenSaver("org.gnome.ScreenSaver", "/org/gnome/ScreenSaver"),
     screenSaver("org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"),
     screenSaver("org.mate.ScreenSaver", "/org/mate/ScreenSaver"),
     screenSaver("org.xfce.ScreenSaver", "/org/xfce/ScreenSaver")}};

/// Whether a list has one of the names that people give to a mode without notifications.
bool namesQuietMode(GVariant* modes) {
    constexpr std::array<std::string_view, 2> quiet{"do-not-disturb", "dnd"};
    const std::unique_ptr<const char*, Release<g_free>> names{g_variant_get_strv(modes, nullptr)};
    return std::any_of(quiet.begin(), quiet.end(),
                       [&](std::string_view name) { return g_strv_contains(names.get(), name.data()); });
}

} // namespace

std::span<const BusQuestion> busQuestionsFor(DesktopValues::Cause cause) {
    switch (cause) {
    case DesktopValues::Cause::DoNotDisturb:
        return doNotDisturb;
    case DesktopValues::Cause::Locked:
        return locked;
    case DesktopValues::Cause::FullScreen:
        break;
    }
    return {};
}

std::span<const BusQuestion> screenSavers() { return std::span{locked}.subspan(1); }

GVariant* argumentsOf(const BusQuestion& question) {
    const auto [first, second] = question.arguments;
    return first ? g_variant_new("(ss)", first, second) : nullptr;
}

bool saysYes(GVariant* answer) {
    if (!answer || g_variant_n_children(answer) == 0) {
        return false;
    }
    VariantHandle value{g_variant_get_child_value(answer, 0)};
    if (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT)) {
        value.reset(g_variant_get_variant(value.get()));
    }
    if (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING_ARRAY)) {
        return namesQuietMode(value.get());
    }
    return g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(value.get());
}

} // namespace platform::linux
