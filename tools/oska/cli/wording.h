#pragma once

#include <string>
#include <string_view>

#include "oska/json/json_error.h"

namespace oska::tool {

/// Foreign text inside a message: in double quotes, with everything escaped that could forge a line or steer
/// a terminal (see one_line.h).
[[nodiscard]] std::string inQuotes(std::string_view text);

/// Why a document is no bundle: `buildings[0].name: expected text, found 5`, without its line.
[[nodiscard]] std::string faultText(const json::DecodeError& error);

/// The same with its place in front, as compilers do: `site.json:17: buildings[0].name: expected text, found
/// 5`.
[[nodiscard]] std::string faultLine(const std::string& file, const json::DecodeError& error);

}  // namespace oska::tool
