#include "oska/json/json_number.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

namespace oska::json {
namespace {

constexpr std::uint64_t LARGEST_INTEGER = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t DIGITS_OF_LARGEST_INTEGER = 19;

// Larger exponents are cut to this one. No text has so many digits that the difference could matter, and sums
// of exponents and lengths cannot overflow.
constexpr std::int64_t LARGEST_EXPONENT = std::int64_t{1} << 60;

struct Spelling {
    bool isNegative = false;
    std::string_view whole;     // at least one digit
    std::string_view fraction;  // may be empty
    std::int64_t exponent = 0;
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool take(std::string_view& rest, char c) {
    if (!rest.starts_with(c)) return false;
    rest.remove_prefix(1);
    return true;
}

std::string_view takeDigits(std::string_view& rest) {
    const auto stop = std::find_if_not(rest.begin(), rest.end(), isDigit);
    const auto length = static_cast<std::size_t>(stop - rest.begin());
    const std::string_view digits = rest.substr(0, length);
    rest.remove_prefix(length);
    return digits;
}

std::int64_t saturated(std::string_view digits) {
    std::int64_t value = 0;
    for (const char c : digits) {
        if (value > LARGEST_EXPONENT / 10 - 1) return LARGEST_EXPONENT;
        value = value * 10 + (c - '0');
    }
    return value;
}

bool takeFraction(std::string_view& rest, Spelling& spelling) {
    if (!take(rest, '.')) return true;
    spelling.fraction = takeDigits(rest);
    return !spelling.fraction.empty();
}

bool takeExponent(std::string_view& rest, Spelling& spelling) {
    if (!take(rest, 'e') && !take(rest, 'E')) return true;
    const bool isNegative = take(rest, '-');
    if (!isNegative) take(rest, '+');
    const std::string_view digits = takeDigits(rest);
    spelling.exponent = isNegative ? -saturated(digits) : saturated(digits);
    return !digits.empty();
}

std::optional<Spelling> spellingOf(std::string_view token) {
    Spelling spelling;
    spelling.isNegative = take(token, '-');
    spelling.whole = takeDigits(token);
    if (spelling.whole.empty() || (spelling.whole.size() > 1 && spelling.whole.front() == '0')) return {};
    if (!takeFraction(token, spelling) || !takeExponent(token, spelling) || !token.empty()) return {};
    return spelling;
}

// A number without leading and trailing zeros: the digits of `leading`, then those of `trailing`, times ten
// to the power of `exponent`. Only zero has no leading digits.
struct Decimal {
    std::string_view leading;
    std::string_view trailing;
    std::int64_t exponent = 0;

    [[nodiscard]] bool isZero() const { return leading.empty(); }

    // The number of digits before the decimal point: 10^(magnitude - 1) <= value < 10^magnitude.
    [[nodiscard]] std::int64_t magnitude() const {
        return static_cast<std::int64_t>(leading.size() + trailing.size()) + exponent;
    }
};

void stripLeadingZeros(std::string_view& digits) {
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
}

std::int64_t stripTrailingZeros(std::string_view& digits) {
    const std::size_t before = digits.size();
    digits = digits.substr(0, digits.find_last_not_of('0') + 1);
    return static_cast<std::int64_t>(before - digits.size());
}

Decimal decimalOf(const Spelling& spelling) {
    Decimal decimal{spelling.whole, spelling.fraction,
                    spelling.exponent - static_cast<std::int64_t>(spelling.fraction.size())};
    stripLeadingZeros(decimal.leading);
    if (decimal.leading.empty()) {
        stripLeadingZeros(decimal.trailing);
        std::swap(decimal.leading, decimal.trailing);
    }
    decimal.exponent += stripTrailingZeros(decimal.trailing);
    if (decimal.trailing.empty()) decimal.exponent += stripTrailingZeros(decimal.leading);
    return decimal;
}

std::uint64_t appendDigits(std::uint64_t value, std::string_view digits) {
    for (const char c : digits) value = value * 10 + static_cast<std::uint64_t>(c - '0');
    return value;
}

// REQUIRES: an integer of at most 19 digits.
std::uint64_t wholeValueOf(const Decimal& decimal) {
    std::uint64_t value = appendDigits(appendDigits(0, decimal.leading), decimal.trailing);
    for (std::int64_t i = 0; i < decimal.exponent; ++i) value *= 10;
    return value;
}

NumberReading parseExactly(const Spelling& spelling, std::int64_t& value) {
    const Decimal decimal = decimalOf(spelling);
    if (decimal.isZero()) {
        value = 0;
        return NumberReading::read;
    }
    // The last digit is not zero, so a negative exponent means a fraction.
    if (decimal.exponent < 0) return NumberReading::fraction;
    if (decimal.magnitude() > DIGITS_OF_LARGEST_INTEGER) return NumberReading::outOfRange;
    const std::uint64_t whole = wholeValueOf(decimal);
    if (whole > LARGEST_INTEGER + (spelling.isNegative ? 1 : 0)) return NumberReading::outOfRange;
    value = static_cast<std::int64_t>(spelling.isNegative ? 0 - whole : whole);
    return NumberReading::read;
}

// The quick way for most integers of a document: only digits, too few to overflow. Returns false when the
// full way must be taken.
bool parsePlainInteger(std::string_view token, std::int64_t& value) {
    const bool isNegative = take(token, '-');
    if (token.empty() || token.size() >= DIGITS_OF_LARGEST_INTEGER) return false;
    if (token.size() > 1 && token.front() == '0') return false;
    std::int64_t magnitude = 0;
    for (const char c : token) {
        if (!isDigit(c)) return false;
        magnitude = magnitude * 10 + (c - '0');
    }
    value = isNegative ? -magnitude : magnitude;
    return true;
}

}  // namespace

NumberReading parseInteger(std::string_view token, std::int64_t& value) {
    if (parsePlainInteger(token, value)) return NumberReading::read;
    const auto spelling = spellingOf(token);
    if (!spelling) return NumberReading::notANumber;
    return parseExactly(*spelling, value);
}

NumberReading parseReal(std::string_view token, double& value) {
    const auto spelling = spellingOf(token);
    if (!spelling) return NumberReading::notANumber;
    const auto error = std::from_chars(token.data(), token.data() + token.size(), value).ec;
    if (error == std::errc{}) return NumberReading::read;
    // from_chars reports the same error for too large and too small.
    if (decimalOf(*spelling).magnitude() > 0) return NumberReading::outOfRange;
    value = spelling->isNegative ? -0.0 : 0.0;
    return NumberReading::read;
}

bool isNumber(std::string_view token) { return spellingOf(token).has_value(); }

}  // namespace oska::json
