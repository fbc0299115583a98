#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace oska::tool {

/// Writes the whole of a file, in place of what it held. Returns nullopt, or what went wrong: "walk.svg:
/// Permission denied".
[[nodiscard]] std::optional<std::string> writeOutput(const std::string& path, std::string_view content);

}  // namespace oska::tool
