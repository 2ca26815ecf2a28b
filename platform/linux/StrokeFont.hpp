#pragma once

// The few characters that the status item ever shows, as strokes of one thickness that fall on whole pixels. Made
// for the ten to forty pixels of a panel, where it is sharper than a font and needs none.

#include <string_view>
#include <vector>

namespace platform::freedesktop {

/// For each pixel of a picture, row by row, how far its centre lies from the middle of the nearest stroke.
class DistanceField {
public:
    DistanceField(int width, int height);

    /// Lays a straight stroke from one point to another; an open end is cut square, half a thickness behind the
    /// point. `reach` is the distance up to which anybody will ask.
    void addSegment(double x0, double y0, double x1, double y1, bool isOpenAtStart, bool isOpenAtEnd, double reach);

    /// The distance in pixels, or something larger than any reach.
    double at(int x, int y) const { return _distances[static_cast<std::size_t>(y * _width + x)]; }

private:
    int _width;
    int _height;
    std::vector<double> _distances;
};

/// A text laid out in whole pixels.
class StrokeText {
public:
    /// The text in letters `height` pixels high. Characters other than "0123456789hm+->" are left out.
    StrokeText(std::string_view text, int height);

    int width() const { return _width; }
    int height() const { return _height; }

    /// The strokes' thickness.
    int thickness() const { return _thickness; }

    /// Lays the strokes into `field` with the text's top left corner at the given pixel.
    void addTo(DistanceField& field, int left, int top, double reach) const;

private:
    std::string_view _text;
    int _height;
    int _thickness;
    int _gap;
    int _width;
};

} // namespace platform::freedesktop
