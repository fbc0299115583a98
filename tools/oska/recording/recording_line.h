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
    std::optional<double> seconds;  ///< of the intervals; only setUnchangedDeliveryInterval may have none
};

/// One line of a recording: what was received, or what the host did, and when by the phone's clock.
struct RecordedLine {
    std::int64_t mobileTime = 0;  ///< milliseconds
    std::variant<platform::ReceivedForce, Action> what;
};

/// What the line says to a host of `service`, or why it says nothing: `"mobile_time" is not an integer`. A
/// line is one JSON object, a sample (with `rfs`) or an action (with `action`), never both; keys that it does
/// not need are ignored.
[[nodiscard]] Result<RecordedLine, std::string> parseRecordedLine(std::string_view line, OskaService service);

}  // namespace oska::tool
