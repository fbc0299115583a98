#pragma once

#include <CLI/CLI.hpp>

namespace oska::tool {

/// What options check their values with; the parser itself would read 012 as ten and take infinity for a
/// duration.

/// A decimal integer.
[[nodiscard]] CLI::Validator decimalInteger();

/// An instant of a recording: a decimal integer from zero on.
[[nodiscard]] CLI::Validator instant();

/// A finite number that is not negative.
[[nodiscard]] CLI::Validator seconds();

/// A finite number above zero.
[[nodiscard]] CLI::Validator factor();

}  // namespace oska::tool
