#pragma once

// What the resident program and its window program say to each other, and how that looks on the wire. Both ends
// hold a socket of type SOCK_SEQPACKET, the window program as its standard input; a packet is one message in
// GVariant's text form, and the end of the stream means that the other side is gone.
//
// The resident program shows windows on top of each other, and only the topmost takes input:
//
//     ('alert', <(window, picture, style, icon, message, information, buttons, check box)>)
//     ('panel', <(window, title, whether its background moves it, whether it is modal,
//                whether it comes unasked, content)>)
//                                            a panel that is shown already shows this content from now on
//     ('values', <(window, [value, ...])>)   what the panel's controls are to show, after each change by the user
//     ('close', <window>)                    the end of the stream closes all that are left
//
// The window program tells what becomes of it and waits for what follows from that; it closes nothing by itself:
//
//     ('noDisplay', 0, 0, nothing)                 there is no display to show a window on: its only message
//     ('shown', window, 0, nothing)                the window is on the screen
//     ('changed', window, control, just <value>)   a control has another value
//     ('pressed', window, control, nothing)        a button was pressed
//     ('submitted', window, control, nothing)      Return was pressed in a text field, after it told its change
//     ('closed', window, 0, nothing)               the user or the desktop wants the window to go away
//
// Controls are numbered from 0: in a panel, its text fields, toggles, pickers and buttons in the order of the tree;
// in an alert, its buttons, then the check box. A view is `(kind, <what it is>, [modifier, ...])`; actions stay
// behind.

#include "platform/NSAlert.hpp"
#include "platform/View.hpp"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace platform::linux {

/// No request is longer, in bytes.
inline constexpr std::size_t longestMessage = 65'536;

/// No event is longer, in bytes.
inline constexpr std::size_t longestEvent = 256;

/// What a control shows: whether it is on, or its number or the index of its selected item.
using ControlValue = std::variant<bool, std::int64_t>;

/// Something that the user did, or that became of a window.
struct Event {
    enum class Kind { NoDisplay, Shown, Changed, Pressed, Submitted, Closed };

    Kind kind = Kind::Closed;
    std::uint32_t window = 0;
    std::uint32_t control = 0;
    std::optional<ControlValue> value; ///< Present exactly for `Changed`.

    bool operator==(const Event&) const = default;
};

struct AlertRequest {
    std::uint32_t window;
    NSAlert alert;
    std::filesystem::path picture; ///< What to draw where there is no icon of the application's; may be empty.
};

struct PanelRequest {
    std::uint32_t window;
    std::string title;
    bool isMovableByBackground;
    bool isModal;      ///< Then the break cycle waits for it, so it must be seen wherever the user works.
    bool comesUnasked; ///< Then the keyboard stays with the window that has it.
    View content;

    /// After decoding: what the bindings in `content` read, to be replaced by what a `ValuesRequest` brings.
    std::shared_ptr<std::vector<ControlValue>> values;
};

struct ValuesRequest {
    std::uint32_t window;
    std::vector<ControlValue> values; ///< One per control; false for buttons.
};

struct CloseRequest {
    std::uint32_t window;
};

using Request = std::variant<AlertRequest, PanelRequest, ValuesRequest, CloseRequest>;

/// The views in `view` that take input, in the order in which the protocol numbers them. Owned by `view`.
std::vector<const Node*> controlsIn(const View& view);

/// What the controls in `view` are bound to at this moment.
std::vector<ControlValue> valuesOf(const View& view);

std::string encode(const Request& request);
std::string encode(const Event& event);

/// The request in `message`; nothing if it is malformed. A panel's controls keep their own values from there on
/// and tell `tell` what the user does with them.
std::optional<Request> decodeRequest(std::string_view message, const std::function<void(const Event&)>& tell);

/// The event in `message`; nothing if it is malformed.
std::optional<Event> decodeEvent(std::string_view message);

} // namespace platform::linux
