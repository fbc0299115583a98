#pragma once

#include <httplib.h>

#include <cstddef>
#include <vector>

namespace oska::tool {

/// What a client's range means in a content: never empty, and never beyond the content.
struct BytePart {
    std::size_t offset;
    std::size_t length;
};

/// The ranges of the header Range, which the library then knows nothing of any more. It would cut them out of
/// every body, a refusal's too, at the offsets that the client wrote, whether the body has them or not.
[[nodiscard]] httplib::Ranges takeRanges(const httplib::Request& request);

/// What a content of `size` bytes has of the ranges, in their order; those that begin behind its end are
/// left out.
[[nodiscard]] std::vector<BytePart> partsOf(const httplib::Ranges& ranges, std::size_t size);

}  // namespace oska::tool
