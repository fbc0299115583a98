#include "oska/foundation/http_send.h"

#include <utility>

#include "oska/foundation/once.h"

namespace oska {

std::unique_ptr<platform::HttpSession> makeHttpSession(
    platform::HttpSessionFactory& factory, const platform::HttpSessionConfiguration& configuration,
    const std::shared_ptr<platform::HttpSessionDelegate>& delegate) {
    try {
        return factory.makeSession(configuration, delegate);
    } catch (...) {
        return nullptr;
    }
}

void sendHttp(platform::HttpSession* session, platform::HttpRequest request,
              platform::HttpSession::Completion completion) {
    const auto answer = once(std::move(completion));
    if (!session) return answer({});
    try {
        session->send(std::move(request), answer);
    } catch (...) {
        answer({});
    }
}

}  // namespace oska
