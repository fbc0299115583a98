#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "oska/json/result.h"
#include "tools/oska/site/site.h"

namespace oska::tool {

/// Reads the site of one sector from FOLDER/SECTOR/pelio.json and FOLDER/SECTOR/dapo.json, the files that
/// `oska serve` serves; one of them may be missing. Without `sectorId` the folder must have one sector only.
/// The error names the file and the place in it, or says what the folder lacks. A site has one level at
/// least.
[[nodiscard]] Result<Site, std::string> readSector(const std::string& folder,
                                                   std::optional<std::int64_t> sectorId);

}  // namespace oska::tool
