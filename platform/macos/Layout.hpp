#pragma once

// Where the controls of a window stand. A box is a rectangle with controls in it; boxes are padded, framed and put
// together, from the inside out, until one box holds the whole window.

#include "platform/View.hpp"

#import <AppKit/AppKit.h>

#include <vector>

namespace macos {

inline constexpr double stackSpacing = 8;    ///< Between the views of a stack, in points.
inline constexpr double defaultPadding = 16; ///< Around a view that is padded by no length in particular.

/// A control and its place in its box.
struct PlacedView {
    NSView* view;
    NSRect frame;
};

/// Some controls and the space that they take; its origin is at the top left.
struct Box {
    Box() = default;
    Box(std::vector<PlacedView> views, platform::NSSize size)
        : views{std::move(views)}
        , size{size} {}

    /// One control that fills the box.
    Box(NSView* view, platform::NSSize size)
        : Box{{{view, NSMakeRect(0, 0, size.width, size.height)}}, size} {}

    std::vector<PlacedView> views;
    platform::NSSize size;

    /// Adds empty space at the edges named.
    void pad(const platform::modifier::Padding& padding);

    /// Gives the box the width and the height of `frame`, with its content in the place that the frame says.
    void frame(const platform::modifier::Frame& frame);

    /// Adds `next` behind or below what is there, `spacing` points away, both aligned across the axis.
    void append(Box next, platform::Axis axis, platform::Alignment alignment, double spacing);

private:
    void move(double x, double y);
};

} // namespace macos
