#include "oska/platform/http_session.h"

#include <algorithm>
#include <array>
#include <utility>

namespace oska::platform {
namespace {

// The reason phrases of RFC 9110 section 15 that a developer is likely to meet; others go without.
constexpr std::array<std::pair<int, std::string_view>, 23> REASONS{{
    {300, "Multiple Choices"},
    {301, "Moved Permanently"},
    {302, "Found"},
    {303, "See Other"},
    {304, "Not Modified"},
    {307, "Temporary Redirect"},
    {308, "Permanent Redirect"},
    {400, "Bad Request"},
    {401, "Unauthorized"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {408, "Request Timeout"},
    {409, "Conflict"},
    {410, "Gone"},
    {413, "Content Too Large"},
    {415, "Unsupported Media Type"},
    {429, "Too Many Requests"},
    {500, "Internal Server Error"},
    {501, "Not Implemented"},
    {502, "Bad Gateway"},
    {503, "Service Unavailable"},
    {504, "Gateway Timeout"},
}};

}  // namespace

bool isGetWithBody(const HttpRequest& request) {
    return request.method == "GET" && request.body && !request.body->empty();
}

std::string describe(const HttpReply& reply) {
    if (!reply.status) return "not an HTTP reply";
    auto text = "HTTP status " + std::to_string(*reply.status);
    const auto reason = std::find_if(REASONS.begin(), REASONS.end(),
                                     [&](const auto& entry) { return entry.first == *reply.status; });
    if (reason == REASONS.end()) return text;
    return text.append(" (").append(reason->second).append(")");
}

}  // namespace oska::platform
