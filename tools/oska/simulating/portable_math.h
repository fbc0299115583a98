#pragma once

namespace oska::tool {

/// The common logarithm, the same to the last bit on every machine with IEEE doubles, which that of the C
/// library is not; made of sums, products and quotients alone. Requires: x > 0 and finite.
[[nodiscard]] double portableLog10(double x);

}  // namespace oska::tool
