#pragma once

#include <QPointF>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "oska/json/result.h"
#include "oska/resources/bundle.h"

namespace viewer {

/// A ward as both services know it.
struct Ward {
    std::string name;                      ///< as in the bundle
    std::string key;                       ///< what names of samples are compared with, normalised
    std::optional<QPointF> place;          ///< on the level's map image; Dapo's wards may have none
    std::optional<double> pelioThreshold;  ///< dBm; none: the service does not know the ward
    std::optional<double> dapoThreshold;
};

struct Level {
    std::int64_t id = 0;
    std::string building;
    std::string name;
    oska::LevelMapImage map;
    std::vector<Ward> wards;
};

/// What a folder says of one sector: FOLDER/SECTOR/pelio.json and dapo.json, the files that the development
/// server serves. One of them may be missing.
struct Site {
    std::int64_t sectorId = 0;
    std::string name;
    std::vector<Level> levels;  ///< in the bundles' order, Pelio's first

    [[nodiscard]] std::optional<std::size_t> findLevel(std::int64_t levelId) const;
};

/// Without `sectorId` the folder must have one sector only. The error names the file and the place in it.
[[nodiscard]] oska::Result<Site, std::string> loadSite(const std::string& folder,
                                                       std::optional<std::int64_t> sectorId);

}  // namespace viewer
