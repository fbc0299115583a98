#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "oska/foundation/network_constants.h"
#include "oska/json/result.h"
#include "oska/platform/quenlo_common.h"

namespace oska::tool {

/// What a host did; named as in recordings.
enum class ActionKind {
    start,
    stop,
    initialize,
    tap,
    foreground,
    setVisibility,
    setSelectionInterval,
    setUnchangedDeliveryInterval,
};

struct Action {
    ActionKind kind = ActionKind::start;
    bool forceUpdate = false;       ///< of initialize
    bool isVisible = false;         ///< of setVisibility
    std::optional<double> seconds;  ///< of the intervals; nullopt only for setUnchangedDeliveryInterval
};

/// One line of a recording: what was received, or what the host did, and when by the phone's clock.
struct RecordedLine {
    std::int64_t mobileTime = 0;  ///< milliseconds
    std::variant<platform::ReceivedForce, Action> what;
};

/// The line as a sample or an action, or the reason why it is neither: `"mobile_time" is not an integer`. A
/// line is one JSON object: a sample (with `rfs`) or an action (with `action`), never both. Unknown keys are
/// ignored. `service` decides which actions are valid.
[[nodiscard]] Result<RecordedLine, std::string> parseRecordedLine(std::string_view line, OskaService service);

}  // namespace oska::tool
