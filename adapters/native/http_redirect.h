#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "oska/platform/http_session.h"

/// The rules by which replies lead elsewhere, as pure functions. Threads: any.
namespace oska::native {

inline constexpr int MAXIMUM_REDIRECTS = 20;

/// The first header of that name, which is compared without regard to case.
[[nodiscard]] std::optional<std::string_view> headerValue(const platform::HttpReply& reply,
                                                          std::string_view name);

/// Whether the reply sends the client elsewhere: 301, 302, 303, 305 to 308 with a Location. Others are
/// final.
[[nodiscard]] bool isRedirect(const platform::HttpReply& reply);

/// The request that follows `request` after the redirect `reply`, or why there can be none.
///
/// POST after 301 and 302, and any method after 303, become GET without a body; else method and body stay. A
/// request that leaves the origin (scheme, host, port) takes none of the caller's headers along, but the
/// type of a body that goes with it.
[[nodiscard]] std::variant<platform::HttpRequest, platform::HttpError> redirected(
    platform::HttpRequest request, const platform::HttpReply& reply);

}  // namespace oska::native
