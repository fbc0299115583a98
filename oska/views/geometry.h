#pragma once

#include <string>

/// Lengths and places on a screen, in points; y grows downwards.
namespace oska::views {

struct ViewPoint {
    double x = 0;
    double y = 0;

    friend bool operator==(const ViewPoint&, const ViewPoint&) = default;
};

struct Size {
    double width = 0;
    double height = 0;

    friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] Size size() const { return {width, height}; }
    /// The left and the upper edge belong to the rectangle, the others do not.
    [[nodiscard]] bool contains(ViewPoint point) const;

    friend bool operator==(const Rect&, const Rect&) = default;
};

/// The largest rectangle of `content`'s proportions inside `box`, in its middle; an empty one there when
/// either is empty.
[[nodiscard]] Rect aspectFit(Size content, Size box);

/// "(0, 0, 390, 844)": x, y, width, height.
[[nodiscard]] std::string describe(const Rect& rect);

}  // namespace oska::views
