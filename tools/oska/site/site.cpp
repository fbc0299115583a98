#include "tools/oska/site/site.h"

#include <algorithm>

#include "oska/foundation/ward_name.h"
#include "oska/json/json.h"
#include "oska/resources/bundle.h"
#include "tools/oska/cli/wording.h"

namespace oska::tool {
namespace {

using Parsed = Result<Site, std::string>;

template <class Ward>
SiteWard flattened(const Ward& ward, std::size_t level, MapPoint place) {
    SiteWard flat{.name = ward.name,
                  .key = normalizeWardName(ward.name),
                  .level = level,
                  .x = ward.x,
                  .y = ward.y,
                  .place = place};
    auto& threshold = std::is_same_v<Ward, DapoLevelWard> ? flat.dapoThreshold : flat.pelioThreshold;
    threshold = static_cast<double>(ward.rssi);
    return flat;
}

/// Coordinates are optional in Dapo's bundles only.
std::int64_t orZero(std::optional<std::int64_t> coordinate) { return coordinate.value_or(0); }

template <class Ward>
Site flattened(const Bundle<Ward>& bundle) {
    const LevelMapIndex maps(bundle.buildings);
    Site site{.sectorId = bundle.id, .name = bundle.name};
    for (const auto& building : bundle.buildings) {
        std::int64_t floor = 0;
        for (const auto& level : building.levels) {
            for (const auto& ward : level.wards) {
                const auto place = *maps.convertWardCoordinate(level.id, orZero(ward.x),
                                                               orZero(ward.y));  // each level has a map
                site.wards.push_back(flattened(ward, site.levels.size(), place));
            }
            site.levels.push_back(
                {building.id, building.name, level.id, level.name, floor++, *maps.find(level.id)});
        }
    }
    return site;
}

template <class Ward>
Parsed parse(const std::string& file, std::string_view document) {
    const auto bundle = json::decode<Bundle<Ward>>(document);
    if (!bundle) return faultLine(file, bundle.error());
    return flattened(*bundle);
}

/// Adds a ward to a level of the site; if the level has a ward of its name, what is not known of that.
void addWard(Site& site, std::size_t level, SiteWard ward) {
    const auto known = std::find_if(site.wards.begin(), site.wards.end(), [&](const SiteWard& other) {
        return other.level == level && other.key == ward.key;
    });
    ward.level = level;
    if (known == site.wards.end()) return site.wards.push_back(std::move(ward));
    if (ward.pelioThreshold) known->pelioThreshold = ward.pelioThreshold;
    if (ward.dapoThreshold) known->dapoThreshold = ward.dapoThreshold;
    if (known->hasCoordinates() || !ward.hasCoordinates()) return;
    known->x = ward.x;
    known->y = ward.y;
    known->place = ward.place;
}

void add(Site& site, const Site& other) {
    if (site.levels.empty()) site.sectorId = other.sectorId;
    if (site.name.empty()) site.name = other.name;
    for (std::size_t i = 0; i < other.levels.size(); ++i) {
        const auto known = site.findLevel(other.levels[i].id, std::nullopt);
        const auto level = known.value_or(site.levels.size());
        if (!known) site.levels.push_back(other.levels[i]);
        for (const auto* const ward : other.wardsOn(i)) addWard(site, level, *ward);
    }
}

}  // namespace

std::optional<std::size_t> Site::findLevel(std::int64_t levelId,
                                           std::optional<std::int64_t> buildingId) const {
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const auto& level = levels[i];
        if (level.id == levelId && level.buildingId == buildingId.value_or(level.buildingId)) return i;
    }
    return std::nullopt;
}

std::vector<const SiteWard*> Site::wardsOn(std::size_t level) const {
    std::vector<const SiteWard*> found;
    for (const auto& ward : wards) {
        if (ward.level == level) found.push_back(&ward);
    }
    return found;
}

Parsed parseSite(const std::string& file, std::string_view document, OskaService kind) {
    return kind == OskaService::dapo ? parse<DapoLevelWard>(file, document)
                                     : parse<PelioLevelWard>(file, document);
}

Site joined(const Site& pelio, const Site& dapo) {
    Site site;
    add(site, pelio);
    add(site, dapo);
    return site;
}

}  // namespace oska::tool
