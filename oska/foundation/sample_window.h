#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <vector>

#include "oska/foundation/ward_names.h"
#include "oska/platform/quenlo_common.h"

namespace oska {

// Comparisons of mobile times, in milliseconds. They do not overflow for any two 64-bit times.

/// Whether `now - then > limit`. False when `then` is later than `now`. Requires: `limit` is not negative.
[[nodiscard]] bool isOlderThan(std::int64_t limit, std::int64_t then, std::int64_t now);

/// Whether `now - then >= span`. False when `then` is later than `now`. Requires: `span` is not negative.
[[nodiscard]] bool hasElapsed(std::int64_t span, std::int64_t then, std::int64_t now);

/// How strongly one sample has received one ward name. A sample has one reading for each spelling of the
/// name.
struct Reading {
    WardNames::Number ward;  ///< the number of the name
    double strength;         ///< dBm
};

/// One sample of the window: as received, and resolved to the known names.
struct BufferedRfdSample {
    std::int64_t mobileTime = 0;             ///< milliseconds
    platform::ReceivedForce::Strengths rfs;  ///< dBm by name, as the generator has sent it
    /// The readings that can count: of known names, and not below every threshold of their name.
    std::vector<Reading> readings;
};

/// The samples of the last milliseconds of mobile time, in the order in which they came.
///
/// Each name is resolved once, when its sample arrives, so that an engine scans numbers and not names. The
/// window also keeps each sample as received, so that it can be used with new names: see `resolveAgain`. A
/// new sample takes the storage of one that has left: a full window allocates no memory. Threads: one at a
/// time. Errors: none.
class SampleWindow {
public:
    /// An empty window of that length, not negative.
    explicit SampleWindow(std::int64_t lengthMilliseconds) : length_(lengthMilliseconds) {}

    /// Appends the sample and drops the samples that are older than the length of the window, compared with
    /// the new one. A sample of exactly that age stays, and so does one that is later than the new one.
    void append(platform::ReceivedForce sample, const WardNames& names);

    /// Resolves all samples of the window with other names. To be called whenever the names have changed;
    /// until then the readings have the numbers of the old names.
    void resolveAgain(const WardNames& names);

    /// Drops all samples and their storage. The next samples allocate memory again until the window is full.
    void clear();

    /// In the order in which they came, which is oldest first as long as the clock does not run back. Valid
    /// until the next change of the window.
    [[nodiscard]] const std::list<BufferedRfdSample>& samples() const { return samples_; }

private:
    using Samples = std::list<BufferedRfdSample>;

    void prune(std::int64_t now);
    void resolve(BufferedRfdSample& sample, const WardNames& names);
    void provideSpare();

    std::int64_t length_;
    Samples samples_;
    Samples spare_;         // samples that have left the window, kept for their storage; without names
    std::size_t room_ = 0;  // the number of readings that each sample reserves storage for
};

}  // namespace oska
