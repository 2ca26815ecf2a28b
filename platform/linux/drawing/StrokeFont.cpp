#include "platform/linux/drawing/StrokeFont.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <span>
#include <string>
#include <utility>

namespace platform::linux {
namespace {

/// A point that a stroke runs through or, if round, turns before: in hundredths of the letter's width and height.
struct Corner {
    int x;
    int y;
    bool isRound;
};

constexpr Corner sharp(int x, int y) { return {x, y, false}; }
constexpr Corner round(int x, int y) { return {x, y, true}; }

struct Stroke {
    std::span<const Corner> corners;
    bool isClosed = false;
};

/// A letter is as wide as its upright strokes and the counters between them.
struct Glyph {
    char character;
    int uprights;
    int counters;     // hundredths of a digit's counter, together
    bool isSymmetric; // its middle stroke stands between pixels like the outer ones
    std::span<const Stroke> strokes;
};

constexpr std::array ring{round(0, 0), round(100, 0), round(100, 100), round(0, 100)};
constexpr std::array upperRing{round(0, 0), round(100, 0), round(100, 47), round(0, 47)};
constexpr std::array lowerRing{round(0, 47), round(100, 47), round(100, 100), round(0, 100)};
constexpr std::array tallUpperRing{round(0, 0), round(100, 0), round(100, 60), round(0, 60)};
constexpr std::array tallLowerRing{round(0, 40), round(100, 40), round(100, 100), round(0, 100)};
constexpr std::array one{sharp(0, 20), sharp(100, 0), sharp(100, 100)};
constexpr std::array two{sharp(0, 22), round(0, 0), round(100, 0), round(100, 46), sharp(0, 100), sharp(100, 100)};
constexpr std::array threeUpper{sharp(0, 18), round(0, 0), round(100, 0), round(100, 47), sharp(40, 47)};
constexpr std::array threeLower{sharp(40, 47), round(100, 47), round(100, 100), round(0, 100), sharp(0, 82)};
constexpr std::array fourDiagonal{sharp(75, 0), sharp(0, 70), sharp(100, 70)};
constexpr std::array fourStem{sharp(75, 0), sharp(75, 100)};
constexpr std::array five{sharp(96, 0),    sharp(4, 0),   sharp(4, 42), round(100, 42),
                          round(100, 100), round(0, 100), sharp(0, 82)};
constexpr std::array sixStem{sharp(96, 18), round(96, 0), round(0, 0), sharp(0, 70)};
constexpr std::array seven{sharp(0, 0), sharp(100, 0), sharp(35, 100)};
constexpr std::array nineStem{sharp(4, 82), round(4, 100), round(100, 100), sharp(100, 30)};
constexpr std::array leftStem{sharp(0, 0), sharp(0, 100)};
constexpr std::array shortLeftStem{sharp(0, 34), sharp(0, 100)};
constexpr std::array arch{sharp(0, 60), round(0, 34), round(100, 34), sharp(100, 100)};
constexpr std::array leftArch{sharp(0, 60), round(0, 34), round(50, 34), sharp(50, 100)};
constexpr std::array rightArch{sharp(50, 60), round(50, 34), round(100, 34), sharp(100, 100)};
constexpr std::array dash{sharp(0, 55), sharp(100, 55)};
constexpr std::array plusUpright{sharp(50, 25), sharp(50, 85)};
constexpr std::array greater{sharp(0, 22), sharp(100, 55), sharp(0, 88)};

constexpr std::array zeroStrokes{Stroke{ring, true}};
constexpr std::array oneStrokes{Stroke{one}};
constexpr std::array twoStrokes{Stroke{two}};
constexpr std::array threeStrokes{Stroke{threeUpper}, Stroke{threeLower}};
constexpr std::array fourStrokes{Stroke{fourDiagonal}, Stroke{fourStem}};
constexpr std::array fiveStrokes{Stroke{five}};
constexpr std::array sixStrokes{Stroke{tallLowerRing, true}, Stroke{sixStem}};
constexpr std::array sevenStrokes{Stroke{seven}};
constexpr std::array eightStrokes{Stroke{upperRing, true}, Stroke{lowerRing, true}};
constexpr std::array nineStrokes{Stroke{tallUpperRing, true}, Stroke{nineStem}};
constexpr std::array hourStrokes{Stroke{leftStem}, Stroke{arch}};
constexpr std::array minuteStrokes{Stroke{shortLeftStem}, Stroke{leftArch}, Stroke{rightArch}};
constexpr std::array plusStrokes{Stroke{dash}, Stroke{plusUpright}};
constexpr std::array minusStrokes{Stroke{dash}};
constexpr std::array greaterStrokes{Stroke{greater}};

constexpr std::array glyphs{
    Glyph{'0', 2, 100, false, zeroStrokes},   Glyph{'1', 1, 75, false, oneStrokes},
    Glyph{'2', 2, 100, false, twoStrokes},    Glyph{'3', 2, 100, false, threeStrokes},
    Glyph{'4', 2, 110, false, fourStrokes},   Glyph{'5', 2, 100, false, fiveStrokes},
    Glyph{'6', 2, 100, false, sixStrokes},    Glyph{'7', 2, 95, false, sevenStrokes},
    Glyph{'8', 2, 100, false, eightStrokes},  Glyph{'9', 2, 100, false, nineStrokes},
    Glyph{'h', 2, 90, false, hourStrokes},    Glyph{'m', 3, 150, false, minuteStrokes},
    Glyph{'+', 2, 100, true, plusStrokes},    Glyph{'-', 2, 50, false, minusStrokes},
    Glyph{'>', 2, 70, false, greaterStrokes},
};

const Glyph* glyphOf(char character) {
    const auto* found = std::find_if(glyphs.begin(), glyphs.end(),
                                     [&](const Glyph& glyph) { return glyph.character == character; });
    return found == glyphs.end() ? nullptr : found;
}

int rounded(double number) { return static_cast<int>(std::lround(number)); }

constexpr double boldness = 0.16;   // of the height
constexpr double digitWidth = 0.56; // of the height

/// Sharp strokes may stand close together, those with a blurred edge may not.
int narrowestCounter(double thickness) {
    const bool isSharp = thickness == std::floor(thickness);
    return std::max(1, rounded(isSharp ? thickness / 2 : thickness));
}

/// How many cells of the grid the letter is wide: its outer edges fall between pixels, and so does its middle
/// stroke if it is symmetric.
int cells(const Glyph& glyph, double thickness, int counter) {
    const int counters = std::max({1, glyph.uprights - 1, rounded(glyph.counters * counter / 100.0)});
    const int width = rounded(std::ceil(glyph.uprights * thickness + counters));
    const bool isEven = (width - static_cast<int>(thickness)) % 2 == 0;
    return glyph.isSymmetric && !isEven ? width + (counters > thickness ? -1 : 1) : width;
}

int gapOf(int height) { return std::max(1, rounded(height * 0.09)); }

/// A stroke's middle between the outermost two, moved so that an edge falls between pixels as theirs do.
double onGrid(double position, double last) { return position >= last ? last : rounded(position); }

struct Point {
    double x;
    double y;
};

Point between(Point from, Point to, double share) {
    return {from.x + (to.x - from.x) * share, from.y + (to.y - from.y) * share};
}

double distance(Point from, Point to) { return std::hypot(to.x - from.x, to.y - from.y); }

/// The points that a stroke runs through once its round corners are resolved into short straight pieces.
std::vector<Point> flattened(std::span<const Point> corners, const Stroke& stroke, double largestRadius) {
    constexpr int pieces = 6;
    constexpr double circle = 0.5523; // where a cubic curve's handles lie to draw a quarter of a circle
    const std::size_t count = corners.size();
    std::vector<Point> points;
    for (std::size_t index = 0; index < count; ++index) {
        const Point corner = corners[index];
        if (!stroke.corners[index].isRound) {
            points.push_back(corner);
            continue;
        }
        const std::size_t before = (index + count - 1) % count;
        const std::size_t after = (index + 1) % count;
        const auto room = [&](std::size_t neighbour) {
            return distance(corner, corners[neighbour]) * (stroke.corners[neighbour].isRound ? 0.5 : 1.0);
        };
        const double radius = std::min({largestRadius, room(before), room(after)});
        const Point start = between(corner, corners[before], radius / distance(corner, corners[before]));
        const Point end = between(corner, corners[after], radius / distance(corner, corners[after]));
        const Point startHandle = between(start, corner, circle);
        const Point endHandle = between(end, corner, circle);
        for (int piece = 0; piece <= pieces; ++piece) {
            const double share = static_cast<double>(piece) / pieces;
            const Point middle = between(startHandle, endHandle, share);
            points.push_back(between(between(between(start, startHandle, share), middle, share),
                                     between(middle, between(endHandle, end, share), share), share));
        }
    }
    if (stroke.isClosed) {
        points.push_back(points.front());
    }
    return points;
}

} // namespace

DistanceField::DistanceField(int width, int height)
    : _width{width}
    , _height{height}
    , _distances(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 1e6F) {}

void DistanceField::addSegment(double x0, double y0, double x1, double y1, bool isOpenAtStart, bool isOpenAtEnd,
                               double reach) {
    const auto first = [&](double a, double b) { return std::max(0, static_cast<int>(std::min(a, b) - reach)); };
    const auto last = [&](double a, double b, int size) {
        return std::min(size - 1, static_cast<int>(std::max(a, b) + reach));
    };
    const double length = std::hypot(x1 - x0, y1 - y0);
    if (length == 0) {
        return;
    }
    const Point direction{(x1 - x0) / length, (y1 - y0) / length};
    for (int y = first(y0, y1); y <= last(y0, y1, _height); ++y) {
        for (int x = first(x0, x1); x <= last(x0, x1, _width); ++x) {
            const Point offset{x + 0.5 - x0, y + 0.5 - y0};
            const double along = offset.x * direction.x + offset.y * direction.y;
            const double aside = std::abs(offset.y * direction.x - offset.x * direction.y);
            const double beyond = std::max({-along, along - length, 0.0});
            const bool isSquare = along < 0 ? isOpenAtStart : isOpenAtEnd;
            const double distance = isSquare ? std::max(aside, beyond) : std::hypot(aside, beyond);
            float& nearest = _distances[static_cast<std::size_t>(y * _width + x)];
            nearest = std::min(nearest, static_cast<float>(distance));
        }
    }
}

StrokeText::StrokeText(std::string_view text, int roomWidth, int roomHeight)
    : _text{text}
    , _shape{fitting(text, roomWidth, roomHeight)} {
    const int width = widthOf(text, _shape);
    _width = std::min(width, roomWidth);
    _squeeze = width > 0 ? static_cast<double>(_width) / width : 1;
}

int StrokeText::widthOf(std::string_view text, const Shape& shape) {
    int width = 0;
    for (const char character : text) {
        if (const Glyph* const glyph = glyphOf(character)) {
            width += (width == 0 ? 0 : gapOf(shape.height)) + cells(*glyph, shape.thickness, shape.counter);
        }
    }
    return width;
}

StrokeText::Shape StrokeText::fitting(std::string_view text, int roomWidth, int roomHeight) {
    std::string widest{text};
    std::replace_if(widest.begin(), widest.end(), [](char each) { return each >= '0' && each <= '9'; }, '4');
    Shape shape{roomHeight, std::max(1.0, rounded(roomHeight * boldness * 2) / 2.0), 1};
    for (; shape.thickness > 1; shape.thickness -= 0.5) {
        shape.counter = narrowestCounter(shape.thickness);
        if (widthOf(widest, shape) <= roomWidth) {
            break;
        }
    }
    shape.counter = std::max(1, rounded(roomHeight * digitWidth - 2 * shape.thickness));
    while (shape.counter > narrowestCounter(shape.thickness) && widthOf(text, shape) > roomWidth) {
        --shape.counter;
    }
    return shape;
}

void StrokeText::addTo(DistanceField& field, int scale, int left, int top, double reach) const {
    const double half = _shape.thickness / 2;
    int begin = 0;
    for (const char character : _text) {
        const Glyph* const glyph = glyphOf(character);
        if (!glyph) {
            continue;
        }
        const int width = cells(*glyph, _shape.thickness, _shape.counter);
        const double across = width - _shape.thickness;
        const double down = _shape.height - _shape.thickness;
        const double middle = glyph->isSymmetric ? across / 2 : rounded(across / 2);
        const auto placed = [&](const Corner& corner) {
            const double x = corner.x == 50 ? middle : onGrid(corner.x * across / 100, across);
            const double y = onGrid(corner.y * down / 100, down);
            return Point{scale * (left + (begin + half + x) * _squeeze), scale * (top + half + y)};
        };
        for (const Stroke& stroke : glyph->strokes) {
            std::vector<Point> corners;
            std::transform(stroke.corners.begin(), stroke.corners.end(), std::back_inserter(corners), placed);
            const std::vector<Point> points = flattened(corners, stroke, scale * across / 2);
            for (std::size_t index = 0; index + 1 < points.size(); ++index) {
                const bool isFirst = !stroke.isClosed && index == 0;
                const bool isLast = !stroke.isClosed && index + 2 == points.size();
                field.addSegment(points[index].x, points[index].y, points[index + 1].x, points[index + 1].y,
                                 isFirst, isLast, reach);
            }
        }
        begin += width + gapOf(_shape.height);
    }
}

} // namespace platform::linux
