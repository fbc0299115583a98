#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/oska/explaining/explanation.h"

namespace oska::tool {

/// The names of `known` that are nearest to `name`, the nearest first, at most `count`; alike are compared as
/// the kit compares them. Each with what it differs in.
[[nodiscard]] std::vector<NearName> nearestNames(std::string_view name, const std::vector<std::string>& known,
                                                 std::size_t count);

/// The nearest one, if it may have been meant: the same but for blanks, or a letter or two in a longer name.
[[nodiscard]] std::optional<NearName> closeName(std::string_view name, const std::vector<std::string>& known);

}  // namespace oska::tool
