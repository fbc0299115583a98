#pragma once

#include <string_view>

#include "oska/foundation/log_message.h"
#include "oska/platform/bluetooth.h"

namespace oska {

/// What both services check before they start, and what they log about it, each with its own tag. No delegate
/// is called here. Threads: any; no state.

/// Whether `id` is one or more ASCII letters, digits, underscores or hyphens, and nothing else.
[[nodiscard]] bool isValidServiceId(std::string_view id);

/// Whether the application may use Bluetooth, also when the user has not been asked yet. A provider that
/// throws counts as one with an unknown state: no.
[[nodiscard]] bool checkBLEAuthorized(const platform::BluetoothAuthorization& bluetooth, const Log& log);

/// Logs a fault that the generator reports.
void logGeneratorError(const Log& log, int code, std::string_view msg);

/// Logs that an id is not valid.
void logInvalidId(const Log& log, std::string_view id);

}  // namespace oska
