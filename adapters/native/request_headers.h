#pragma once

#include <optional>
#include <string>
#include <vector>

#include "adapters/native/curl_handle.h"
#include "oska/platform/http_session.h"

namespace oska::native {

/// Why the request cannot be sent: a method or a header name that is not a token, or a header value with a
/// line break or a NUL, which could add headers. Nullopt when there is no fault. Threads: any.
[[nodiscard]] std::optional<std::string> faultIn(const platform::HttpRequest& request);

/// The header lines for libcurl. The caller's headers for the length of the body and for accepted codings are
/// left out, because the transport sets them.
/// Requires: no fault in the request.
[[nodiscard]] CurlList curlHeaders(const platform::HttpRequest& request);

}  // namespace oska::native
