#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace oska::tool {

/// Chance as a pure function: the same keys give the same values, on every machine and in any order of calls.
/// The standard library's distributions promise neither.

/// A key made of parts, their order counting.
[[nodiscard]] std::uint64_t noiseKey(std::initializer_list<std::uint64_t> parts);
[[nodiscard]] std::uint64_t noiseKey(std::string_view text);

/// Even from 0 to below 1.
[[nodiscard]] double uniformNoise(std::uint64_t key);

/// Bell-shaped with mean 0 and deviation 1, and never beyond 6: the sum of twelve even ones.
[[nodiscard]] double normalNoise(std::uint64_t key);

}  // namespace oska::tool
