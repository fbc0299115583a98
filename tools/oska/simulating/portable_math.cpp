#include "tools/oska/simulating/portable_math.h"

#include <cmath>

namespace oska::tool {
namespace {

constexpr double LOG10_OF_E = 0.43429448190325182765;
constexpr double LOG10_OF_2 = 0.30102999566398119521;
constexpr double SQRT_HALF = 0.70710678118654752440;

// ln m = 2 artanh((m - 1) / (m + 1)). For m within a square root of two from 1 the terms fall by 1/34 each.
double naturalLogNearOne(double m) {
    constexpr int TERMS = 12;
    const double s = (m - 1) / (m + 1);
    const double square = s * s;
    double sum = 0;
    for (int k = TERMS; k >= 0; --k) sum = sum * square + 1.0 / (2 * k + 1);
    return 2 * s * sum;
}

}  // namespace

double portableLog10(double x) {
    int exponent = 0;
    double mantissa = std::frexp(x, &exponent);  // exact
    if (mantissa < SQRT_HALF) {
        mantissa *= 2;
        --exponent;
    }
    return exponent * LOG10_OF_2 + naturalLogNearOne(mantissa) * LOG10_OF_E;
}

}  // namespace oska::tool
