#import "platform/macos/Layout.hpp"

#include "platform/Fatal.hpp"

#include <algorithm>

namespace macos {
namespace {

/// Where something of the length `inner` begins in a space of the length `outer`.
double offset(double inner, double outer, platform::Alignment alignment) {
    switch (alignment) {
    case platform::Alignment::Leading:
        return 0;
    case platform::Alignment::Center:
        return (outer - inner) / 2;
    case platform::Alignment::Trailing:
        return outer - inner;
    }
    platform::fatal();
}

} // namespace

void Box::move(double x, double y) {
    for (PlacedView& each : views) {
        each.frame = NSOffsetRect(each.frame, x, y);
    }
}

void Box::pad(const platform::modifier::Padding& padding) {
    using platform::Edges;
    const double length = padding.length.value_or(defaultPadding);
    const auto at = [&](Edges edge) { return padding.edges == Edges::All || padding.edges == edge ? length : 0; };
    move(at(Edges::Leading), at(Edges::Top));
    size.width += at(Edges::Leading) + at(Edges::Trailing);
    size.height += at(Edges::Top) + at(Edges::Bottom);
}

void Box::frame(const platform::modifier::Frame& frame) {
    const platform::NSSize outer{frame.width.value_or(size.width), frame.height.value_or(size.height)};
    move(offset(size.width, outer.width, frame.alignment),
         offset(size.height, outer.height, platform::Alignment::Center));
    size = outer;
}

void Box::append(Box next, platform::Axis axis, platform::Alignment alignment, double spacing) {
    const bool isHorizontal = axis == platform::Axis::Horizontal;
    const double gap = views.empty() ? 0 : spacing;
    double& along = isHorizontal ? size.width : size.height;
    double& across = isHorizontal ? size.height : size.width;
    const double nextAcross = isHorizontal ? next.size.height : next.size.width;
    const double common = std::max(across, nextAcross);
    const double ownOffset = offset(across, common, alignment);
    const double nextOffset = offset(nextAcross, common, alignment);
    const double start = along + gap;
    if (isHorizontal) {
        move(0, ownOffset);
        next.move(start, nextOffset);
    } else {
        move(ownOffset, 0);
        next.move(nextOffset, start);
    }
    along = start + (isHorizontal ? next.size.width : next.size.height);
    across = common;
    views.insert(views.end(), next.views.begin(), next.views.end());
}

} // namespace macos
