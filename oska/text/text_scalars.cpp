// The kit's only UTF-8 decoder and encoder.
#include <utf8proc.h>

#include "oska/text/text.h"

namespace oska::text {

Scalar firstScalar(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80) return {lead, 1};
    std::int32_t value = -1;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &value);
    if (length <= 0) return {-1, 1};
    return {value, static_cast<std::size_t>(length)};
}

void appendScalar(std::string& text, std::int32_t scalar) {
    utf8proc_uint8_t bytes[4];
    const auto length = utf8proc_encode_char(scalar, bytes);
    text.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

}  // namespace oska::text
