#include "oska/foundation/sample_window.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <utility>

namespace oska {
namespace {

constexpr std::size_t LEAST_ROOM = 64;     // readings
constexpr std::size_t MOST_ROOM = 4096;    // readings: one large sample reserves no more in all others
constexpr std::size_t SPARE_SAMPLES = 64;  // kept even when fewer are in use

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

void SampleWindow::append(platform::ReceivedForce sample, const WardNames& names) {
    prune(sample.mobile_time);
    if (spare_.empty()) provideSpare();
    auto& buffered = spare_.front();
    buffered.mobileTime = sample.mobile_time;
    buffered.rfs = std::move(sample.rfs);
    resolve(buffered, names);
    samples_.splice(samples_.end(), spare_, spare_.begin());
}

void SampleWindow::prune(std::int64_t now) {
    for (auto sample = samples_.begin(); sample != samples_.end();) {
        const auto next = std::next(sample);
        if (isOlderThan(length_, sample->mobileTime, now)) {
            sample->rfs.clear();
            spare_.splice(spare_.end(), samples_, sample);
        }
        sample = next;
    }
    while (spare_.size() > std::max(samples_.size(), SPARE_SAMPLES)) spare_.pop_back();
}

// As many as are in use, so that a window whose size varies a little soon allocates no more.
void SampleWindow::provideSpare() {
    spare_.resize(std::max<std::size_t>(samples_.size(), 1));
    for (auto& sample : spare_) sample.readings.reserve(std::max(room_, LEAST_ROOM));
}

// Every sample reserves storage for the largest one: the next sample in the same storage may be as large.
void SampleWindow::resolve(BufferedRfdSample& sample, const WardNames& names) {
    const auto needed = std::bit_ceil(sample.rfs.size());
    room_ = std::max(room_, std::min(needed, MOST_ROOM));
    sample.readings.clear();
    sample.readings.reserve(std::max(room_, needed));
    for (const auto& [name, strength] : sample.rfs) {
        const auto ward = names.find(name);
        if (ward && names.canCount(*ward, strength)) sample.readings.push_back({*ward, strength});
    }
}

void SampleWindow::resolveAgain(const WardNames& names) {
    for (auto& sample : samples_) resolve(sample, names);
}

void SampleWindow::clear() {
    samples_.clear();
    spare_.clear();
    room_ = 0;
}

}  // namespace oska
