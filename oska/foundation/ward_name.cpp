#include "oska/foundation/ward_name.h"

#include "oska/text/text.h"

namespace oska {

std::string normalizeWardName(std::string_view name) { return std::string(WardNameNormalizer{}(name)); }

std::string_view WardNameNormalizer::operator()(std::string_view name) {
    lower_.clear();
    platform::text::appendLowercased(lower_, platform::text::trimmed(name));
    if (platform::text::isAscii(lower_)) return lower_;
    composed_.clear();
    platform::text::appendComposed(composed_, lower_, scalars_);
    return composed_;
}

}  // namespace oska
