#include "oska/foundation/ward_name.h"

#include "oska/text/text.h"

namespace oska {

std::string normalizeWardName(std::string_view name) { return std::string(WardNameNormalizer{}(name)); }

std::string_view WardNameNormalizer::operator()(std::string_view name) {
    lower_.clear();
    text::appendLowercased(lower_, text::trimmed(name));
    if (text::isAscii(lower_)) return lower_;
    composed_.clear();
    text::appendComposed(composed_, lower_, scalars_);
    return composed_;
}

}  // namespace oska
