#pragma once

#include <cstdint>
#include <string_view>

// Number tokens by the grammar of RFC 8259, section 6, and their exact values.
namespace oska::json {

enum class NumberReading {
    read,
    notANumber,  ///< the grammar has no such token
    fraction,    ///< a number, but no integer
    outOfRange,  ///< a number beyond what the wanted type holds
};

/// The integer that `token` stands for, however it is spelt (7, 7.0, 70e-1), computed without rounding.
NumberReading parseInteger(std::string_view token, std::int64_t& value);

/// The double nearest to `token`; a smaller magnitude than any double's is zero, a larger one `outOfRange`.
/// Keeps the sign of zero. Whatever the locale.
NumberReading parseReal(std::string_view token, double& value);

bool isNumber(std::string_view token);

}  // namespace oska::json
