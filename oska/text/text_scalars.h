#pragma once

#include <utf8proc.h>

#include <cstddef>
#include <string>
#include <string_view>

/// The step between UTF-8 and scalars, shared by the sources behind text.h.
namespace oska::text {

struct Scalar {
    utf8proc_int32_t value;  // negative: the first byte starts no UTF-8
    std::size_t length;      // in bytes; 1 for a byte that is no UTF-8
};

/// REQUIRES: `text` is not empty.
inline Scalar firstScalar(std::string_view text) {
    utf8proc_int32_t value = -1;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &value);
    if (length <= 0) return {-1, 1};
    return {value, static_cast<std::size_t>(length)};
}

inline void appendScalar(std::string& text, utf8proc_int32_t scalar) {
    utf8proc_uint8_t bytes[4];
    const auto length = utf8proc_encode_char(scalar, bytes);
    text.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

}  // namespace oska::text
