#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The place inside a document, as errors name it: `buildings[0].name`, `rfs["gate 2"]`. A path is built from
// its last step to its first, while a failed call returns through its callers. So decoding without an error
// costs nothing extra.
namespace oska::json {

/// Put one step in front of `path`, which is cut after about 400 bytes.
void prependKey(std::string& path, std::string_view key);
void prependIndex(std::string& path, std::size_t index);

/// `text`, cut after about 60 bytes, with control characters as \u001f.
std::string excerpt(std::string_view text);

}  // namespace oska::json
