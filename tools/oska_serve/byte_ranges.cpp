#include "tools/oska_serve/byte_ranges.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace oska::tool {
namespace {

// In a range, -1 is an end that the client left out: "5-" is (5, -1), and "-5", the last five bytes, is (-1,
// 5).
std::optional<BytePart> partOf(const httplib::Range& range, ssize_t size) {
    const bool isSuffix = range.first < 0 && range.second >= 0;
    const bool isOpen = range.second < 0;
    const auto first = std::max<ssize_t>(0, isSuffix ? size - range.second : range.first);
    const auto last = isSuffix || isOpen ? size - 1 : std::min(range.second, size - 1);
    if (first > last) return std::nullopt;
    return BytePart{static_cast<std::size_t>(first), static_cast<std::size_t>(last - first) + 1};
}

}  // namespace

httplib::Ranges takeRanges(const httplib::Request& request) {
    // The request is the library's own object and is not const; only handlers get it as const.
    return std::exchange(const_cast<httplib::Request&>(request).ranges, {});
}

std::vector<BytePart> partsOf(const httplib::Ranges& ranges, std::size_t size) {
    std::vector<BytePart> parts;
    for (const auto& range : ranges) {
        if (const auto part = partOf(range, static_cast<ssize_t>(size))) parts.push_back(*part);
    }
    return parts;
}

}  // namespace oska::tool
