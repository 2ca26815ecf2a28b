// How requests are read. Whatever is not of exactly the type expected is malformed.

#include "platform/linux/window/Protocol.hpp"
#include "platform/linux/window/Values.hpp"
#include "platform/linux/window/ViewReader.hpp"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

std::optional<Request> decodeAlert(GVariant* encoded) {
    AlertRequest request{};
    const gchar* picture = nullptr;
    gint32 style = 0;
    const gchar* icon = nullptr;
    const gchar* message = nullptr;
    const gchar* information = nullptr;
    if (!unpack(encoded, "(uayimsssasm(sb))", "(u^&ayim&s&s&s@as@m(sb))", &request.window, &picture, &style, &icon,
                &message, &information, nullptr, nullptr)) {
        return std::nullopt;
    }
    const auto alertStyle = enumeration(style, NSAlert::Style::Critical);
    if (!alertStyle) {
        return std::nullopt;
    }
    request.picture = picture;
    request.alert.alertStyle = *alertStyle;
    request.alert.icon = icon ? std::optional<std::string>{icon} : std::nullopt;
    request.alert.messageText = message;
    request.alert.informativeText = information;
    for (std::string& button : decodeTexts(childOf(encoded, 6).get())) {
        request.alert.addButton(std::move(button));
    }
    if (const VariantHandle checkBox{g_variant_get_maybe(childOf(encoded, 7).get())}) {
        const gchar* title = nullptr;
        gboolean isTicked = FALSE;
        g_variant_get(checkBox.get(), "(&sb)", &title, &isTicked);
        request.alert.setShowsSuppressionButton(true);
        *request.alert.suppressionButton() = {
            isTicked ? NSSuppressionButton::StateValue::On : NSSuppressionButton::StateValue::Off, title};
    }
    return request;
}

std::optional<Request> decodePanel(GVariant* encoded, const std::function<void(const Event&)>& tell) {
    std::uint32_t window = 0;
    const gchar* title = nullptr;
    gboolean isMovable = FALSE;
    gboolean isModal = FALSE;
    gboolean comesUnasked = FALSE;
    if (!unpack(encoded, "(usbbbv)", "(u&sbbbv)", &window, &title, &isMovable, &isModal, &comesUnasked, nullptr)) {
        return std::nullopt;
    }
    ViewReader reader{window, tell};
    auto content = reader.read(unboxed(childOf(encoded, 5).get()).get());
    if (!content) {
        return std::nullopt;
    }
    return PanelRequest{
        window,         title, isMovable != FALSE, isModal != FALSE, comesUnasked != FALSE, *std::move(content),
        reader.values()};
}

std::optional<Request> decodeValues(GVariant* encoded) {
    ValuesRequest request{};
    if (!unpack(encoded, "(uav)", "(u@av)", &request.window, nullptr)) {
        return std::nullopt;
    }
    const VariantHandle values = childOf(encoded, 1);
    for (gsize index = 0; index < g_variant_n_children(values.get()); ++index) {
        const auto value = decodeValue(unboxed(childOf(values.get(), index).get()).get());
        if (!value) {
            return std::nullopt;
        }
        request.values.push_back(*value);
    }
    return request;
}

} // namespace

std::optional<Request> decodeRequest(std::string_view message, const std::function<void(const Event&)>& tell) {
    const VariantHandle request = parsed(message, "(sv)");
    if (!request) {
        return std::nullopt;
    }
    const auto [kind, content] = tagged(request.get());
    if (kind == "alert") {
        return decodeAlert(content.get());
    }
    if (kind == "panel") {
        return decodePanel(content.get(), tell);
    }
    if (kind == "values") {
        return decodeValues(content.get());
    }
    CloseRequest closed{};
    if (kind == "close" && unpack(content.get(), "u", "u", &closed.window)) {
        return closed;
    }
    return std::nullopt;
}

} // namespace platform::linux
