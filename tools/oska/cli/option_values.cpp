#include "tools/oska/cli/option_values.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

namespace oska::tool {
namespace {

template <class Number>
std::optional<Number> parsed(const std::string& text) {
    Number value{};
    const auto* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    return result.ec == std::errc() && result.ptr == end ? std::optional(value) : std::nullopt;
}

// Writes the number again without leading zeros, which would make it octal.
std::string checkInteger(std::string& text) {
    const auto value = parsed<std::int64_t>(text);
    if (!value) return text + " is not an integer of 64 bits";
    text = std::to_string(*value);
    return {};
}

std::string checkInstant(std::string& text) {
    const auto problem = text + " is not an instant; it takes whole milliseconds, from 0 on";
    return checkInteger(text).empty() && !text.starts_with('-') ? std::string() : problem;
}

std::optional<double> finite(const std::string& text) {
    const auto value = parsed<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::string checkSeconds(const std::string& text) {
    return finite(text).value_or(-1) >= 0 ? std::string() : text + " is not a number of seconds";
}

std::string checkFactor(const std::string& text) {
    return finite(text).value_or(0) > 0 ? std::string() : text + " is not a number above 0";
}

}  // namespace

CLI::Validator decimalInteger() { return CLI::Validator(checkInteger, ""); }

CLI::Validator instant() { return CLI::Validator(checkInstant, ""); }

CLI::Validator seconds() {
    return CLI::Validator([](std::string& text) { return checkSeconds(text); }, "");
}

CLI::Validator factor() {
    return CLI::Validator([](std::string& text) { return checkFactor(text); }, "");
}

}  // namespace oska::tool
