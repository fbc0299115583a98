#pragma once

#include <string>

/// Lengths and places on a screen. The unit is the point, the toolkit's own unit of layout, which may be more
/// than one pixel. x grows to the right, y downwards. All types are plain values. Threads: any.
namespace oska::views {

/// A place, counted from the upper left corner of the view that the user of the value names.
struct ViewPoint {
    double x = 0;  ///< points to the right
    double y = 0;  ///< points downwards

    friend bool operator==(const ViewPoint&, const ViewPoint&) = default;
};

/// A width and a height, in points unless the user of the value says otherwise. Neither is negative.
struct Size {
    double width = 0;   ///< from left to right
    double height = 0;  ///< from top to bottom

    friend bool operator==(const Size&, const Size&) = default;
};

/// A rectangle with sides parallel to the axes.
struct Rect {
    /// The upper left corner.
    double x = 0;
    double y = 0;
    /// Neither is negative.
    double width = 0;
    double height = 0;

    /// Width and height.
    [[nodiscard]] Size size() const { return {width, height}; }

    /// Whether `point`, in the same coordinates, lies inside. The left and the upper edge belong to the
    /// rectangle; the right and the lower edge do not.
    [[nodiscard]] bool contains(ViewPoint point) const;

    friend bool operator==(const Rect&, const Rect&) = default;
};

/// Where `content` is drawn when it is scaled to be as large as `box` allows, keeping its proportions, and
/// centred. The result is in the coordinates of `box`, whose corner is (0, 0). When either is empty, the
/// result is an empty rectangle in the middle of `box`.
[[nodiscard]] Rect aspectFit(Size content, Size box);

/// x, y, width and height for a log line: "(0, 0, 390, 844)". Whole numbers are written without a fraction.
[[nodiscard]] std::string describe(const Rect& rect);

}  // namespace oska::views
