#pragma once

#include <httplib.h>

#include <cstddef>
#include <vector>

namespace oska::tool {

/// The part of a content that a client's range names: never empty, never beyond the end.
struct BytePart {
    std::size_t offset;
    std::size_t length;
};

/// Takes the ranges of the header Range out of the request. Otherwise the library would cut them out of every
/// body, of a refusal's too, at offsets that the body may not have.
[[nodiscard]] httplib::Ranges takeRanges(const httplib::Request& request);

/// The parts of a content of `size` bytes that the ranges name, in their order. Ranges that begin after its
/// end are left out.
[[nodiscard]] std::vector<BytePart> partsOf(const httplib::Ranges& ranges, std::size_t size);

}  // namespace oska::tool
