#include "oska/foundation/ward_name.h"

#include "oska/platform/text.h"

namespace oska {

std::string normalizeWardName(std::string_view name) {
    std::string lower = platform::text::lowercased(platform::text::trimmed(name));
    if (platform::text::isAscii(lower)) return lower;
    return platform::text::composed(lower);
}

}  // namespace oska
