#include "adapters/native/http_redirect.h"

#include <algorithm>
#include <array>
#include <utility>

#include "adapters/native/http_address.h"

namespace oska::native {

using platform::HttpError;
using platform::HttpErrorKind;
using platform::HttpHeader;
using platform::HttpReply;
using platform::HttpRequest;

namespace {

bool isNamed(const HttpHeader& header, std::string_view name) {
    return equalsIgnoringAsciiCase(header.name, name);
}

bool becomesGet(int status, std::string_view method) {
    if (status == 303) return true;
    return (status == 301 || status == 302) && method == "POST";
}

void dropBody(HttpRequest& request) {
    request.method = "GET";
    request.body.reset();
    std::erase_if(request.headers, [](const auto& header) {
        return isNamed(header, "Content-Type") || isNamed(header, "Content-Length");
    });
}

/// Headers that were meant for one server, above all credentials, must not reach another one.
void dropHeaders(HttpRequest& request) {
    std::erase_if(request.headers,
                  [&](const auto& header) { return !request.body || !isNamed(header, "Content-Type"); });
}

bool leavesOrigin(const Url& from, const Url& to) {
    const auto source = HttpAddress::of(from);
    const auto target = HttpAddress::of(to);
    return !source || !target || !isSameOrigin(*source, *target);
}

}  // namespace

std::optional<std::string_view> headerValue(const HttpReply& reply, std::string_view name) {
    const auto found = std::find_if(reply.headers.begin(), reply.headers.end(),
                                    [&](const auto& header) { return isNamed(header, name); });
    return found == reply.headers.end() ? std::nullopt : std::optional<std::string_view>(found->value);
}

bool isRedirect(const HttpReply& reply) {
    constexpr std::array STATUSES{301, 302, 303, 305, 306, 307, 308};
    const auto status = reply.status.value_or(0);
    if (std::find(STATUSES.begin(), STATUSES.end(), status) == STATUSES.end()) return false;
    return headerValue(reply, "Location").has_value();
}

std::variant<HttpRequest, HttpError> redirected(HttpRequest request, const HttpReply& reply) {
    const auto location = std::string(headerValue(reply, "Location").value_or(""));
    auto target = request.url.resolve(location);
    if (!target) {
        return HttpError{HttpErrorKind::badServerReply,
                         "The server redirected to \"" + location + "\", which is not a URL."};
    }
    if (becomesGet(reply.status.value_or(0), request.method)) dropBody(request);
    if (leavesOrigin(request.url, *target)) dropHeaders(request);
    request.url = std::move(*target);
    return request;
}

}  // namespace oska::native
