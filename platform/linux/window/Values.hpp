#pragma once

// What reading and writing the protocol share: GVariant's text form, its parts, and the values of controls. Only
// the protocol's own sources include this.

#include "platform/Overloaded.hpp"
#include "platform/Text.hpp"
#include "platform/linux/glib/Handles.hpp"
#include "platform/linux/window/Protocol.hpp"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace platform::linux {

/// `message`, a floating reference, as text; takes it over.
inline std::string printed(GVariant* message) {
    const VariantHandle whole = owned(message);
    return TextHandle{g_variant_print(whole.get(), TRUE)}.get();
}

/// The message of that type in a text; null if there is none.
inline VariantHandle parsed(std::string_view message, const char* type) {
    if (!isUtf8(message)) {
        return nullptr; // GLib's parser must be given text
    }
    return VariantHandle{
        g_variant_parse(G_VARIANT_TYPE(type), message.data(), message.data() + message.size(), nullptr, nullptr)};
}

/// The part of a tuple, array or maybe at `index`.
inline VariantHandle childOf(GVariant* variant, gsize index) {
    return VariantHandle{g_variant_get_child_value(variant, index)};
}

/// What a variant of type "v" holds.
inline VariantHandle unboxed(GVariant* boxed) { return VariantHandle{g_variant_get_variant(boxed)}; }

/// Unpacks `variant` as `g_variant_get` does with `format`. Returns false if it is not of type `type`.
template <typename... Outputs>
bool unpack(GVariant* variant, const char* type, const char* format, Outputs... outputs) {
    if (!g_variant_is_of_type(variant, G_VARIANT_TYPE(type))) {
        return false;
    }
    g_variant_get(variant, format, outputs...);
    return true;
}

/// A kind and what is said about it, of type "(sv)".
inline std::pair<std::string_view, VariantHandle> tagged(GVariant* variant) {
    const gchar* kind = nullptr;
    GVariant* content = nullptr;
    g_variant_get(variant, "(&sv)", &kind, &content);
    return {kind, VariantHandle{content}}; // the kind's characters belong to `variant`
}

/// Nothing if `ordinal` is beyond the enumeration's last value.
template <typename Enumeration>
std::optional<Enumeration> enumeration(gint32 ordinal, Enumeration last) {
    return ordinal >= 0 && ordinal <= static_cast<gint32>(last) ? std::optional{static_cast<Enumeration>(ordinal)}
                                                                : std::nullopt;
}

inline std::vector<std::string> decodeTexts(GVariant* texts) {
    gsize count = 0;
    const std::unique_ptr<const gchar*, Release<g_free>> pointers{g_variant_get_strv(texts, &count)};
    return {pointers.get(), pointers.get() + count};
}

/// A floating reference.
inline GVariant* encodeValue(const ControlValue& value) {
    return std::visit(Overloaded{[](bool isOn) { return g_variant_new_boolean(isOn); },
                                 [](std::int64_t number) { return g_variant_new_int64(number); }},
                      value);
}

/// Nothing if it is no control's value.
inline std::optional<ControlValue> decodeValue(GVariant* value) {
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN)) {
        return g_variant_get_boolean(value) != FALSE;
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_INT64)) {
        return std::int64_t{g_variant_get_int64(value)};
    }
    return std::nullopt;
}

} // namespace platform::linux
