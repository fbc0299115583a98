#pragma once

#include <optional>
#include <string>

#include "oska/url/url.h"

namespace oska::native {

/// Scheme, host and port of an http or https URL: the origin, and where a connection is made to.
struct HttpAddress {
    bool isSecure = false;
    std::string host;  ///< as `Url::host` returns it: a name, or an address without brackets
    int port = 0;      ///< the scheme's default when the URL names none

    /// Nullopt unless the URL is http or https and has a host.
    [[nodiscard]] static std::optional<HttpAddress> of(const Url& url);

    /// For people: "host:port", an IPv6 address in brackets.
    [[nodiscard]] std::string text() const;
};

/// Whether scheme, host and port are the same; the case of the host's letters is ignored.
[[nodiscard]] bool isSameOrigin(const HttpAddress& one, const HttpAddress& other);

/// Ignores the case of the letters A to Z, as host names, header names and codings need.
[[nodiscard]] bool equalsIgnoringAsciiCase(std::string_view one, std::string_view other);

}  // namespace oska::native
