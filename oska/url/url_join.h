#pragma once

#include <string>

#include "oska/url/url_syntax.h"

namespace oska {

/// The text of the URL that `reference` means at `base` (RFC 3986, 5.2, strictly; put together by 5.3).
/// REQUIRES: both were split from encoded URLs; `base` has a scheme and an authority; `reference` has an
/// authority when it has a scheme.
[[nodiscard]] std::string joinedUrl(const UrlView& base, const UrlView& reference);

}  // namespace oska
