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

/// To the nearest integer, halves away from zero, limited to 64 bits.
std::int64_t roundedToInteger(double strength) {
    constexpr double LIMIT = 0x1p63;
    const double rounded = std::round(strength);
    if (rounded >= LIMIT) return std::numeric_limits<std::int64_t>::max();
    if (rounded < -LIMIT) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(rounded);
}

bool comesBefore(const IndexedDapoWard& a, const IndexedDapoWard& b) {
    return a.id != b.id ? a.id < b.id : text::CanonicalLess{}(a.name, b.name);
}

/// The wards that can be detected, in the order of delivery. Of wards with one name that is the last.
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
    for (const auto& ward : wards_) names_.add(ward.name, static_cast<double>(ward.thresholdRssi));
    tallies_.assign(wards_.size(), {});
    countsFrom_ = 0;
    qualified_.setLimit(wards_.size());
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

DapoDetection::Detected DapoDetection::handle(platform::ReceivedForce sample) {
    bufferedRfds_.append(std::move(sample), names_);
    qualify();
    Detected detected;
    detected.wards.reserve(qualified_.size());
    qualified_.drain([&](std::size_t number) {
        const auto& ward = wards_[number];
        const auto onMap = maps_.convertWardCoordinate(ward.levelId, ward.x, ward.y);
        if (!onMap) detected.levelsWithoutMap.push_back(ward.levelId);
        const auto [x, y] =
            onMap.value_or(MapPoint{static_cast<double>(ward.x), static_cast<double>(ward.y)});
        detected.wards.push_back({ward.id, ward.levelId, ward.name, x, y, ward.thresholdRssi,
                                  roundedToInteger(tallies_[number].strongest), ward.contents});
    });
    return detected;
}

void DapoDetection::qualify() {
    std::uint64_t highest = countsFrom_;
    for (const auto& sample : bufferedRfds_.samples()) {
        for (const auto& [ward, strength] : sample.readings) {
            if (strength == std::numeric_limits<double>::infinity()) continue;
            auto& tally = tallies_[ward];
            const bool isFirst = tally.count <= countsFrom_;
            tally.strongest = isFirst ? strength : std::max(tally.strongest, strength);
            tally.count = std::max(tally.count, countsFrom_) + 1;
            highest = std::max(highest, tally.count);
            if (tally.count == countsFrom_ + RFD_TRIGGER_COUNT) qualified_.insert(ward);
        }
    }
    countsFrom_ = highest;
}

}  // namespace oska
