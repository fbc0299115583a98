#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "oska/platform/quenlo_common.h"

namespace oska {

/// Milliseconds of mobile time are compared without overflow, whatever the stamps.

/// `now - then > limit`; a `then` that lies ahead of `now` has no age.
[[nodiscard]] bool isOlderThan(std::int64_t limit, std::int64_t then, std::int64_t now);

/// `now - then >= span`.
[[nodiscard]] bool hasElapsed(std::int64_t span, std::int64_t then, std::int64_t now);

/// The names of a site's wards, normalised, each with a dense number from 0.
///
/// A name as broadcast is normalised once and then remembered: radios repeat themselves. What is remembered
/// is bounded, because a busy street broadcasts names without end. Threads: one at a time, `find` included.
class WardNames {
public:
    using Number = std::uint32_t;

    /// The number of `name`, a new one when no equal name was added before.
    Number add(std::string_view name);

    /// The number of a name as broadcast.
    [[nodiscard]] std::optional<Number> find(std::string_view name) const;

    [[nodiscard]] std::size_t size() const { return numbers_.size(); }

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };
    template <class Value>
    using NameMap = std::unordered_map<std::string, Value, Hash, std::equal_to<>>;

    NameMap<Number> numbers_;                                 // by normalised name
    mutable NameMap<std::optional<Number>> rememberedNames_;  // by name as broadcast
};

/// What one sample says of one ward.
struct Reading {
    WardNames::Number ward;
    double strength;  ///< dBm
};

/// A sample of the window: as received, and resolved to the wards that are known.
struct BufferedRfdSample {
    std::int64_t mobileTime;  ///< milliseconds
    platform::ReceivedForce::Strengths rfs;
    std::vector<Reading> readings;
};

/// The samples of the last so many milliseconds of mobile time, oldest first as they came.
///
/// Each name is resolved once, when its sample arrives; an engine then rescans numbers, not names. The
/// samples are kept as received, too, so that the window outlives an index: see `resolveAgain`. Threads: one
/// at a time.
class SampleWindow {
public:
    explicit SampleWindow(std::int64_t lengthMilliseconds) : length_(lengthMilliseconds) {}

    /// Appends the sample and drops what is older than the window, measured from it. A sample exactly as old
    /// as the window stays, and so does one stamped later than the new one.
    void append(platform::ReceivedForce sample, const WardNames& names);

    /// To be called with each new index: what was heard before it counts for its wards.
    void resolveAgain(const WardNames& names);

    void clear() { samples_.clear(); }

    [[nodiscard]] const std::deque<BufferedRfdSample>& samples() const { return samples_; }

private:
    void prune(std::int64_t now);

    std::int64_t length_;
    std::deque<BufferedRfdSample> samples_;
};

}  // namespace oska
