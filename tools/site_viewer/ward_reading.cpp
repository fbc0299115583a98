#include "tools/site_viewer/ward_reading.h"

#include <set>

#include "oska/foundation/ward_name.h"

namespace viewer {
namespace {

bool meets(double dBm, const std::optional<double>& threshold) { return threshold && dBm >= *threshold; }

WardState stateOf(const WardReading& reading, bool isSelected) {
    if (isSelected) return WardState::selected;
    if (!reading.last || reading.age > RECENTLY) return WardState::silent;
    const auto& ward = *reading.ward;
    const bool isStrong =
        meets(reading.last->dBm, ward.pelioThreshold) || meets(reading.last->dBm, ward.dapoThreshold);
    return isStrong ? WardState::strong : WardState::heard;
}

std::set<std::string> keysOn(std::int64_t levelId, const std::vector<oska::DapoWard>& selection) {
    std::set<std::string> keys;
    for (const auto& ward : selection) {
        if (ward.level_id == levelId) keys.insert(oska::normalizeWardName(ward.name));
    }
    return keys;
}

}  // namespace

void StrengthLog::add(const oska::platform::ReceivedForce& sample, std::chrono::nanoseconds at) {
    for (const auto& [name, dBm] : sample.rfs) last_[oska::normalizeWardName(name)] = {dBm, at};
}

std::optional<Strength> StrengthLog::find(const std::string& key) const {
    const auto found = last_.find(key);
    return found == last_.end() ? std::nullopt : std::optional(found->second);
}

std::vector<WardReading> readingsOf(const oska::tool::Site& site, std::size_t level,
                                    const StrengthLog& strengths,
                                    const std::vector<oska::DapoWard>& selection,
                                    std::chrono::nanoseconds now) {
    const auto selectedKeys = keysOn(site.levels[level].id, selection);
    std::vector<WardReading> readings;
    for (const auto* const ward : site.wardsOn(level)) {
        WardReading reading{.ward = ward, .last = strengths.find(ward->key)};
        if (reading.last) reading.age = now - reading.last->at;
        reading.state = stateOf(reading, selectedKeys.contains(ward->key));
        readings.push_back(reading);
    }
    return readings;
}

}  // namespace viewer
