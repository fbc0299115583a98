#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace oska {

/// The key under which a ward's name is indexed and looked up: white space and line breaks at both ends
/// removed (see `text::trimmed`), then in lower case, nothing else altered, and written in the
/// composed form, so that names equal under canonical equivalence are one key to a container that compares
/// bytes.
///
/// Threads: any. Never fails; a name of blanks only gives an empty key.
[[nodiscard]] std::string normalizeWardName(std::string_view name);

/// Does what `normalizeWardName` does in storage that it keeps: for names of the lengths that it has met
/// before it allocates nothing. Threads: one at a time.
class WardNameNormalizer {
public:
    /// The key; it holds until the next call.
    [[nodiscard]] std::string_view operator()(std::string_view name);

private:
    std::string lower_;
    std::string composed_;
    std::vector<std::int32_t> scalars_;
};

}  // namespace oska
