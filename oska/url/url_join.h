#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace oska {

/// The target of `reference` seen from `base` by RFC 3986, 5.2, strictly. None when either is no URI
/// reference or `base` has no scheme.
[[nodiscard]] std::optional<std::string> joinedUri(std::string_view base, std::string_view reference);

}  // namespace oska
