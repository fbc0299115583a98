#include "tools/oska/drawing/level_marks.h"

#include "tools/oska/drawing/level_frame.h"

namespace oska::tool {
namespace {

constexpr std::size_t MOST_RANGES = 3;

Marks& marksAt(Places& places, const MapPoint& point) {
    auto& marks = places[{point.x, point.y}];
    marks.point = point;
    return marks;
}

}  // namespace

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

std::string numbersText(const std::vector<std::int64_t>& numbers) {
    std::string text;
    std::size_t ranges = 0;
    for (std::size_t i = 0; i < numbers.size();) {
        auto last = i;
        while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
        if (ranges++ == MOST_RANGES) return text + " ...";
        text += (i == 0 ? "" : ", ") + std::to_string(numbers[i]);
        if (last > i) text += "-" + std::to_string(numbers[last]);
        i = last + 1;
    }
    return text;
}

}  // namespace oska::tool
