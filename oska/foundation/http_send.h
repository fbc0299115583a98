#pragma once

#include <memory>

#include "oska/platform/http_session.h"

/// HTTP through sessions that a host may have made: a fault of theirs ends a request, never the process.
namespace oska {

/// Returns null when the factory returns null or throws.
[[nodiscard]] std::unique_ptr<platform::HttpSession> makeHttpSession(
    platform::HttpSessionFactory& factory, const platform::HttpSessionConfiguration& configuration,
    const std::shared_ptr<platform::HttpSessionDelegate>& delegate);

/// Sends `request`. The first outcome counts; later ones are ignored. When there is no session, or it throws,
/// `completion` is called inside this call with an outcome that has neither reply nor error.
void sendHttp(platform::HttpSession* session, platform::HttpRequest request,
              platform::HttpSession::Completion completion);

}  // namespace oska
