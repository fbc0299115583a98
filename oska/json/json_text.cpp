#include "oska/json/json_text.h"

#include <charconv>
#include <cstdint>

#include "oska/text/text.h"

namespace oska::json {
namespace {

// The character that a backslash and `c` stand for; 0 when they are not an escape.
char shortEscape(char c) {
    switch (c) {
        case '"':
        case '\\':
        case '/':
            return c;
        case 'b':
            return '\b';
        case 'f':
            return '\f';
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        default:
            return '\0';
    }
}

// The number XXXX of a \uXXXX escape at the beginning of `text`.
std::optional<std::uint32_t> unicodeEscape(std::string_view text) {
    if (text.size() < 6 || !text.starts_with("\\u")) return {};
    std::uint32_t value = 0;
    const char* const end = text.data() + 6;
    const auto [stop, error] = std::from_chars(text.data() + 2, end, value, 16);
    if (error != std::errc{} || stop != end) return {};
    return value;
}

bool isHighSurrogate(std::uint32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool isLowSurrogate(std::uint32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

// Appends the scalar of the \uXXXX escape, or of the surrogate pair of two such escapes, at the beginning of
// `text`. Returns their length in bytes, 0 when there is no valid escape.
std::size_t takeUnicodeEscape(std::string_view text, std::string& out) {
    const auto first = unicodeEscape(text);
    if (!first || isLowSurrogate(*first)) return 0;
    if (!isHighSurrogate(*first)) {
        text::appendScalar(out, static_cast<std::int32_t>(*first));
        return 6;
    }
    const auto second = unicodeEscape(text.substr(6));
    if (!second || !isLowSurrogate(*second)) return 0;
    const std::uint32_t scalar = 0x10000 + ((*first - 0xD800) << 10) + (*second - 0xDC00);
    text::appendScalar(out, static_cast<std::int32_t>(scalar));
    return 12;
}

std::size_t takeEscape(std::string_view text, std::string& out) {
    if (text.size() < 2) return 0;
    if (const char c = shortEscape(text[1])) {
        out += c;
        return 2;
    }
    return takeUnicodeEscape(text, out);
}

std::string byteName(char c) {
    constexpr std::string_view HEX_DIGITS = "0123456789abcdef";
    const unsigned byte = static_cast<unsigned char>(c);
    return std::string("byte 0x") + HEX_DIGITS[byte >> 4] + HEX_DIGITS[byte & 0xF];
}

}  // namespace

std::optional<std::size_t> unescape(std::string_view escaped, std::string& out) {
    out.clear();
    std::size_t at = 0;
    for (;;) {
        const std::size_t backslash = escaped.find('\\', at);
        out.append(escaped.substr(at, backslash - at));
        if (backslash == std::string_view::npos) return {};
        const std::size_t length = takeEscape(escaped.substr(backslash), out);
        if (length == 0) return backslash;
        at = backslash + length;
    }
}

std::string_view escapeAt(std::string_view escaped, std::size_t offset) {
    const std::string_view rest = escaped.substr(offset);
    if (rest.starts_with("\\u")) return rest.substr(0, 6);
    const std::string_view after = rest.substr(1);
    if (after.empty()) return rest;
    const text::Scalar first = text::firstScalar(after);
    return rest.substr(0, 1 + (first.value < 0 ? 0 : first.length));
}

std::optional<LexicalFault> findLexicalFault(std::string_view text) {
    bool inString = false;
    for (std::size_t at = 0; at < text.size();) {
        const char c = text[at];
        const auto [scalar, length] = text::firstScalar(text.substr(at));
        if (scalar < 0) return LexicalFault{at, "UTF-8", byteName(c)};
        if (inString && static_cast<unsigned char>(c) < 0x20)
            return LexicalFault{at, "an escape", byteName(c)};
        if (!inString && c == '\\') return LexicalFault{at, "a value", "a backslash"};
        if (c == '"') inString = !inString;
        // A quote after a backslash does not end the string. A control character or a character beyond ASCII
        // after a backslash is checked in the next round.
        at += c == '\\' && at + 1 < text.size() && text[at + 1] >= 0x20 ? 2 : length;
    }
    if (inString) return LexicalFault{text.size(), "a closing quote", "the end"};
    return {};
}

}  // namespace oska::json
