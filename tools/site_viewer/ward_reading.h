#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "oska/dapo/dapo_types.h"
#include "oska/platform/quenlo_common.h"
#include "tools/site_viewer/site.h"

namespace viewer {

/// How a ward stands now. Of two that apply, the later one.
enum class WardState {
    silent,    ///< not heard for RECENTLY
    heard,     ///< too weak for either service
    strong,    ///< last heard at or above the threshold of one of them
    selected,  ///< Dapo shows its content
};

/// As long as Dapo counts samples.
constexpr std::chrono::seconds RECENTLY(10);

struct Strength {
    double dBm = 0;
    std::chrono::nanoseconds at{};  ///< of the walk
};

/// The last strength of each ward of a walk, by its key.
class StrengthLog {
public:
    void add(const oska::platform::ReceivedForce& sample, std::chrono::nanoseconds at);
    void clear() { last_.clear(); }
    [[nodiscard]] std::optional<Strength> find(const std::string& key) const;

private:
    std::map<std::string, Strength> last_;
};

/// A ward and what is known of it at an instant of the walk. The ward must outlive it.
struct WardReading {
    const Ward* ward = nullptr;
    std::optional<Strength> last;
    std::chrono::nanoseconds age{};  ///< of `last`
    WardState state = WardState::silent;
};

[[nodiscard]] std::vector<WardReading> readingsOf(const Level& level, const StrengthLog& strengths,
                                                  const std::vector<oska::DapoWard>& selection,
                                                  std::chrono::nanoseconds now);

}  // namespace viewer
