#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The place inside a document, as errors name it: `buildings[0].name`, `rfs["gate 2"]`. It is put together
// from the inside out, while a failed call returns through its callers, so that a document that decodes pays
// nothing for it.
namespace oska::json {

void prependKey(std::string& path, std::string_view key);
void prependIndex(std::string& path, std::size_t index);

/// `text` cut to a length that suits a message, control characters as \u001f.
std::string excerpt(std::string_view text);

}  // namespace oska::json
