#include "oska/pelio/pelio_ward_selection.h"

#include <numeric>
#include <utility>

namespace oska {
namespace {

template <class Visit>
void forEachWard(const PelioBundle& bundle, Visit visit) {
    for (const auto& building : bundle.buildings) {
        for (const auto& level : building.levels) {
            for (const auto& ward : level.wards) visit(building, level, ward);
        }
    }
}

}  // namespace

// Counts the wards of each name first and then puts each ward in its place: moving the nodes, which are
// large, would cost more than all the rest.
PelioWardSelection::PelioWardSelection(const PelioBundle& bundle) : maps_(bundle.buildings) {
    std::vector<WardNames::Number> names;
    forEachWard(bundle, [&](const auto&, const auto&, const auto& ward) {
        names.push_back(names_.add(ward.name, ward.rssi));
    });
    firstOfName_.assign(names_.size() + 1, 0);
    for (const auto name : names) ++firstOfName_[name + 1];
    std::partial_sum(firstOfName_.begin(), firstOfName_.end(), firstOfName_.begin());
    auto next = firstOfName_;
    wards_.resize(names.size());
    forEachWard(bundle,
                [&, name = names.begin()](const auto& building, const auto& level, const auto& ward) mutable {
                    wards_[next[*name++]++] = {ward.id,    ward.name, building.id, building.name, level.id,
                                               level.name, ward.x,    ward.y,      ward.rssi};
                });
}

const PelioWardNode* PelioWardSelection::handle(platform::ReceivedForce sample) {
    const auto now = sample.mobile_time;
    window_.append(std::move(sample), names_);
    const auto best = strongest();
    if (!best.ward) return nullptr;
    adopt(best, now);
    return current_->ward;
}

PelioWardSelection::Difference PelioWardSelection::difference(const Candidate& a, const Candidate& b) {
    if (a.observedRssi != b.observedRssi) return Difference::strength;
    if (a.ward->thresholdRssi != b.ward->thresholdRssi) return Difference::threshold;
    return a.ward->id != b.ward->id ? Difference::id : Difference::none;
}

bool PelioWardSelection::isBetter(const Candidate& a, const Candidate& b) {
    switch (difference(a, b)) {
        case Difference::strength:
            return a.observedRssi > b.observedRssi;
        case Difference::threshold:
            return a.ward->thresholdRssi > b.ward->thresholdRssi;
        case Difference::id:
            return a.ward->id < b.ward->id;
        case Difference::none:
            break;
    }
    return false;
}

std::span<const PelioWardNode> PelioWardSelection::wardsOf(WardNames::Number name) const {
    return std::span(wards_).subspan(firstOfName_[name], firstOfName_[name + 1] - firstOfName_[name]);
}

PelioWardSelection::Candidate PelioWardSelection::strongest() const {
    Candidate best;
    for (const auto& sample : window_.samples()) {
        for (const auto& [name, rssi] : sample.readings) {
            if (best.ward && rssi < best.observedRssi)
                continue;  // true for most readings: no ward is looked at
            for (const auto& ward : wardsOf(name)) {
                const Candidate candidate{&ward, {name, ward.id}, rssi};
                if (qualifies(ward, rssi) && (!best.ward || isBetter(candidate, best))) best = candidate;
            }
        }
    }
    return best;
}

void PelioWardSelection::adopt(const Candidate& best, std::int64_t now) {
    if (current_) {
        if (best.key == current_->key) return;
        if (!hasElapsed(RESULT_CHANGE_MIN_INTERVAL * 1000, current_->changedAt, now)) return;
    }
    current_ = Current{best.key, best.ward, now};
}

PelioWardSelection::Report PelioWardSelection::report(const PelioWardNode& ward,
                                                      std::int64_t mobileTime) const {
    const auto onMap = maps_.convertWardCoordinate(ward.levelId, ward.x, ward.y);
    const auto [x, y] = onMap.value_or(MapPoint{static_cast<double>(ward.x), static_cast<double>(ward.y)});
    return {{mobileTime, ward.buildingId, ward.buildingName, ward.levelId, ward.levelName, x, y},
            onMap.has_value()};
}

void PelioWardSelection::reset() {
    window_.clear();
    current_.reset();
}

}  // namespace oska
