#pragma once

#include <optional>
#include <string>

#include "oska/url/url.h"

namespace oska::native {

/// Where an http or https URL leads: what a connection is made to, and what an origin is told by.
struct HttpAddress {
    bool isSecure = false;
    std::string host;  ///< as `Url::host` reads it: a name, or an address without brackets
    int port = 0;      ///< the scheme's own when the URL names none

    /// None unless the URL is http or https and has a host.
    [[nodiscard]] static std::optional<HttpAddress> of(const Url& url);

    /// For people: "host:port", an IPv6 address in brackets.
    [[nodiscard]] std::string text() const;
};

/// Same scheme, host and port; the case of the host's letters makes no difference.
[[nodiscard]] bool isSameOrigin(const HttpAddress& one, const HttpAddress& other);

/// Letters A to Z only, as in host names, header names and codings.
[[nodiscard]] bool equalsIgnoringAsciiCase(std::string_view one, std::string_view other);

}  // namespace oska::native
