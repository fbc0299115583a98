#pragma once

#include <optional>
#include <string>
#include <vector>

namespace oska::tool {

/// The candidate that was meant by a mistyped word, if one may have been: a letter in three put in, taken
/// out, replaced or swapped with its neighbour, or the rest of the word left out. Dashes in front do not
/// count.
[[nodiscard]] std::optional<std::string> nearestWord(const std::string& word,
                                                     const std::vector<std::string>& candidates);

}  // namespace oska::tool
