#pragma once

#include <string>
#include <string_view>

namespace oska {

/// The key under which a ward's name is indexed and looked up: white space and line breaks at both ends
/// removed (see `platform::text::trimmed`), then in lower case, nothing else altered, and written in the
/// composed form, so that names equal under canonical equivalence are one key to a container that compares
/// bytes.
///
/// Threads: any. Never fails; a name of blanks only gives an empty key.
[[nodiscard]] std::string normalizeWardName(std::string_view name);

}  // namespace oska
