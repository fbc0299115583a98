#include "oska/url/url_encoding.h"

#include <idn2.h>
#include <utf8proc.h>

#include <algorithm>
#include <memory>

#include "oska/text/text.h"

namespace oska {
namespace {

constexpr bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

// REQUIRES: `c` is a hexadecimal digit.
constexpr int hexValue(char c) { return isDigit(c) ? c - '0' : (c | 0x20) - 'a' + 10; }

bool startsWithEscape(std::string_view text) {
    return text.size() >= 3 && text[0] == '%' && isHexDigit(text[1]) && isHexDigit(text[2]);
}

bool consistsOf(std::string_view text, const UrlCharacters& allowed) {
    return std::all_of(text.begin(), text.end(), [&](char c) { return allowed.contains(c); });
}

struct IdnaResult {
    int code;
    std::optional<std::string> form;
};

IdnaResult idnaForm(const std::string& host, int mode) {
    char* converted = nullptr;
    const int code = idn2_to_ascii_8z(host.c_str(), &converted, IDN2_NFC_INPUT | mode);
    const std::unique_ptr<char, decltype(&idn2_free)> form(converted, &idn2_free);
    if (code != IDN2_OK || !form) return {code, std::nullopt};
    return {code, form.get()};
}

bool isWrittenRightToLeft(utf8proc_int32_t scalar) {
    const auto direction = utf8proc_get_property(scalar)->bidi_class;
    return direction == UTF8PROC_BIDI_CLASS_R || direction == UTF8PROC_BIDI_CLASS_AL ||
           direction == UTF8PROC_BIDI_CLASS_AN;
}

// Whether transitional mode would be wrong: it replaces sharp s, final sigma and the joiners, and does not
// check the direction of writing.
bool needsStrictMode(std::string_view host) {
    constexpr std::array<utf8proc_int32_t, 4> DEVIATIONS{0xDF, 0x3C2, 0x200C, 0x200D};
    while (!host.empty()) {
        const auto [scalar, length] = text::firstScalar(host);
        if (std::find(DEVIATIONS.begin(), DEVIATIONS.end(), scalar) != DEVIATIONS.end()) return true;
        if (isWrittenRightToLeft(scalar)) return true;
        host.remove_prefix(length);
    }
    return false;
}

std::optional<std::string> idnaForm(std::string_view host) {
    // Names longer than 255 bytes cannot be looked up, and the time grows with the square of a label's
    // length.
    constexpr std::size_t LONGEST_CONVERTED = 1024;
    if (host.size() > LONGEST_CONVERTED) return std::nullopt;
    const std::string text(host);
    auto strict = idnaForm(text, IDN2_NONTRANSITIONAL);
    // Symbols are allowed in names, but libidn2 accepts them in transitional mode only. The same goes for
    // characters of Unicode versions that are newer than its strict table.
    const bool isRefused = strict.code == IDN2_DISALLOWED || strict.code == IDN2_UNASSIGNED;
    const bool mayBeSymbol = isRefused && !needsStrictMode(text);
    return mayBeSymbol ? idnaForm(text, IDN2_TRANSITIONAL).form : std::move(strict.form);
}

std::optional<std::string> encodedName(std::string_view host) {
    if (isEncoded(host, HOST_CHARACTERS)) return std::string(host);
    const auto mayBeConverted = [](char c) {
        return static_cast<unsigned char>(c) >= 0x80 || HOST_CHARACTERS.contains(c);
    };
    if (!std::all_of(host.begin(), host.end(), mayBeConverted)) return std::nullopt;
    auto name = idnaForm(host);
    // Compatibility characters can become delimiters: U+2100 becomes "a/c".
    if (!name || name->empty() || !consistsOf(*name, HOST_CHARACTERS)) return std::nullopt;
    return name;
}

std::string encodedZone(std::string_view zone) {
    constexpr std::string_view ESCAPED_PERCENT = "25";
    if (zone.starts_with(ESCAPED_PERCENT)) zone.remove_prefix(ESCAPED_PERCENT.size());
    return "%25" + encodedWhereNeeded(zone, HOST_CHARACTERS);
}

// `address` is the text between the brackets.
std::optional<std::string> encodedAddress(std::string_view address) {
    const auto zoneMark = std::min(address.find('%'), address.size());
    const auto number = address.substr(0, zoneMark);
    if (number.empty() || !consistsOf(number, ADDRESS_CHARACTERS)) return std::nullopt;
    std::string encoded(number);
    if (zoneMark < address.size()) encoded += encodedZone(address.substr(zoneMark + 1));
    return "[" + encoded + "]";
}

}  // namespace

bool isEncoded(std::string_view text, const UrlCharacters& allowed) {
    while (!text.empty()) {
        const bool escape = startsWithEscape(text);
        if (!escape && !allowed.contains(text.front())) return false;
        text.remove_prefix(escape ? 3 : 1);
    }
    return true;
}

std::string percentEncoded(std::string_view text, const UrlCharacters& allowed) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(text.size());
    for (const char c : text) {
        if (allowed.contains(c)) {
            encoded += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        encoded += {'%', DIGITS[byte >> 4U], DIGITS[byte & 0xFU]};
    }
    return encoded;
}

std::string percentDecoded(std::string_view text) {
    constexpr std::string_view ESCAPED_NUL = "%00";
    std::string decoded;
    decoded.reserve(text.size());
    while (!text.empty()) {
        const bool escape = startsWithEscape(text) && !text.starts_with(ESCAPED_NUL);
        decoded += escape ? static_cast<char>(hexValue(text[1]) << 4 | hexValue(text[2])) : text.front();
        text.remove_prefix(escape ? 3 : 1);
    }
    return decoded;
}

std::string encodedWhereNeeded(std::string_view text, const UrlCharacters& allowed) {
    return isEncoded(text, allowed) ? std::string(text) : percentEncoded(text, allowed);
}

std::optional<std::string> encodedHost(std::string_view host) {
    if (!host.starts_with('[')) return encodedName(host);
    return encodedAddress(host.substr(1, host.size() - 2));
}

}  // namespace oska
