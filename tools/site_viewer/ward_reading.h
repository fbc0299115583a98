#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "oska/dapo/dapo_types.h"
#include "oska/platform/quenlo_common.h"
#include "tools/oska/site/site.h"

namespace viewer {

/// What is known of a ward now. Where two apply, the later one counts.
enum class WardState {
    silent,    ///< not received for RECENTLY
    heard,     ///< received, but below the thresholds of both services
    strong,    ///< last received at or above the threshold of a service
    selected,  ///< selected by Dapo
};

/// The length of Dapo's sample window.
constexpr std::chrono::seconds RECENTLY(10);

/// A received signal strength.
struct Strength {
    double dBm = 0;
    std::chrono::nanoseconds at{};  ///< time since the beginning of the walk
};

/// The last strength of each ward, by the key of the ward. Threads: one.
class StrengthLog {
public:
    void add(const oska::platform::ReceivedForce& sample, std::chrono::nanoseconds at);
    void clear() { last_.clear(); }
    [[nodiscard]] std::optional<Strength> find(const std::string& key) const;

private:
    std::map<std::string, Strength> last_;
};

/// A ward and its state at a time of the walk. The ward must outlive it.
struct WardReading {
    const oska::tool::SiteWard* ward = nullptr;
    std::optional<Strength> last;
    std::chrono::nanoseconds age{};  ///< time since `last`
    WardState state = WardState::silent;
};

/// The wards of a level at `now`, in the order of the site. `selection`: Dapo's.
[[nodiscard]] std::vector<WardReading> readingsOf(const oska::tool::Site& site, std::size_t level,
                                                  const StrengthLog& strengths,
                                                  const std::vector<oska::DapoWard>& selection,
                                                  std::chrono::nanoseconds now);

}  // namespace viewer
