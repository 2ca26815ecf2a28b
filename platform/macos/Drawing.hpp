#pragma once

// Turns a tree of declarative views into controls, laid out and connected. Each kind of view and of modifier has an
// overload of its own here; the file does not compile while one is missing.

#include "platform/View.hpp"
#import "platform/macos/HostingView.hpp"
#import "platform/macos/Layout.hpp"

#include <optional>
#include <string>

namespace macos {

class Drawing {
public:
    /// What a view inherits from the views around it.
    struct Environment {
        platform::Font font = platform::Font::Body;
        bool isDisabled = false;
        bool isDefault = false;
        std::optional<double> width;  ///< Offered by the frame around the view, in points.
        std::optional<double> height; ///< As `width`.
        std::string name;             ///< The text before a control in its row.
    };

    /// The controls tell `host` when they are used.
    explicit Drawing(HostingView* host)
        : _host{host} {}

    /// The controls of `view` and all views in it, at the places where the eye should find them.
    Box draw(const platform::View& view, Environment environment);

private:
    // What a modifier means to the view inside it
    static void adjust(Environment& environment, const platform::modifier::Frame& frame);
    static void adjust(Environment& environment, const platform::modifier::FontStyle& style);
    static void adjust(Environment& environment, const platform::modifier::Disabled& disabled);
    static void adjust(Environment& environment, const platform::modifier::Shortcut& shortcut);
    static void adjust(Environment&, const platform::modifier::Padding&) {}
    static void adjust(Environment&, const platform::modifier::Focusable&) {} // the controls are, by themselves
    static void adjust(Environment&, const platform::modifier::FixedSize&) {} // everything has its ideal size
    static void adjust(Environment&, const platform::modifier::OnAppear&) {}  // the application runs it

    // What a modifier does to the space that the view takes
    static void arrange(Box& box, const platform::modifier::Frame& frame) { box.frame(frame); }
    static void arrange(Box& box, const platform::modifier::Padding& padding) { box.pad(padding); }
    static void arrange(Box&, const platform::modifier::FontStyle&) {}
    static void arrange(Box&, const platform::modifier::Disabled&) {}
    static void arrange(Box&, const platform::modifier::Shortcut&) {}
    static void arrange(Box&, const platform::modifier::Focusable&) {}
    static void arrange(Box&, const platform::modifier::FixedSize&) {}
    static void arrange(Box&, const platform::modifier::OnAppear&) {}

    // The kinds of view
    Box drawNode(const platform::node::Text& text, const Environment& environment);
    Box drawNode(const platform::node::Image& node, const Environment& environment);
    Box drawNode(const platform::node::TextField& node, const Environment& environment);
    Box drawNode(const platform::node::Toggle& node, const Environment& environment);
    Box drawNode(const platform::node::Picker& node, const Environment& environment);
    Box drawNode(const platform::node::Button& node, const Environment& environment);
    Box drawNode(const platform::node::Stack& node, const Environment& environment);

    HostingView* _host;
};

} // namespace macos
