#include "tools/oska/drawing/walk_drawing.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

#include "tools/oska/cli/text_table.h"
#include "tools/oska/drawing/svg.h"

namespace oska::tool {
namespace {

// Okabe and Ito's palette, which colour-blind people tell apart.
constexpr std::string_view BLUE = "#0072b2";
constexpr std::string_view VERMILLION = "#d55e00";
constexpr std::string_view INK = "#222222";
constexpr std::string_view GREY = "#6b6b6b";

constexpr double PANEL_WIDTH = 620;  // pixels
constexpr double MAP_HEIGHT_AT_MOST = 620;
constexpr double MARGIN = 20;
constexpr double HEADER = 92;
constexpr double TITLE_HEIGHT = 30;
constexpr double FARTHEST = 1e9;      // map units
constexpr std::size_t MOST_RUNS = 3;  // of numbers on a tag

std::string attribute(std::string_view name, double value) {
    return " " + std::string(name) + "=\"" + svgNumber(value) + "\"";
}

std::string attribute(std::string_view name, std::string_view value) {
    return " " + std::string(name) + "=\"" + std::string(value) + "\"";
}

std::string label(double x, double y, std::string_view text, double size, std::string_view colour,
                  std::string_view more = "") {
    return "<text" + attribute("x", x) + attribute("y", y) + attribute("font-size", size) +
           attribute("fill", colour) + std::string(more) + ">" + svgText(text) + "</text>\n";
}

constexpr std::string_view CENTRED = " text-anchor=\"middle\"";
// A white rim keeps letters legible over lines.
constexpr std::string_view CENTRED_WITH_RIM =
    " text-anchor=\"middle\" stroke=\"#ffffff\" stroke-width=\"3\" stroke-linejoin=\"round\" "
    "paint-order=\"stroke\"";

std::string seconds(std::int64_t milliseconds) {
    return svgNumber(static_cast<double>(milliseconds) / 1000) + " s";
}

bool isDrawable(const MapPoint& point) {
    return std::abs(point.x) <= FARTHEST && std::abs(point.y) <= FARTHEST;
}

// ---- where things lie

/// The part of a level's map that its panel shows.
struct Bounds {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    void include(const MapPoint& point) {
        left = std::min(left, point.x);
        right = std::max(right, point.x);
        top = std::min(top, point.y);
        bottom = std::max(bottom, point.y);
    }
};

using Wards = std::vector<const SiteWard*>;

/// The wards of a level that can be drawn.
Wards wardsOn(const Site& site, std::size_t level) {
    auto wards = site.wardsOn(level);
    std::erase_if(wards, [](const SiteWard* ward) { return !isDrawable(ward->place); });
    return wards;
}

/// The image, and the wards wherever they lie; room around them where there is no image.
Bounds boundsOf(const LevelMap& map, const Wards& wards) {
    const MapPoint corner{map.image_width, map.image_height};
    const bool hasImage = corner.x > 0 && corner.y > 0 && isDrawable(corner);
    Bounds bounds{0, 0, corner.x, corner.y};
    if (!hasImage) {
        const auto first = wards.empty() ? MapPoint{0, 0} : wards.front()->place;
        bounds = {first.x, first.y, first.x, first.y};
    }
    for (const auto* const ward : wards) bounds.include(ward->place);
    if (hasImage) return bounds;
    const double room =
        std::max({1.0, (bounds.right - bounds.left) * 0.1, (bounds.bottom - bounds.top) * 0.1});
    return {bounds.left - room, bounds.top - room, bounds.right + room, bounds.bottom + room};
}

/// From map units to pixels of the drawing.
struct Frame {
    double x = 0;  // of the panel's map
    double y = 0;
    double width = 0;
    double height = 0;
    double scale = 1;
    Bounds bounds;

    [[nodiscard]] MapPoint place(const MapPoint& point) const {
        return {x + (point.x - bounds.left) * scale, y + (point.y - bounds.top) * scale};
    }
};

Frame frameOf(const Bounds& bounds) {
    Frame frame{.bounds = bounds};
    const double width = bounds.right - bounds.left;
    const double height = bounds.bottom - bounds.top;
    frame.scale = std::min(PANEL_WIDTH / width, MAP_HEIGHT_AT_MOST / height);
    frame.width = width * frame.scale;
    frame.height = height * frame.scale;
    return frame;
}

// ---- what is drawn at a place

/// All that happened at one place of a level.
struct Marks {
    MapPoint point{};
    std::vector<std::int64_t> numbers;
    std::int64_t milliseconds = 0;          // spent there
    std::optional<std::int64_t> first;      // when it was detected first
    std::vector<std::string> levelChanges;  // "12 on 2F"
};

using Places = std::map<std::pair<double, double>, Marks>;

Marks& marksAt(Places& places, const MapPoint& point) {
    auto& marks = places[{point.x, point.y}];
    marks.point = point;
    return marks;
}

Places stopsOn(const Site& site, std::size_t level, const WalkTrace& trace) {
    Places places;
    for (std::size_t i = 0; i < trace.stops.size(); ++i) {
        const auto& stop = trace.stops[i];
        if (stop.level != level || !isDrawable(stop.point)) continue;
        const bool isLast = i + 1 == trace.stops.size();
        auto& marks = marksAt(places, stop.point);
        marks.numbers.push_back(static_cast<std::int64_t>(i) + 1);
        marks.milliseconds += (isLast ? stop.until : trace.stops[i + 1].from) - stop.from;
        if (isLast || trace.stops[i + 1].level == level) continue;
        const auto& next = site.levels[trace.stops[i + 1].level];
        const auto building = next.buildingId == site.levels[level].buildingId ? "" : next.buildingName + " ";
        marks.levelChanges.push_back(std::to_string(i + 2) + " on " + building + next.name);
    }
    return places;
}

Places detectionsOn(std::size_t level, const WalkTrace& trace) {
    Places places;
    for (const auto& detection : trace.detections) {
        if (detection.level != level || !isDrawable(detection.point)) continue;
        auto& marks = marksAt(places, detection.point);
        marks.numbers.push_back(detection.number);
        marks.first = marks.first.value_or(detection.at);
    }
    return places;
}

/// "1, 4-6": neighbours as a range, and not more than fit a tag.
std::string numbersText(const std::vector<std::int64_t>& numbers) {
    std::string text;
    std::size_t runs = 0;
    for (std::size_t i = 0; i < numbers.size();) {
        auto last = i;
        while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
        if (runs++ == MOST_RUNS) return text + " ...";
        text += (i == 0 ? "" : ", ") + std::to_string(numbers[i]);
        if (last > i) text += "-" + std::to_string(numbers[last]);
        i = last + 1;
    }
    return text;
}

std::string ring(const MapPoint& at) {
    return "<circle" + attribute("cx", at.x) + attribute("cy", at.y) + attribute("r", 17) + " fill=\"none\"" +
           attribute("stroke", VERMILLION) + " stroke-width=\"2.5\" stroke-dasharray=\"5 3\"/>\n";
}

/// A tag with numbers; round for positions, with corners for detections.
std::string tag(const MapPoint& at, const std::string& numbers, std::string_view colour, double radius) {
    constexpr double DIGIT_WIDTH = 6.4;
    constexpr double HEIGHT = 19;
    const double width = std::max(HEIGHT, static_cast<double>(numbers.size()) * DIGIT_WIDTH + 10);
    return "<rect" + attribute("x", at.x - width / 2) + attribute("y", at.y - HEIGHT / 2) +
           attribute("width", width) + attribute("height", HEIGHT) + attribute("rx", radius) +
           attribute("fill", colour) + " stroke=\"#ffffff\" stroke-width=\"1.5\"/>\n" +
           label(at.x, at.y + 4, numbers, 11.5, "#ffffff", std::string(CENTRED) + " font-weight=\"bold\"");
}

std::string stopTag(const Marks& marks, const Frame& frame) {
    return tag(frame.place(marks.point), numbersText(marks.numbers), BLUE, 9.5);
}

std::string detectionTag(const Marks& marks, const Frame& frame) {
    const auto at = frame.place(marks.point);
    return ring(at) + tag(at, numbersText(marks.numbers), VERMILLION, 3);
}

/// Words below a place, within the panel.
std::string words(const Frame& frame, const MapPoint& place, double below, std::string_view text, double size,
                  std::string_view colour) {
    constexpr double LETTER_WIDTH = 0.58;  // of its size, on the average
    const auto at = frame.place(place);
    const double half = static_cast<double>(displayWidth(text)) * size * LETTER_WIDTH / 2 + 2;
    const double left = frame.x + half;
    const double right = std::max(left, frame.x + frame.width - half);
    return label(std::clamp(at.x, left, right), at.y + below, text, size, colour, CENTRED_WITH_RIM);
}

std::string stopWords(const Marks& marks, const Frame& frame) {
    auto out = words(frame, marks.point, 33, seconds(marks.milliseconds), 10, GREY);
    double above = -15;
    for (const auto& change : marks.levelChanges) {
        out += words(frame, marks.point, above, change, 10, BLUE);
        above -= 12;
    }
    return out;
}

std::string detectionWords(const Marks& marks, const Frame& frame) {
    return words(frame, marks.point, 41, "first at " + seconds(*marks.first), 10, GREY);
}

std::string wardDot(const MapPoint& at) {
    return "<circle" + attribute("cx", at.x) + attribute("cy", at.y) +
           " r=\"4\" fill=\"#ffffff\" stroke-width=\"1.5\"" + attribute("stroke", GREY) + "/>\n";
}

/// A bow from one place to the next, to the right of the straight way, so that there and back are two lines.
std::string way(const MapPoint& from, const MapPoint& to) {
    constexpr double BOW = 0.1;
    const double dx = to.x - from.x;
    const double dy = to.y - from.y;
    const double length = std::sqrt(dx * dx + dy * dy);
    if (length < 1) return "";
    const MapPoint control{(from.x + to.x) / 2 - dy * BOW, (from.y + to.y) / 2 + dx * BOW};
    const MapPoint tip{(from.x + to.x) / 2 - dy * BOW / 2 + dx / length * 5,
                       (from.y + to.y) / 2 + dx * BOW / 2 + dy / length * 5};
    const auto corner = [&](double back, double aside) {
        return svgNumber(tip.x - dx / length * back - dy / length * aside) + " " +
               svgNumber(tip.y - dy / length * back + dx / length * aside);
    };
    return "<path d=\"M" + svgNumber(from.x) + " " + svgNumber(from.y) + " Q" + svgNumber(control.x) + " " +
           svgNumber(control.y) + " " + svgNumber(to.x) + " " + svgNumber(to.y) + "\" fill=\"none\"" +
           attribute("stroke", BLUE) + " stroke-width=\"2\" stroke-opacity=\"0.75\"/>\n" + "<path d=\"M" +
           corner(0, 0) + " L" + corner(9, 4.5) + " L" + corner(9, -4.5) + " Z\"" + attribute("fill", BLUE) +
           "/>\n";
}

std::string waysOn(std::size_t level, const WalkTrace& trace, const Frame& frame) {
    std::string out;
    for (std::size_t i = 1; i < trace.stops.size(); ++i) {
        const auto& from = trace.stops[i - 1];
        const auto& to = trace.stops[i];
        if (from.level != level || to.level != level || !isDrawable(from.point) || !isDrawable(to.point))
            continue;
        out += way(frame.place(from.point), frame.place(to.point));
    }
    return out;
}

// ---- the sheet

struct Panel {
    std::size_t level = 0;
    Wards wards;
    Frame frame;
};

std::string draw(const Panel& panel, const Site& site, const WalkTrace& trace) {
    const auto& level = site.levels[panel.level];
    const auto& frame = panel.frame;
    auto out = label(frame.x, frame.y - 9, level.buildingName + " \u00b7 " + level.name, 15, INK,
                     " font-weight=\"bold\"");
    out += "<rect" + attribute("x", frame.x) + attribute("y", frame.y) + attribute("width", frame.width) +
           attribute("height", frame.height) + " rx=\"6\" fill=\"#f7f7f4\" stroke=\"#c4c4c0\"/>\n";
    out += waysOn(panel.level, trace, frame);
    const auto stops = stopsOn(site, panel.level, trace);
    const auto detections = detectionsOn(panel.level, trace);
    const auto belowTag = [&](const SiteWard& ward) {
        const std::pair key(ward.place.x, ward.place.y);
        return detections.find(key) != detections.end() ? 29.0 : stops.find(key) != stops.end() ? 21.0 : 15.0;
    };
    for (const auto* const ward : panel.wards) out += wardDot(frame.place(ward->place));
    for (const auto& [place, marks] : stops) out += stopTag(marks, frame);
    for (const auto& [place, marks] : detections) out += detectionTag(marks, frame);
    for (const auto* const ward : panel.wards) {
        out += words(frame, ward->place, belowTag(*ward), ward->name, 10.5, INK);
    }
    for (const auto& [place, marks] : stops) out += stopWords(marks, frame);
    for (const auto& [place, marks] : detections) out += detectionWords(marks, frame);
    return out;
}

/// Puts the panels side by side, two in a row, and answers with the height of the sheet.
double arrange(std::vector<Panel>& panels) {
    double top = HEADER;
    for (std::size_t i = 0; i < panels.size(); i += 2) {
        double height = 0;
        for (std::size_t j = i; j < std::min(i + 2, panels.size()); ++j) {
            panels[j].frame.x = MARGIN + static_cast<double>(j - i) * (PANEL_WIDTH + MARGIN);
            panels[j].frame.y = top + TITLE_HEIGHT;
            height = std::max(height, TITLE_HEIGHT + panels[j].frame.height);
        }
        top += height + MARGIN;
    }
    return top;
}

std::string positions(std::size_t number) {
    return std::to_string(number) + (number == 1 ? " position" : " positions");
}

std::string deliveries(std::int64_t number) {
    return std::to_string(number) + (number == 1 ? " delivery" : " deliveries");
}

std::string title(const WalkTrace& trace, OskaService service) {
    const auto what = service == OskaService::pelio ? "Pelio: " + positions(trace.stops.size())
                                                    : "Dapo: " + deliveries(trace.deliveries);
    return what + " in " + seconds(trace.end);
}

std::string legend(OskaService service) {
    const double y = 62;
    auto out = wardDot({MARGIN + 10, y}) + label(MARGIN + 22, y + 4, "ward", 12, INK);
    const double next = MARGIN + 80;
    if (service == OskaService::pelio) {
        return out + tag({next, y}, "3", BLUE, 9.5) +
               label(next + 18, y + 4, "position reported, numbered in order, and the time spent there", 12,
                     INK) +
               way({next + 430, y}, {next + 480, y}) +
               label(next + 494, y + 4, "change of position", 12, INK);
    }
    return out + ring({next, y}) + tag({next, y}, "3", VERMILLION, 3) +
           label(next + 26, y + 4, "ward detected, with the numbers of the deliveries that held it", 12, INK);
}

}  // namespace

std::string drawWalk(const Site& site, const WalkTrace& trace, OskaService service) {
    std::vector<Panel> panels;
    for (std::size_t level = 0; level < site.levels.size(); ++level) {
        auto wards = wardsOn(site, level);
        const auto frame = frameOf(boundsOf(site.levels[level].map, wards));
        panels.push_back({level, std::move(wards), frame});
    }
    const double height = arrange(panels);
    const double columns = panels.size() > 1 ? 2 : 1;
    const double width = columns * (PANEL_WIDTH + MARGIN) + MARGIN;
    const auto size = attribute("width", width) + attribute("height", height);
    auto out = "<svg xmlns=\"http://www.w3.org/2000/svg\"" + size +
               attribute("viewBox", "0 0 " + svgNumber(width) + " " + svgNumber(height)) +
               " font-family=\"'Noto Sans', 'Noto Sans CJK KR', 'DejaVu Sans', sans-serif\">\n<rect" + size +
               " fill=\"#ffffff\"/>\n" +
               label(MARGIN, 34, title(trace, service), 20, INK, " font-weight=\"bold\"") + legend(service);
    for (const auto& panel : panels) out += draw(panel, site, trace);
    return out + "</svg>\n";
}

}  // namespace oska::tool
