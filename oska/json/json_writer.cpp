#include "oska/json/json_writer.h"

#include <charconv>
#include <cmath>
#include <cstring>

#include "oska/json/json_path.h"
#include "oska/text/control_escape.h"
#include "oska/text/text.h"

namespace oska::json {
namespace {

constexpr std::string_view REPLACEMENT_CHARACTER = "\xEF\xBF\xBD";

// Doubles from 1e-4 up to 2^53, below which every integer is a double, are written without an exponent.
constexpr double SMALLEST_PLAIN = 1e-4;
constexpr double LARGEST_PLAIN = 9007199254740992.0;

constexpr std::size_t LONGEST_NUMBER = 32;

// Whether `c` is written as it is. `third` is the third special character, beside quote and backslash; a
// quote when there is no third one.
bool isPlain(char c, char third) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 && byte < 0x80 && byte != '"' && byte != '\\' && c != third;
}

// Whether eight bytes are all plain, tested at once. The formulas are from "Bit Twiddling Hacks": "a byte
// less than n" and "a zero byte".
bool areEightPlain(const char* bytes, char third) {
    constexpr std::uint64_t ONES = 0x0101010101010101;
    constexpr std::uint64_t HIGH_BITS = 0x8080808080808080;
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    const std::uint64_t quote = word ^ (ONES * '"');
    const std::uint64_t backslash = word ^ (ONES * '\\');
    const std::uint64_t other = word ^ (ONES * static_cast<unsigned char>(third));
    const std::uint64_t special =
        (word - ONES * 0x20) | (quote - ONES) | (backslash - ONES) | (other - ONES) | word;
    return (special & HIGH_BITS) == 0;
}

std::size_t plainLength(std::string_view text, char third) {
    std::size_t length = 0;
    while (text.size() - length >= 8 && areEightPlain(text.data() + length, third)) length += 8;
    while (length < text.size() && isPlain(text[length], third)) ++length;
    return length;
}

void appendEscaped(std::string& out, char c) {
    if (static_cast<unsigned char>(c) < 0x20) return text::appendControlEscape(out, c);
    out += '\\';
    out += c;
}

// Appends the first character of `text`, which is not plain. Returns its length in bytes.
std::size_t appendSpecial(std::string& out, std::string_view text) {
    const auto [scalar, length] = text::firstScalar(text);
    if (scalar < 0) {
        out += REPLACEMENT_CHARACTER;
    } else if (scalar < 0x80) {
        appendEscaped(out, text.front());
    } else {
        out += text.substr(0, length);
    }
    return length;
}

std::string_view nameOf(double value) {
    if (std::isnan(value)) return "Double.nan";
    return value > 0 ? "Double.infinity" : "-Double.infinity";
}

}  // namespace

void appendText(std::string& out, std::string_view text, Slashes slashes) {
    const char third = slashes == Slashes::escaped ? '/' : '"';
    out += '"';
    while (!text.empty()) {
        const std::size_t plain = plainLength(text, third);
        out += text.substr(0, plain);
        text.remove_prefix(plain);
        if (!text.empty()) text.remove_prefix(appendSpecial(out, text));
    }
    out += '"';
}

void appendInteger(std::string& out, std::int64_t value) {
    char digits[LONGEST_NUMBER];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

bool appendReal(std::string& out, double value) {
    if (!std::isfinite(value)) return false;
    const double magnitude = std::fabs(value);
    const bool isPlainNotation = value == 0 || (magnitude >= SMALLEST_PLAIN && magnitude <= LARGEST_PLAIN);
    const auto format = isPlainNotation ? std::chars_format::fixed : std::chars_format::scientific;
    char digits[LONGEST_NUMBER];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, value, format).ptr);
    return true;
}

bool Writer::writeReal(double value) {
    if (appendReal(text_, value)) return true;
    error_.problem = "Unable to encode " + std::string(nameOf(value)) + " directly in JSON.";
    return false;
}

bool Writer::failedIn(std::string_view key) {
    prependKey(error_.path, key);
    return false;
}

bool Writer::failedIn(std::size_t element) {
    prependIndex(error_.path, element);
    return false;
}

}  // namespace oska::json
