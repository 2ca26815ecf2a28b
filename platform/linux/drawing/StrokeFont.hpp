#pragma once

// The few characters that the status item ever shows, as strokes of one thickness that fall on whole pixels. Made
// for the ten to forty pixels of a panel, where it is sharper than a font and needs none.

#include <string_view>
#include <vector>

namespace platform::linux {

/// For each pixel of a picture, row by row, how far its centre lies from the middle of the nearest stroke.
class DistanceField {
public:
    DistanceField(int width, int height);

    /// Lays a straight stroke from one point to another; an open end is cut square, half a thickness behind the
    /// point. Distances above `reach` need not be exact.
    void addSegment(double x0, double y0, double x1, double y1, bool isOpenAtStart, bool isOpenAtEnd, double reach);

    /// The distance in pixels, or something larger than any reach.
    double at(int x, int y) const { return _distances[static_cast<std::size_t>(y * _width + x)]; }

private:
    int _width;
    int _height;
    std::vector<float> _distances;
};

/// A text laid out on a grid of pixels, or of squares of pixels.
class StrokeText {
public:
    /// The text within a room of that many cells of the grid: as high as it, and as bold and as wide as it allows.
    /// Where room is short the letters first grow narrow, then thin, and are squeezed only then; what differs in
    /// its digits alone is equally bold. Characters other than "0123456789hm+->" are left out.
    StrokeText(std::string_view text, int roomWidth, int roomHeight);

    int width() const { return _width; }

    /// The strokes' thickness: whole cells and halves.
    double thickness() const { return _shape.thickness; }

    /// Lays the strokes into `field`, on which a cell of the grid is `scale` pixels, with the text's top left
    /// corner at the given cell. Distances above `reach` pixels need not be exact.
    void addTo(DistanceField& field, int scale, int left, int top, double reach) const;

private:
    /// What all the letters of a text have in common, in cells.
    struct Shape {
        int height;
        double thickness;
        int counter; ///< Between the left and the right stroke of a digit.
    };

    static int widthOf(std::string_view text, const Shape& shape);
    static Shape fitting(std::string_view text, int roomWidth, int roomHeight);

    std::string_view _text;
    Shape _shape;
    int _width;
    double _squeeze; ///< What the widths are multiplied with.
};

} // namespace platform::linux
