#include "oska/dapo/dapo_sector.h"

#include <algorithm>
#include <utility>

namespace oska {
namespace {

DapoLevelInfo levelInfo(const DapoLevel& level, const LevelMapIndex& maps) {
    DapoLevelInfo info{level.id, level.name, maps.find(level.id), {}};
    for (const auto& ward : level.wards) {
        const MapPoint inBundle{static_cast<double>(ward.x.value_or(0)),
                                static_cast<double>(ward.y.value_or(0))};
        const auto [x, y] =
            maps.convertWardCoordinate(level.id, ward.x.value_or(0), ward.y.value_or(0)).value_or(inBundle);
        info.wards.push_back({ward.id, level.id, ward.name, x, y, ward.rssi, 0, wardContents(ward)});
    }
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

DapoSectorDescription describeSector(const DapoBundle& bundle, const LevelMapIndex& maps) {
    DapoSectorDescription sector{{bundle.id, bundle.name, {}}, {}};
    for (const auto& building : bundle.buildings) {
        auto& info = sector.info.buildings.emplace_back(DapoBuildingInfo{building.id, building.name, {}});
        for (const auto& level : building.levels) {
            info.levels.push_back(levelInfo(level, maps));
            if (!info.levels.back().mapImage)
                sector.levelsWithoutMap.insert(sector.levelsWithoutMap.end(), level.wards.size(), level.id);
        }
    }
    return sector;
}

}  // namespace oska
