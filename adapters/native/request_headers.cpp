#include "adapters/native/request_headers.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "adapters/native/http_address.h"

namespace oska::native {

using platform::HttpHeader;
using platform::HttpRequest;

namespace {

/// RFC 9110, 5.6.2.
bool isToken(std::string_view text) {
    constexpr std::string_view ALLOWED =
        "!#$%&'*+-.^_`|~0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    return !text.empty() && text.find_first_not_of(ALLOWED) == std::string_view::npos;
}

bool breaksLine(std::string_view value) {
    constexpr std::string_view BREAKS("\r\n\0", 3);
    return value.find_first_of(BREAKS) != std::string_view::npos;
}

std::optional<std::string> faultIn(const HttpHeader& header) {
    if (!isToken(header.name)) return "\"" + header.name + "\" is not a header name.";
    if (breaksLine(header.value))
        return "The value of the header \"" + header.name + "\" holds a line break.";
    return std::nullopt;
}

/// Headers that only the transport may set. Two lengths that differ would let a request pass a proxy unseen.
bool isOurs(const HttpHeader& header) {
    constexpr std::array<std::string_view, 4> NAMES{"Accept-Encoding", "Content-Length", "Expect",
                                                    "Transfer-Encoding"};
    return std::any_of(NAMES.begin(), NAMES.end(),
                       [&](std::string_view name) { return equalsIgnoringAsciiCase(header.name, name); });
}

/// For libcurl "Name:" means to leave the header out, and "Name;" a header without a value.
std::string line(const HttpHeader& header) {
    const bool isBlank = header.value.find_first_not_of(" \t") == std::string::npos;
    return isBlank ? header.name + ";" : header.name + ": " + header.value;
}

}  // namespace

std::optional<std::string> faultIn(const HttpRequest& request) {
    if (!isToken(request.method)) return "\"" + request.method + "\" is not an HTTP method.";
    for (const auto& header : request.headers) {
        if (auto fault = faultIn(header)) return fault;
    }
    return std::nullopt;
}

CurlList curlHeaders(const HttpRequest& request) {
    CurlList lines;
    // Otherwise libcurl waits up to a second for the server's consent to a body above 1 MiB.
    lines.append("Expect:");
    lines.append("Accept-Encoding: gzip, deflate");
    for (const auto& header : request.headers) {
        if (!isOurs(header)) lines.append(line(header));
    }
    return lines;
}

}  // namespace oska::native
