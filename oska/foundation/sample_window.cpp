#include "oska/foundation/sample_window.h"

#include <algorithm>

#include "oska/foundation/ward_name.h"

namespace oska {
namespace {

constexpr std::size_t MAX_REMEMBERED_NAMES = 8192;

std::vector<Reading> resolved(const platform::ReceivedForce::Strengths& rfs, const WardNames& names) {
    std::vector<Reading> readings;
    readings.reserve(rfs.size());
    for (const auto& [name, strength] : rfs) {
        if (const auto ward = names.find(name)) readings.push_back({*ward, strength});
    }
    return readings;
}

std::uint64_t distance(std::int64_t from, std::int64_t to) {
    return static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
}

}  // namespace

bool isOlderThan(std::int64_t limit, std::int64_t then, std::int64_t now) {
    return now > then && distance(then, now) > static_cast<std::uint64_t>(limit);
}

bool hasElapsed(std::int64_t span, std::int64_t then, std::int64_t now) {
    return now >= then && distance(then, now) >= static_cast<std::uint64_t>(span);
}

WardNames::Number WardNames::add(std::string_view name) {
    rememberedNames_.clear();
    return numbers_.try_emplace(normalizeWardName(name), static_cast<Number>(numbers_.size())).first->second;
}

std::optional<WardNames::Number> WardNames::find(std::string_view name) const {
    if (const auto remembered = rememberedNames_.find(name); remembered != rememberedNames_.end()) {
        return remembered->second;
    }
    std::optional<Number> number;
    if (const auto known = numbers_.find(normalizeWardName(name)); known != numbers_.end())
        number = known->second;
    if (rememberedNames_.size() == MAX_REMEMBERED_NAMES) rememberedNames_.clear();
    rememberedNames_.emplace(name, number);
    return number;
}

void SampleWindow::append(platform::ReceivedForce sample, const WardNames& names) {
    auto readings = resolved(sample.rfs, names);
    samples_.push_back({sample.mobile_time, std::move(sample.rfs), std::move(readings)});
    prune(sample.mobile_time);
}

void SampleWindow::prune(std::int64_t now) {
    const auto expired = [&](const BufferedRfdSample& sample) {
        return isOlderThan(length_, sample.mobileTime, now);
    };
    while (expired(samples_.front())) samples_.pop_front();  // ends at the newest: it has no age
    std::erase_if(samples_, expired);
}

void SampleWindow::resolveAgain(const WardNames& names) {
    for (auto& sample : samples_) sample.readings = resolved(sample.rfs, names);
}

}  // namespace oska
