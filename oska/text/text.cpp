#include "oska/text/text.h"

#include <utf8proc.h>

#include <cstdint>
#include <cstring>

namespace oska::text {
namespace {

bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

bool isAsciiBlank(utf8proc_int32_t scalar) { return scalar == ' ' || (scalar >= '\n' && scalar <= '\r'); }

bool isBlank(utf8proc_int32_t scalar) {
    if (scalar < 0x80) return isAsciiBlank(scalar);
    if (scalar == 0x85) return true;
    const auto category = utf8proc_category(scalar);
    return category == UTF8PROC_CATEGORY_ZS || category == UTF8PROC_CATEGORY_ZL ||
           category == UTF8PROC_CATEGORY_ZP;
}

// Length in bytes of the blank that `text` starts with; 0 when it starts with something else.
std::size_t leadingBlank(std::string_view text) {
    if (text.empty()) return 0;
    if (isAscii(text.front())) return isAsciiBlank(text.front()) ? 1 : 0;
    const Scalar first = firstScalar(text);
    return first.value >= 0 && isBlank(first.value) ? first.length : 0;
}

std::size_t trailingBlank(std::string_view text) {
    constexpr std::size_t LONGEST_BLANK = 3;
    if (!text.empty() && isAscii(text.back())) return isAsciiBlank(text.back()) ? 1 : 0;
    for (std::size_t length = 1; length <= LONGEST_BLANK && length <= text.size(); ++length) {
        if (leadingBlank(text.substr(text.size() - length)) == length) return length;
    }
    return 0;
}

}  // namespace

bool isAscii(std::string_view text) {
    const auto eightAt = [&](std::size_t at) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, text.data() + at, sizeof eight);
        return eight;
    };
    constexpr std::size_t EIGHT = sizeof(std::uint64_t);
    std::uint64_t bits = 0;
    if (text.size() < EIGHT) {
        for (const char c : text) bits |= static_cast<unsigned char>(c);
        return bits < 0x80;
    }
    for (std::size_t at = 0; at + EIGHT < text.size(); at += EIGHT) {
        bits = eightAt(at) & 0x8080808080808080U;
        if (bits != 0) return false;
    }
    return (eightAt(text.size() - EIGHT) & 0x8080808080808080U) == 0;
}

bool isUtf8(std::string_view text) {
    if (isAscii(text)) return true;
    while (!text.empty()) {
        const Scalar first = firstScalar(text);
        if (first.value < 0) return false;
        text.remove_prefix(first.length);
    }
    return true;
}

std::string_view trimmed(std::string_view text) {
    while (const std::size_t length = leadingBlank(text)) text.remove_prefix(length);
    while (const std::size_t length = trailingBlank(text)) text.remove_suffix(length);
    return text;
}

}  // namespace oska::text
