#pragma once

// Reads the views of one panel. Their controls keep their own values from there on and tell what the user does to
// them. Only the protocol's own sources include this.

#include "platform/View.hpp"
#include "platform/linux/window/Kinds.hpp"
#include "platform/linux/window/Protocol.hpp"
#include "platform/linux/window/Values.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace platform::linux {

class ViewReader {
public:
    /// Reads views for that window; their controls call `tell`.
    ViewReader(std::uint32_t window, std::function<void(const Event&)> tell);

    /// Nothing if `encoded` is malformed.
    std::optional<View> read(GVariant* encoded);

    /// What the controls that were read so far are bound to.
    std::shared_ptr<std::vector<ControlValue>> values() const { return _values; }

private:
    std::optional<Node> read(KindOf<node::Text>, GVariant* content) const;
    std::optional<Node> read(KindOf<node::Image>, GVariant* content) const;
    std::optional<Node> read(KindOf<node::TextField>, GVariant* content);
    std::optional<Node> read(KindOf<node::Toggle>, GVariant* content);
    std::optional<Node> read(KindOf<node::Picker>, GVariant* content);
    std::optional<Node> read(KindOf<node::Button>, GVariant* content);
    std::optional<Node> read(KindOf<node::Stack>, GVariant* content);

    std::uint32_t addControl(ControlValue value);
    std::function<void()> teller(Event::Kind kind, std::uint32_t control) const;
    template <typename Wire, typename Value>
    Binding<Value> bind(std::uint32_t control) const;

    std::uint32_t _window;
    std::function<void(const Event&)> _tell;
    std::shared_ptr<std::vector<ControlValue>> _values = std::make_shared<std::vector<ControlValue>>();
};

} // namespace platform::linux
