#pragma once

#include <string_view>

#include "oska/foundation/network_constants.h"

namespace oska::tool {

/// Which service a bundle is for, told by its wards: those of Dapo hold `contents`, those of Pelio do not;
/// the majority counts, Dapo when it is even. Works on a broken document, too, as far as it can be read. A
/// bundle without wards serves both; it counts as Pelio's.
[[nodiscard]] OskaService serviceOfBundle(std::string_view document);

}  // namespace oska::tool
