#pragma once

#include <optional>
#include <string>
#include <vector>

#include "adapters/native/curl_handle.h"
#include "oska/platform/http_session.h"

namespace oska::native {

/// Why the request cannot be written down: a method or a header name that is not a token, or a header value
/// with a line break or a NUL, which would smuggle in headers of its own. None when all is well. Threads:
/// any.
[[nodiscard]] std::optional<std::string> faultIn(const platform::HttpRequest& request);

/// The header lines for libcurl. Those that tell the length of the body or which codings are understood are
/// not the caller's to give, and are left out.
/// Requires: no fault in the request.
[[nodiscard]] CurlList curlHeaders(const platform::HttpRequest& request);

}  // namespace oska::native
