#include "tools/oska/simulating/noise.h"

namespace oska::tool {
namespace {

constexpr std::uint64_t STEP = 0x9e3779b97f4a7c15;  // 2^64 divided by the golden ratio

// The finaliser of the SplitMix64 generator: every bit of the input moves every bit of the output.
std::uint64_t mixed(std::uint64_t bits) {
    bits = (bits ^ (bits >> 30)) * 0xbf58476d1ce4e5b9;
    bits = (bits ^ (bits >> 27)) * 0x94d049bb133111eb;
    return bits ^ (bits >> 31);
}

}  // namespace

std::uint64_t noiseKey(std::initializer_list<std::uint64_t> parts) {
    std::uint64_t key = 0;
    for (const auto part : parts) key = mixed((key ^ part) + STEP);
    return key;
}

std::uint64_t noiseKey(std::string_view text) {
    std::uint64_t key = text.size();
    for (const char byte : text) key = mixed((key ^ static_cast<unsigned char>(byte)) + STEP);
    return key;
}

double uniformNoise(std::uint64_t key) { return static_cast<double>(mixed(key + STEP) >> 11) * 0x1p-53; }

double normalNoise(std::uint64_t key) {
    double sum = -6;
    for (std::uint64_t i = 1; i <= 12; ++i) sum += uniformNoise(key + i * STEP);
    return sum;
}

}  // namespace oska::tool
