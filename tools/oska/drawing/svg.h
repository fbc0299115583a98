#pragma once

#include <string>
#include <string_view>

namespace oska::tool {

/// A coordinate, to a tenth: drawings are the same bytes everywhere. Requires: below 1e15.
[[nodiscard]] std::string svgNumber(double value);

/// Foreign text (UTF-8) as content or attribute: what XML escapes is escaped, what it does not allow becomes
/// U+FFFD.
[[nodiscard]] std::string svgText(std::string_view text);

}  // namespace oska::tool
