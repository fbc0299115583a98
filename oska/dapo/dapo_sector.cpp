#include "oska/dapo/dapo_sector.h"

#include <algorithm>
#include <utility>

namespace oska {
namespace {

DapoWard wardInfo(const DapoLevel& level, const DapoLevelWard& ward, const LevelMaps& maps, const Log& log) {
    const auto [x, y] = maps.convertWardCoordinate(level.id, ward.x.value_or(0), ward.y.value_or(0), log);
    return {ward.id, level.id, ward.name, x, y, ward.rssi, 0, wardContents(ward)};
}

DapoLevelInfo levelInfo(const DapoLevel& level, const LevelMaps& maps, const Log& log) {
    DapoLevelInfo info{level.id, level.name, maps.find(level.id), {}};
    for (const auto& ward : level.wards) info.wards.push_back(wardInfo(level, ward, maps, log));
    return info;
}

}  // namespace

std::vector<WardContents> wardContents(const DapoLevelWard& ward) {
    std::vector<WardContents> contents;
    for (const auto& entry : ward.contents) {
        auto url = Url::parse(entry.url);
        if (url) contents.push_back({entry.number, entry.description, *std::move(url)});
    }
    std::stable_sort(contents.begin(), contents.end(),
                     [](const auto& a, const auto& b) { return a.id < b.id; });
    return contents;
}

DapoSectorInfo sectorInfo(const DapoBundle& bundle, const LevelMaps& maps, const Log& log) {
    DapoSectorInfo sector{bundle.id, bundle.name, {}};
    for (const auto& building : bundle.buildings) {
        auto& info = sector.buildings.emplace_back(DapoBuildingInfo{building.id, building.name, {}});
        for (const auto& level : building.levels) info.levels.push_back(levelInfo(level, maps, log));
    }
    return sector;
}

}  // namespace oska
