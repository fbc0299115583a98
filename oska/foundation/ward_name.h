#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace oska {

/// The key under which a ward's name is stored and looked up, for bundles and samples alike.
///
/// White space and line breaks at both ends are removed (see `text::trimmed`), the rest is changed to lower
/// case and then to the composed form of Unicode, so that canonically equivalent names have one key, byte for
/// byte. Nothing else is changed.
///
/// Threads: any. Never fails; a name of white space alone gives an empty key, and bytes that are not UTF-8
/// stay.
[[nodiscard]] std::string normalizeWardName(std::string_view name);

/// The same as `normalizeWardName`, for streams of names: it keeps its storage, so that it allocates only for
/// a name longer than those before. Threads: one at a time.
class WardNameNormalizer {
public:
    /// Returns the key of `name`. The view is valid until the next call.
    [[nodiscard]] std::string_view operator()(std::string_view name);

private:
    std::string lower_;
    std::string composed_;
    std::vector<std::int32_t> scalars_;
};

}  // namespace oska
