#include "adapters/native/http_address.h"

#include <algorithm>
#include <string_view>

namespace oska::native {
namespace {

constexpr int HTTP_PORT = 80;    // RFC 9110, 4.2.1
constexpr int HTTPS_PORT = 443;  // RFC 9110, 4.2.2

char asciiLower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
}

}  // namespace

std::optional<HttpAddress> HttpAddress::of(const Url& url) {
    const auto scheme = url.scheme().value_or("");
    const bool isSecure = equalsIgnoringAsciiCase(scheme, "https");
    if (!isSecure && !equalsIgnoringAsciiCase(scheme, "http")) return std::nullopt;
    auto host = url.host();
    if (!host) return std::nullopt;
    return HttpAddress{isSecure, std::move(*host), url.port().value_or(isSecure ? HTTPS_PORT : HTTP_PORT)};
}

std::string HttpAddress::text() const {
    const bool isIpv6 = host.find(':') != std::string::npos;
    return (isIpv6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

bool isSameOrigin(const HttpAddress& one, const HttpAddress& other) {
    return one.isSecure == other.isSecure && one.port == other.port &&
           equalsIgnoringAsciiCase(one.host, other.host);
}

bool equalsIgnoringAsciiCase(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char a, char b) { return asciiLower(a) == asciiLower(b); });
}

}  // namespace oska::native
