#include "tools/oska/drawing/walk_drawing.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "tools/oska/cli/text_table.h"
#include "tools/oska/drawing/level_frame.h"
#include "tools/oska/drawing/level_marks.h"
#include "tools/oska/drawing/svg.h"
#include "tools/oska/drawing/symbols.h"

namespace oska::tool {
namespace {

constexpr double MARGIN = 20;  // all in pixels of the drawing
constexpr double HEADER = 92;
constexpr double TITLE_HEIGHT = 30;

constexpr TextStyle SMALL_GREY{.size = 10, .colour = GREY};
constexpr TextStyle SMALL_BLUE{.size = 10, .colour = BLUE};
constexpr TextStyle WARD_NAME{.size = 10.5};

std::string seconds(std::int64_t milliseconds) {
    return svgNumber(static_cast<double>(milliseconds) / 1000) + " s";
}

/// Words below a place, moved aside where they would leave the frame.
std::string words(const Frame& frame, const MapPoint& place, double below, std::string_view text,
                  const TextStyle& style) {
    constexpr double LETTER_WIDTH = 0.58;  // of the size of the text, on average
    const auto at = frame.place(place);
    const double half = static_cast<double>(displayWidth(text)) * style.size * LETTER_WIDTH / 2 + 2;
    const double left = frame.x + half;
    const double right = std::max(left, frame.x + frame.width - half);
    return rimmedLabel({std::clamp(at.x, left, right), at.y + below}, text, style);
}

std::string stopWords(const Marks& marks, const Frame& frame) {
    auto out = words(frame, marks.point, 33, seconds(marks.milliseconds), SMALL_GREY);
    double above = -15;
    for (const auto& change : marks.levelChanges) {
        out += words(frame, marks.point, above, change, SMALL_BLUE);
        above -= 12;
    }
    return out;
}

std::string detectionWords(const Marks& marks, const Frame& frame) {
    return words(frame, marks.point, 41, "first at " + seconds(*marks.first), SMALL_GREY);
}

std::string waysOn(std::size_t level, const WalkTrace& trace, const Frame& frame) {
    std::string out;
    for (std::size_t i = 1; i < trace.stops.size(); ++i) {
        const auto& from = trace.stops[i - 1];
        const auto& to = trace.stops[i];
        const bool isHere = from.level == level && to.level == level;
        if (!isHere || !isDrawable(from.point) || !isDrawable(to.point)) continue;
        out += way(frame.place(from.point), frame.place(to.point));
    }
    return out;
}

/// One level: its title, and its map in the frame.
struct Panel {
    std::size_t level = 0;
    std::vector<const SiteWard*> wards;
    Frame frame;
};

std::string background(const Frame& frame) {
    SvgElement box("rect");
    box.set("x", frame.x).set("y", frame.y).set("width", frame.width).set("height", frame.height);
    return box.set("rx", 6).set("fill", "#f7f7f4").set("stroke", "#c4c4c0").empty();
}

std::string titleOf(const SiteLevel& level, const Frame& frame) {
    return label({frame.x, frame.y - 9}, level.buildingName + " \u00b7 " + level.name,
                 {.size = 15, .isBold = true});
}

/// All symbols come before all words, so that no symbol hides a word.
std::string draw(const Panel& panel, const Site& site, const WalkTrace& trace) {
    const auto& frame = panel.frame;
    const auto stops = stopsOn(site, panel.level, trace);
    const auto detections = detectionsOn(panel.level, trace);
    const auto belowTag = [&](const SiteWard& ward) {
        const std::pair key(ward.place.x, ward.place.y);
        return detections.contains(key) ? 29.0 : stops.contains(key) ? 21.0 : 15.0;
    };
    auto out = titleOf(site.levels[panel.level], frame) + background(frame);
    out += waysOn(panel.level, trace, frame);
    for (const auto* const ward : panel.wards) out += wardDot(frame.place(ward->place));
    for (const auto& [key, marks] : stops) {
        out += stopTag(frame.place(marks.point), numbersText(marks.numbers));
    }
    for (const auto& [key, marks] : detections) {
        out += detectionTag(frame.place(marks.point), numbersText(marks.numbers));
    }
    for (const auto* const ward : panel.wards) {
        out += words(frame, ward->place, belowTag(*ward), ward->name, WARD_NAME);
    }
    for (const auto& [key, marks] : stops) out += stopWords(marks, frame);
    for (const auto& [key, marks] : detections) out += detectionWords(marks, frame);
    return out;
}

/// Puts the panels side by side, two in a row. Returns the height of the whole drawing.
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
    return label({MARGIN, 34}, what + " in " + seconds(trace.end), {.size = 20, .isBold = true});
}

std::string legend(OskaService service) {
    constexpr double Y = 62;
    constexpr double NEXT = MARGIN + 80;
    const auto explained = [](double x, std::string_view text) { return label({x, Y + 4}, text, {}); };
    const auto ward = wardDot({MARGIN + 10, Y}) + explained(MARGIN + 22, "ward");
    if (service == OskaService::pelio) {
        return ward + stopTag({NEXT, Y}, "3") +
               explained(NEXT + 18, "position reported, numbered in order, and the time spent there") +
               way({NEXT + 430, Y}, {NEXT + 480, Y}) + explained(NEXT + 494, "change of position");
    }
    return ward + detectionTag({NEXT, Y}, "3") +
           explained(NEXT + 26, "ward detected, with the numbers of the deliveries that held it");
}

}  // namespace

std::string drawWalk(const Site& site, const WalkTrace& trace, OskaService service) {
    std::vector<Panel> panels;
    for (std::size_t level = 0; level < site.levels.size(); ++level) {
        auto wards = drawableWardsOn(site, level);
        const auto frame = frameFor(site.levels[level].map, wards);
        panels.push_back({level, std::move(wards), frame});
    }
    const double height = arrange(panels);
    const double width = (panels.size() > 1 ? 2 : 1) * (PANEL_WIDTH + MARGIN) + MARGIN;
    SvgElement sheet("svg");
    sheet.set("xmlns", "http://www.w3.org/2000/svg").set("width", width).set("height", height);
    sheet.set("viewBox", "0 0 " + svgNumber(width) + " " + svgNumber(height));
    sheet.set("font-family", "'Noto Sans', 'Noto Sans CJK KR', 'DejaVu Sans', sans-serif");
    SvgElement paper("rect");
    auto content = paper.set("width", width).set("height", height).set("fill", WHITE).empty();
    content += title(trace, service) + legend(service);
    for (const auto& panel : panels) content += draw(panel, site, trace);
    return sheet.around(content);
}

}  // namespace oska::tool
