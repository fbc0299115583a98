#include "tools/oska/drawing/walk_trace.h"

#include "oska/dapo/dapo_types.h"
#include "oska/json/json.h"
#include "oska/pelio/pelio_types.h"

namespace oska::tool {
namespace {

struct EventLine {
    std::int64_t at = 0;
    std::string event;
    std::optional<PelioResult> result;
    std::optional<std::vector<DapoWard>> dapoWards;
};

template <class Visit>
void fields(Visit& f, EventLine& line) {
    f("at", line.at);
    f("event", line.event);
    f("result", line.result);
    f("dapoWards", line.dapoWards);
}

bool isSamePlace(const TraceStop& a, const TraceStop& b) {
    return a.level == b.level && a.point.x == b.point.x && a.point.y == b.point.y;
}

}  // namespace

// An event with a coordinate beyond all numbers does not decode, and could not be drawn.
void WalkTracer::note(std::string_view eventLine) {
    const auto line = json::decode<EventLine>(eventLine);
    if (!line) return;
    trace_.end = line->at;
    if (line->result) {
        const auto& result = *line->result;
        const auto level = site_.findLevel(result.level_id, result.building_id);
        if (!level) return;
        const TraceStop stop{*level, {result.x, result.y}, line->at, line->at};
        if (!trace_.stops.empty() && isSamePlace(trace_.stops.back(), stop)) {
            trace_.stops.back().until = line->at;
        } else {
            trace_.stops.push_back(stop);
        }
    }
    if (line->event != "onDapoSelectionChanged" || !line->dapoWards) return;
    ++trace_.deliveries;
    for (const auto& ward : *line->dapoWards) {
        const auto level = site_.findLevel(ward.level_id, std::nullopt);
        if (level) trace_.detections.push_back({*level, {ward.x, ward.y}, trace_.deliveries, line->at});
    }
}

}  // namespace oska::tool
