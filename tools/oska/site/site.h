#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/foundation/network_constants.h"
#include "oska/json/result.h"
#include "oska/resources/level_map_index.h"

namespace oska::tool {

struct SiteLevel {
    std::int64_t buildingId = 0;
    std::string buildingName;
    std::int64_t id = 0;
    std::string name;
    std::int64_t floor = 0;  ///< from 0: its index among the levels of its building
    LevelMap map;            ///< of levels that share an id all have the map of the last one, as in the kit
};

struct SiteWard {
    std::string name;               ///< as in the bundle
    std::string key;                ///< the name as the kit compares names; see normalizeWardName
    std::size_t level = 0;          ///< index in Site::levels
    std::optional<std::int64_t> x;  ///< bundle units; nullopt only for a ward of Dapo's
    std::optional<std::int64_t> y;
    /// Pixels of the level's map image, converted by the kit. A coordinate that is missing counts as 0. A
    /// bundle may hold numbers that take it beyond the image, to infinity or to no number.
    MapPoint place{};
    std::optional<double> pelioThreshold;  ///< dBm; nullopt: Pelio's bundle does not have the ward
    std::optional<double> dapoThreshold;   ///< the same for Dapo

    [[nodiscard]] bool hasCoordinates() const { return x && y; }
};

/// The levels and wards of a site, in document order: from the bundle of one service or from both. A value.
struct Site {
    std::int64_t sectorId = 0;  ///< as in the bundle
    std::string name;
    std::vector<SiteLevel> levels;
    std::vector<SiteWard> wards;

    /// Index in `levels`; of levels that share an id the first. `buildingId`: only levels of that building.
    [[nodiscard]] std::optional<std::size_t> findLevel(std::int64_t levelId,
                                                       std::optional<std::int64_t> buildingId) const;

    /// The wards of a level. They stay valid until `wards` is changed.
    [[nodiscard]] std::vector<const SiteWard*> wardsOn(std::size_t level) const;
};

/// The site that `document` describes, a bundle of `kind`; or why the document is no such bundle:
/// `site.json:17: buildings[0].name: expected text, found 5`, where `file` is the name to put in front.
[[nodiscard]] Result<Site, std::string> parseSite(const std::string& file, std::string_view document,
                                                  OskaService kind);

/// What the bundles of both services know of one site; either may be empty. Levels with the same id are one
/// level; wards of one level are one ward if their names are the same to the kit. Where both bundles have a
/// name or a place, Pelio's counts.
[[nodiscard]] Site joined(const Site& pelio, const Site& dapo);

}  // namespace oska::tool
