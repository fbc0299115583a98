#include "tools/oska/drawing/symbols.h"

#include <algorithm>
#include <cmath>

#include "tools/oska/drawing/svg.h"

namespace oska::tool {
namespace {

SvgElement textAt(const MapPoint& at, const TextStyle& style) {
    SvgElement text("text");
    text.set("x", at.x).set("y", at.y).set("font-size", style.size).set("fill", style.colour);
    return text;
}

std::string tag(const MapPoint& at, const std::string& numbers, std::string_view colour, double radius) {
    constexpr double DIGIT_WIDTH = 6.4;
    constexpr double HEIGHT = 19;
    const double width = std::max(HEIGHT, static_cast<double>(numbers.size()) * DIGIT_WIDTH + 10);
    SvgElement box("rect");
    box.set("x", at.x - width / 2).set("y", at.y - HEIGHT / 2).set("width", width).set("height", HEIGHT);
    box.set("rx", radius).set("fill", colour).set("stroke", WHITE).set("stroke-width", 1.5);
    auto text = textAt({at.x, at.y + 4}, {.size = 11.5, .colour = WHITE});
    text.set("text-anchor", "middle").set("font-weight", "bold");
    return box.empty() + text.withText(numbers);
}

std::string ring(const MapPoint& at) {
    SvgElement circle("circle");
    circle.set("cx", at.x).set("cy", at.y).set("r", 17).set("fill", "none").set("stroke", VERMILLION);
    return circle.set("stroke-width", 2.5).set("stroke-dasharray", "5 3").empty();
}

std::string pair(const MapPoint& point) { return svgNumber(point.x) + " " + svgNumber(point.y); }

std::string curve(const MapPoint& from, const MapPoint& control, const MapPoint& to) {
    SvgElement path("path");
    path.set("d", "M" + pair(from) + " Q" + pair(control) + " " + pair(to)).set("fill", "none");
    return path.set("stroke", BLUE).set("stroke-width", 2).set("stroke-opacity", "0.75").empty();
}

/// `direction`: of length 1.
std::string arrowHead(const MapPoint& tip, const MapPoint& direction) {
    const auto corner = [&](double back, double aside) {
        return pair({tip.x - direction.x * back - direction.y * aside,
                     tip.y - direction.y * back + direction.x * aside});
    };
    const auto outline = "M" + corner(0, 0) + " L" + corner(9, 4.5) + " L" + corner(9, -4.5) + " Z";
    return SvgElement("path").set("d", outline).set("fill", BLUE).empty();
}

}  // namespace

std::string label(const MapPoint& at, std::string_view text, const TextStyle& style) {
    auto element = textAt(at, style);
    if (style.isBold) element.set("font-weight", "bold");
    return element.withText(text);
}

std::string rimmedLabel(const MapPoint& middle, std::string_view text, const TextStyle& style) {
    auto element = textAt(middle, style);
    element.set("text-anchor", "middle").set("stroke", WHITE).set("stroke-width", 3);
    return element.set("stroke-linejoin", "round").set("paint-order", "stroke").withText(text);
}

std::string wardDot(const MapPoint& at) {
    SvgElement circle("circle");
    circle.set("cx", at.x).set("cy", at.y).set("r", 4).set("fill", WHITE);
    return circle.set("stroke-width", 1.5).set("stroke", GREY).empty();
}

std::string stopTag(const MapPoint& at, const std::string& numbers) { return tag(at, numbers, BLUE, 9.5); }

std::string detectionTag(const MapPoint& at, const std::string& numbers) {
    return ring(at) + tag(at, numbers, VERMILLION, 3);
}

std::string way(const MapPoint& from, const MapPoint& to) {
    constexpr double BEND = 0.1;  // of the way's length
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double length = std::sqrt(dx * dx + dy * dy);
    if (length < 1) return "";
    const MapPoint control{(from.x + to.x) / 2 - dy * BEND, (from.y + to.y) / 2 + dx * BEND};
    const MapPoint tip{(from.x + to.x) / 2 - dy * BEND / 2 + dx / length * 5,
                       (from.y + to.y) / 2 + dx * BEND / 2 + dy / length * 5};
    return curve(from, control, to) + arrowHead(tip, {dx / length, dy / length});
}

}  // namespace oska::tool
