#include "tools/oska/simulating/radio_model.h"

#include <algorithm>
#include <cmath>

#include "tools/oska/simulating/noise.h"

namespace oska::tool {
namespace {

constexpr double WARD_ABOVE_PHONE =
    1.5;                          // metres: wards hang under the ceiling, phones are held at the chest
constexpr double NEAREST = 0.1;   // metres; on a stair a phone can be where a ward hangs
constexpr double FADES_OUT = 10;  // dB above the weakest reading from which more and more are missed
constexpr double MISSED_AT_WEAKEST = 0.7;

using platform::LIVE_SCAN;

enum Purpose : std::uint64_t { FADING = 1, MISSING, SHADOWING };

double rounded(double strength) { return std::round(strength * 10) / 10; }

std::uint64_t cell(double coordinate) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(coordinate));
}

double distance(const Point3& a, const Point3& b) {
    const double x = b.x - a.x;
    const double y = b.y - a.y;
    const double z = b.z - a.z;
    return std::max(NEAREST, std::sqrt(x * x + y * y + z * z));
}

}  // namespace

RadioModel::RadioModel(const Site& site, const GroundPlan& ground, const Route& route, std::uint64_t seed)
    : site_(site), ground_(ground), floorHeight_(ground.floorHeight()), seed_(seed) {
    const auto radio = route.radio.value_or(RadioSettings{});
    strengthAtOneMetre_ = radio.strength_at_1m.value_or(-59);
    exponent_ = radio.exponent.value_or(2.4);
    shadowing_ = radio.shadowing.value_or(3);
    shadowingLength_ = radio.shadowing_length.value_or(4);
    fading_ = radio.fading.value_or(2);
    floorLoss_ = radio.floor_loss.value_or(16);
    wallLoss_ = radio.wall_loss.value_or(12);
    missed_ = radio.missed.value_or(0.08);
    for (const auto& ward : site.wards) {
        if (!ward.x || !ward.y) continue;
        const auto& level = site.levels[ward.level];
        auto point = ground.toGround(ward.level, static_cast<double>(*ward.x), static_cast<double>(*ward.y));
        point.z += WARD_ABOVE_PHONE;
        sources_.push_back({&ward, point,
                            noiseKey({noiseKey(ward.name), static_cast<std::uint64_t>(level.buildingId),
                                      static_cast<std::uint64_t>(level.id)})});
    }
}

platform::ReceivedForce::Strengths RadioModel::hear(const Position& phone, std::uint64_t sample) const {
    platform::ReceivedForce::Strengths strengths;
    for (const auto& source : sources_) {
        const auto strength = reading(source, phone, sample);
        if (!strength) continue;
        const auto [known, isNew] = strengths.try_emplace(source.ward->name, *strength);
        if (!isNew) known->second = std::max(known->second, *strength);
    }
    return strengths;
}

std::optional<double> RadioModel::reading(const Source& source, const Position& phone,
                                          std::uint64_t sample) const {
    if (isOutOfEarshot(source, phone)) return std::nullopt;
    const double fading = fading_ * normalNoise(noiseKey({seed_, FADING, source.key, sample}));
    const double strength = rounded(meanStrength(source, phone) + shadowing(source, phone) + fading);
    if (strength < LIVE_SCAN.minRssiThreshold) return std::nullopt;
    if (uniformNoise(noiseKey({seed_, MISSING, source.key, sample})) < chanceToMiss(strength))
        return std::nullopt;
    return std::min<double>(strength, LIVE_SCAN.maxRssiThreshold);
}

bool RadioModel::isOutOfEarshot(const Source& source, const Position& phone) const {
    const auto level = source.ward->level;
    return site_.levels[level].buildingId != site_.levels[phone.level].buildingId &&
           !(ground_.isPlaced(level) && ground_.isPlaced(phone.level));
}

double RadioModel::meanStrength(const Source& source, const Position& phone) const {
    const auto level = source.ward->level;
    const double floors =
        std::round(std::abs(ground_.height(level) - ground_.height(phone.level)) / floorHeight_);
    const bool isOtherBuilding = site_.levels[level].buildingId != site_.levels[phone.level].buildingId;
    return strengthAtOneMetre_ - 10 * exponent_ * std::log10(distance(source.point, phone.point)) -
           floorLoss_ * floors - (isOtherBuilding ? wallLoss_ : 0);
}

// Between the corners of a square grid with a value each; divided so that the deviation is the same
// everywhere.
double RadioModel::shadowing(const Source& source, const Position& phone) const {
    const double column = phone.point.x / shadowingLength_;
    const double row = phone.point.y / shadowingLength_;
    const double right = column - std::floor(column);
    const double down = row - std::floor(row);
    const auto corner = [&](std::uint64_t x, std::uint64_t y) {
        return normalNoise(noiseKey({seed_, SHADOWING, source.key, phone.level, cell(std::floor(column)) + x,
                                     cell(std::floor(row)) + y}));
    };
    const double weights[] = {(1 - right) * (1 - down), right * (1 - down), (1 - right) * down, right * down};
    const double values[] = {corner(0, 0), corner(1, 0), corner(0, 1), corner(1, 1)};
    double sum = 0;
    double squares = 0;
    for (int i = 0; i < 4; ++i) {
        sum += weights[i] * values[i];
        squares += weights[i] * weights[i];
    }
    return shadowing_ * sum / std::sqrt(squares);
}

double RadioModel::chanceToMiss(double strength) const {
    const double weakness = 1 - (strength - LIVE_SCAN.minRssiThreshold) / FADES_OUT;
    return std::max(missed_, MISSED_AT_WEAKEST * weakness);
}

}  // namespace oska::tool
