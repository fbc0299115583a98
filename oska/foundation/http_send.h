#pragma once

#include <memory>

#include "oska/platform/http_session.h"

/// HTTP through sessions that a host may have made: their mistakes end a request, never the process.
namespace oska {

/// Null when the factory makes none or throws.
[[nodiscard]] std::unique_ptr<platform::HttpSession> makeHttpSession(
    platform::HttpSessionFactory& factory, const platform::HttpSessionConfiguration& configuration,
    const std::shared_ptr<platform::HttpSessionDelegate>& delegate);

/// Sends `request`. The first outcome counts, later ones are ignored. Without a session, or when it throws,
/// there is neither reply nor error, and `completion` is called inside this call.
void sendHttp(platform::HttpSession* session, platform::HttpRequest request,
              platform::HttpSession::Completion completion);

}  // namespace oska
