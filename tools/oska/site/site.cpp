#include "tools/oska/site/site.h"

#include "oska/json/json.h"
#include "oska/resources/bundle.h"
#include "tools/oska/cli/wording.h"

namespace oska::tool {
namespace {

using Parsed = Result<Site, std::string>;

template <class Ward>
Site flattened(const Bundle<Ward>& bundle) {
    Site site{.levels = {}, .wards = {}, .maps = LevelMaps(bundle.buildings)};
    for (const auto& building : bundle.buildings) {
        std::int64_t floor = 0;
        for (const auto& level : building.levels) {
            for (const auto& ward : level.wards) {
                site.wards.push_back({ward.name, site.levels.size(), ward.x, ward.y});
            }
            site.levels.push_back({building.id, building.name, level.id, level.name, floor++});
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

}  // namespace

std::optional<std::size_t> Site::findLevel(std::int64_t levelId,
                                           std::optional<std::int64_t> buildingId) const {
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const auto& level = levels[i];
        if (level.id == levelId && level.buildingId == buildingId.value_or(level.buildingId)) return i;
    }
    return std::nullopt;
}

Parsed parseSite(const std::string& file, std::string_view document, OskaService kind) {
    return kind == OskaService::dapo ? parse<DapoLevelWard>(file, document)
                                     : parse<PelioLevelWard>(file, document);
}

}  // namespace oska::tool
