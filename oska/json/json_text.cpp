#include "oska/json/json_text.h"

#include <charconv>
#include <cstdint>

namespace oska::json {
namespace {

constexpr std::string_view HEX_DIGITS = "0123456789abcdef";

bool isBetween(char c, unsigned first, unsigned last) {
    const unsigned byte = static_cast<unsigned char>(c);
    return byte >= first && byte <= last;
}

// The Unicode Standard, table 3-7: which second byte a lead byte allows, so that overlong forms, surrogates
// and values beyond U+10FFFF are out.
bool isSecondByte(unsigned lead, char second) {
    switch (lead) {
        case 0xE0:
            return isBetween(second, 0xA0, 0xBF);
        case 0xED:
            return isBetween(second, 0x80, 0x9F);
        case 0xF0:
            return isBetween(second, 0x90, 0xBF);
        case 0xF4:
            return isBetween(second, 0x80, 0x8F);
        default:
            return isContinuationByte(second);
    }
}

std::size_t announcedLength(unsigned lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    return 0;
}

void appendCharacter(std::string& out, std::uint32_t c) {
    const auto byte = [&out](std::uint32_t value) { out += static_cast<char>(value); };
    if (c < 0x80) {
        byte(c);
        return;
    }
    if (c < 0x800) {
        byte(0xC0 | c >> 6);
    } else if (c < 0x10000) {
        byte(0xE0 | c >> 12);
        byte(0x80 | (c >> 6 & 0x3F));
    } else {
        byte(0xF0 | c >> 18);
        byte(0x80 | (c >> 12 & 0x3F));
        byte(0x80 | (c >> 6 & 0x3F));
    }
    byte(0x80 | (c & 0x3F));
}

// What stands after the backslash in the escapes of two characters; 0 for anything else.
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

// The number of a \uXXXX escape at the beginning of `text`.
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

// Appends what the \uXXXX escape, or the two of a surrogate pair, at the beginning of `text` stand for;
// answers its length, 0 when there is none.
std::size_t takeUnicodeEscape(std::string_view text, std::string& out) {
    const auto first = unicodeEscape(text);
    if (!first || isLowSurrogate(*first)) return 0;
    if (!isHighSurrogate(*first)) {
        appendCharacter(out, *first);
        return 6;
    }
    const auto second = unicodeEscape(text.substr(6));
    if (!second || !isLowSurrogate(*second)) return 0;
    appendCharacter(out, 0x10000 + ((*first - 0xD800) << 10) + (*second - 0xDC00));
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
    const unsigned byte = static_cast<unsigned char>(c);
    return std::string("byte 0x") + HEX_DIGITS[byte >> 4] + HEX_DIGITS[byte & 0xF];
}

}  // namespace

std::size_t characterLength(std::string_view text) {
    if (text.empty()) return 0;
    const unsigned lead = static_cast<unsigned char>(text[0]);
    const std::size_t length = announcedLength(lead);
    if (length < 2) return length;
    if (text.size() < length || !isSecondByte(lead, text[1])) return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if (!isContinuationByte(text[i])) return 0;
    }
    return length;
}

void appendUnicodeEscape(std::string& out, char c) {
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
    return rest.substr(0, 1 + characterLength(rest.substr(1)));
}

std::optional<LexicalFault> findLexicalFault(std::string_view text) {
    bool inString = false;
    for (std::size_t at = 0; at < text.size();) {
        const char c = text[at];
        const std::size_t length = characterLength(text.substr(at));
        if (length == 0) return LexicalFault{at, "UTF-8", byteName(c)};
        if (inString && static_cast<unsigned char>(c) < 0x20)
            return LexicalFault{at, "an escape", byteName(c)};
        if (!inString && c == '\\') return LexicalFault{at, "a value", "a backslash"};
        if (c == '"') inString = !inString;
        // The character after a backslash is no end of the string; it is looked at on its own when it is not
        // ASCII.
        at += c == '\\' && at + 1 < text.size() && text[at + 1] >= 0x20 ? 2 : length;
    }
    if (inString) return LexicalFault{text.size(), "a closing quote", "the end"};
    return {};
}

}  // namespace oska::json
