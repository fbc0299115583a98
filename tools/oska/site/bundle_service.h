#pragma once

#include <string_view>

#include "oska/foundation/network_constants.h"

namespace oska::tool {

/// Which service a bundle is for. Wards of Dapo have `contents`, wards of Pelio do not; the majority decides,
/// and Dapo if both are as many. A bundle without wards counts as Pelio's. A document with a fault is judged
/// by what can be read of it.
[[nodiscard]] OskaService serviceOfBundle(std::string_view document);

}  // namespace oska::tool
