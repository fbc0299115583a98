#include "oska/dapo/dapo_detection.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "oska/dapo/dapo_sector.h"
#include "oska/foundation/ward_name.h"

namespace oska {
namespace {

IndexedDapoWard indexed(const DapoLevel& level, const DapoLevelWard& ward) {
    return {ward.id,   ward.name,         level.id, ward.x.value_or(0), ward.y.value_or(0),
            ward.rssi, wardContents(ward)};
}

constexpr double NOTHING_HEARD = -std::numeric_limits<double>::infinity();

/// To the nearest, halves away from zero; beyond 64 bits the end of their range.
std::int64_t roundedToInteger(double strength) {
    constexpr double LIMIT = 0x1p63;
    const double rounded = std::round(strength);
    if (rounded >= LIMIT) return std::numeric_limits<std::int64_t>::max();
    if (rounded < -LIMIT) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(rounded);
}

bool comesBefore(const IndexedDapoWard& a, const IndexedDapoWard& b) {
    return a.id != b.id ? a.id < b.id : platform::text::CanonicalLess{}(a.name, b.name);
}

/// The wards that can be detected, in the order in which they are delivered: of those with one name the last.
std::vector<IndexedDapoWard> wardsOf(const std::vector<DapoBuilding>& buildings) {
    WardNames names;
    std::vector<IndexedDapoWard> wards;
    for (const auto& building : buildings) {
        for (const auto& level : building.levels) {
            for (const auto& ward : level.wards) {
                const auto name = names.add(ward.name);
                if (name == wards.size()) wards.emplace_back();
                wards[name] = indexed(level, ward);
            }
        }
    }
    std::sort(wards.begin(), wards.end(), comesBefore);
    return wards;
}

}  // namespace

void DapoDetection::indexDapoWards(const std::vector<DapoBuilding>& buildings) {
    wards_ = wardsOf(buildings);
    names_ = {};
    thresholds_.clear();
    for (const auto& ward : wards_) {
        names_.add(ward.name);
        thresholds_.push_back(static_cast<double>(ward.thresholdRssi));
    }
    bufferedRfds_.resolveAgain(names_);
}

void DapoDetection::clearIndexes() {
    indexDapoWards({});
    indexDapoMapImages({});
}

std::map<std::string, IndexedDapoWard> DapoDetection::indexedDapoWardsByName() const {
    std::map<std::string, IndexedDapoWard> byName;
    for (const auto& ward : wards_) byName.emplace(normalizeWardName(ward.name), ward);
    return byName;
}

std::vector<DapoWard> DapoDetection::handle(platform::ReceivedForce sample, const Log& log) {
    bufferedRfds_.append(std::move(sample), names_);
    std::vector<DapoWard> wards;
    if (qualify() < RFD_TRIGGER_COUNT) return wards;
    for (std::size_t i = 0; i < wards_.size(); ++i) {
        if (readings_[i] >= RFD_TRIGGER_COUNT) wards.push_back(detected(wards_[i], strongest_[i], log));
    }
    return wards;
}

std::uint32_t DapoDetection::qualify() {
    std::uint32_t most = 0;
    readings_.assign(wards_.size(), 0);
    strongest_.assign(wards_.size(), NOTHING_HEARD);
    for (const auto& sample : bufferedRfds_.samples()) {
        for (const auto& [ward, strength] : sample.readings) {
            const bool counts = qualifies(strength, thresholds_[ward]);
            readings_[ward] += counts;
            strongest_[ward] = std::max(strongest_[ward], counts ? strength : strongest_[ward]);
            most = std::max(most, readings_[ward]);
        }
    }
    return most;
}

DapoWard DapoDetection::detected(const IndexedDapoWard& ward, double strongest, const Log& log) const {
    const auto [x, y] = maps_.convertWardCoordinate(ward.levelId, ward.x, ward.y, log);
    return {ward.id,      ward.levelId, ward.name, x, y, ward.thresholdRssi, roundedToInteger(strongest),
            ward.contents};
}

}  // namespace oska
