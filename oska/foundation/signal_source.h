#pragma once

#include <string_view>

#include "oska/foundation/log_message.h"
#include "oska/platform/bluetooth.h"

namespace oska {

/// What both services check before they start, and what they log of it. Each logs with the service's own tag;
/// none calls a delegate. Threads: that of the service's call; no state. Errors: a Bluetooth state that
/// cannot be read, because the provider throws, counts as unknown.

/// One or more ASCII letters, digits, underscores or hyphens, and nothing else.
[[nodiscard]] bool isValidServiceId(std::string_view id);

/// Whether the application may use Bluetooth; not asked yet counts as yes.
[[nodiscard]] bool checkBLEAuthorized(const platform::BluetoothAuthorization& bluetooth, const Log& log);

/// What both services log for `onRfdError`; nothing else happens.
void logGeneratorError(const Log& log, int code, std::string_view msg);

/// What both services log for an id that is not valid.
void logInvalidId(const Log& log, std::string_view id);

}  // namespace oska
