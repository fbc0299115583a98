#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "oska/platform/http_session.h"

/// The rules for redirects, as pure functions. Threads: any.
namespace oska::native {

inline constexpr int MAXIMUM_REDIRECTS = 20;

/// The value of the first header with this name, in any case of letters; nullopt when there is none.
[[nodiscard]] std::optional<std::string_view> headerValue(const platform::HttpReply& reply,
                                                          std::string_view name);

/// Whether the reply is a redirect: status 301, 302, 303 or 305 to 308, with a Location.
[[nodiscard]] bool isRedirect(const platform::HttpReply& reply);

/// The request that follows `request` after the redirect `reply`, or why there is none.
///
/// POST after 301 and 302, and any method after 303, become GET without a body; otherwise method and body
/// stay. A request to another origin (scheme, host, port) keeps none of the caller's headers, except
/// Content-Type when it has a body.
[[nodiscard]] std::variant<platform::HttpRequest, platform::HttpError> redirected(
    platform::HttpRequest request, const platform::HttpReply& reply);

}  // namespace oska::native
