#pragma once

#include <cstdint>
#include <string_view>

// The values of number tokens. The grammar is that of RFC 8259, section 6; the locale has no influence.
namespace oska::json {

enum class NumberReading {
    read,        ///< `value` is set
    notANumber,  ///< the token is not a number by the grammar
    fraction,    ///< a number, but not an integer
    outOfRange,  ///< a number that is too large for the wanted type
};

/// The integer that `token` stands for, however it is spelled (7, 7.0, 70e-1). Computed without rounding.
NumberReading parseInteger(std::string_view token, std::int64_t& value);

/// The double nearest to `token`. A number too close to zero is zero; one too large is `outOfRange`. The sign
/// of zero is kept.
NumberReading parseReal(std::string_view token, double& value);

/// Whether `token` is a number by the grammar, of any size.
bool isNumber(std::string_view token);

}  // namespace oska::json
