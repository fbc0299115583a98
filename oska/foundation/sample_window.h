#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <vector>

#include "oska/foundation/ward_names.h"
#include "oska/platform/quenlo_common.h"

namespace oska {

/// Milliseconds of mobile time are compared without overflow, whatever the stamps.

/// `now - then > limit`; a `then` that lies ahead of `now` has no age.
[[nodiscard]] bool isOlderThan(std::int64_t limit, std::int64_t then, std::int64_t now);

/// `now - then >= span`.
[[nodiscard]] bool hasElapsed(std::int64_t span, std::int64_t then, std::int64_t now);

/// What one sample says of one ward.
struct Reading {
    WardNames::Number ward;
    double strength;  ///< dBm
};

/// A sample of the window: as received, and resolved to the wards that are known.
struct BufferedRfdSample {
    std::int64_t mobileTime = 0;  ///< milliseconds
    platform::ReceivedForce::Strengths rfs;
    std::vector<Reading> readings;  ///< without those that are below every threshold of their name
};

/// The samples of the last so many milliseconds of mobile time, oldest first as they came.
///
/// Each name is resolved once, when its sample arrives; an engine then rescans numbers, not names. The
/// samples are kept as received, too, so that the window outlives an index: see `resolveAgain`. A sample that
/// leaves hands its storage on to one that comes, so that a full window allocates nothing. Threads: one at a
/// time.
class SampleWindow {
public:
    explicit SampleWindow(std::int64_t lengthMilliseconds) : length_(lengthMilliseconds) {}

    /// Appends the sample and drops what is older than the window, measured from it. A sample exactly as old
    /// as the window stays, and so does one stamped later than the new one.
    void append(platform::ReceivedForce sample, const WardNames& names);

    /// To be called with each new index: what was heard before it counts for its wards.
    void resolveAgain(const WardNames& names);

    void clear();

    [[nodiscard]] const std::list<BufferedRfdSample>& samples() const { return samples_; }

private:
    using Samples = std::list<BufferedRfdSample>;

    void prune(std::int64_t now);
    void resolve(BufferedRfdSample& sample, const WardNames& names);
    void provideSpare();

    std::int64_t length_;
    Samples samples_;
    Samples spare_;         // left the window; without names
    std::size_t room_ = 0;  // for readings, in each sample
};

}  // namespace oska
