#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/foundation/network_constants.h"
#include "oska/json/result.h"
#include "oska/resources/level_maps.h"

namespace oska::tool {

struct SiteLevel {
    std::int64_t buildingId = 0;
    std::string buildingName;
    std::int64_t id = 0;
    std::string name;
    std::int64_t floor = 0;  ///< from 0: its place among the levels of its building
};

struct SiteWard {
    std::string name;               ///< as in the bundle
    std::size_t level = 0;          ///< in Site::levels
    std::optional<std::int64_t> x;  ///< bundle units; only Dapo's wards may have none
    std::optional<std::int64_t> y;
};

/// A bundle of either kind, flat and in document order, for the commands that look at a whole site.
struct Site {
    std::vector<SiteLevel> levels;
    std::vector<SiteWard> wards;
    LevelMaps maps;

    /// Of levels that share an id the first; a building narrows the search.
    [[nodiscard]] std::optional<std::size_t> findLevel(std::int64_t levelId,
                                                       std::optional<std::int64_t> buildingId) const;
};

/// The site that `document` describes, a bundle of `kind`, or why it is none, `file` and line in front.
[[nodiscard]] Result<Site, std::string> parseSite(const std::string& file, std::string_view document,
                                                  OskaService kind);

}  // namespace oska::tool
