#pragma once

#include <string>
#include <string_view>

#include "oska/resources/level_map_index.h"

namespace oska::tool {

// The palette of Okabe and Ito, whose colours colour-blind people can tell apart.
inline constexpr std::string_view BLUE = "#0072b2";
inline constexpr std::string_view VERMILLION = "#d55e00";
inline constexpr std::string_view INK = "#222222";
inline constexpr std::string_view GREY = "#6b6b6b";
inline constexpr std::string_view WHITE = "#ffffff";

/// The symbols of a drawn walk, each as SVG elements. Places are pixels of the drawing.

struct TextStyle {
    double size = 12;  ///< pixels
    std::string_view colour = INK;
    bool isBold = false;
};

/// A line of text that begins at a place.
[[nodiscard]] std::string label(const MapPoint& at, std::string_view text, const TextStyle& style);

/// A line of text with its middle at a place, and with a white rim, so that it can be read over lines.
[[nodiscard]] std::string rimmedLabel(const MapPoint& middle, std::string_view text, const TextStyle& style);

/// A ward.
[[nodiscard]] std::string wardDot(const MapPoint& at);

/// A position reported: a round tag with its numbers.
[[nodiscard]] std::string stopTag(const MapPoint& at, const std::string& numbers);

/// A ward detected: a ring, and a tag with corners that has its numbers.
[[nodiscard]] std::string detectionTag(const MapPoint& at, const std::string& numbers);

/// A change of position: a curve with an arrow head in its middle. It bends to the right, so that the way
/// there and the way back are two lines. Empty if the places are less than a pixel apart.
[[nodiscard]] std::string way(const MapPoint& from, const MapPoint& to);

}  // namespace oska::tool
