#pragma once

// What the kinds of view and of modifier are called on the wire. Reading and writing go by these names, and a kind
// without a name does not compile. Only the protocol's own sources include this.

#include "platform/View.hpp"

#include <optional>
#include <string_view>
#include <type_traits>
#include <variant>

namespace platform::linux {

template <typename Kind>
using KindOf = std::type_identity<Kind>;

constexpr const char* wireName(KindOf<node::Text>) { return "text"; }
constexpr const char* wireName(KindOf<node::Image>) { return "image"; }
constexpr const char* wireName(KindOf<node::TextField>) { return "textField"; }
constexpr const char* wireName(KindOf<node::Toggle>) { return "toggle"; }
constexpr const char* wireName(KindOf<node::Picker>) { return "picker"; }
constexpr const char* wireName(KindOf<node::Button>) { return "button"; }
constexpr const char* wireName(KindOf<node::Stack>) { return "stack"; }

constexpr const char* wireName(KindOf<modifier::Frame>) { return "frame"; }
constexpr const char* wireName(KindOf<modifier::Padding>) { return "padding"; }
constexpr const char* wireName(KindOf<modifier::FontStyle>) { return "font"; }
constexpr const char* wireName(KindOf<modifier::Disabled>) { return "disabled"; }
constexpr const char* wireName(KindOf<modifier::Focusable>) { return "focusable"; }
constexpr const char* wireName(KindOf<modifier::FixedSize>) { return "fixedSize"; }
constexpr const char* wireName(KindOf<modifier::Shortcut>) { return "shortcut"; }
constexpr const char* wireName(KindOf<modifier::OnAppear>) { return "onAppear"; }

/// The variant that `decode` makes of a `KindOf` the kind of that name; nothing if there is no such kind.
template <typename Variant>
class Named;

template <typename... Kinds>
class Named<std::variant<Kinds...>> {
public:
    template <typename Decode>
    static std::optional<std::variant<Kinds...>> decoded(std::string_view name, Decode decode) {
        std::optional<std::variant<Kinds...>> result;
        const auto tryKind = [&](auto kind) {
            const bool isIt = name == wireName(kind);
            if (isIt) {
                result = decode(kind);
            }
            return isIt;
        };
        (tryKind(KindOf<Kinds>{}) || ...);
        return result;
    }
};

} // namespace platform::linux
