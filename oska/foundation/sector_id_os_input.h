#pragma once

#include <cstdint>
#include <string>

namespace oska {

/// A request for a sector's bundle descriptor. Has no JSON form: it travels as path and query of a URL.
struct SectorIdOsInput {
    std::int64_t sector_id = 0;    ///< the sector whose bundle is asked for
    std::string operating_system;  ///< of the phone; the kit always sends "iOS"

    /// Field by field.
    bool operator==(const SectorIdOsInput&) const = default;
};

}  // namespace oska
