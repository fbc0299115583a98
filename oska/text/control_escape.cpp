#include "oska/text/control_escape.h"

#include <string_view>

namespace oska::text {

void appendUnicodeEscape(std::string& out, char c) {
    constexpr std::string_view HEX_DIGITS = "0123456789abcdef";
    const unsigned byte = static_cast<unsigned char>(c);
    out += "\\u00";
    out += HEX_DIGITS[byte >> 4];
    out += HEX_DIGITS[byte & 0xF];
}

void appendControlEscape(std::string& out, char c) {
    constexpr std::string_view ESCAPED = "\b\f\n\r\t";
    constexpr std::string_view ESCAPES = "bfnrt";
    const std::size_t known = ESCAPED.find(c);
    if (known == std::string_view::npos) return appendUnicodeEscape(out, c);
    out += '\\';
    out += ESCAPES[known];
}

}  // namespace oska::text
