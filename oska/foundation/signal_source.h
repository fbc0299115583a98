#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "oska/foundation/log_message.h"
#include "oska/platform/platform.h"

namespace oska {

/// The steps that both services share to check their id and to run the signal generator. Each logs with the
/// service's own tag; none of them calls a delegate. Threads: that of the service's call; no state.

/// One or more ASCII letters, digits, underscores or hyphens, and nothing else.
[[nodiscard]] bool isValidServiceId(std::string_view id);

/// Whether the application may use Bluetooth; not asked yet counts as yes.
[[nodiscard]] bool checkBLEAuthorized(const platform::BluetoothAuthorization& bluetooth, const Log& log);

/// A new idle generator, or null, which is logged.
[[nodiscard]] std::shared_ptr<platform::RFDGenerator> createGenerator(
    const platform::RFDGeneratorFactory& make, const Log& log, std::string_view id);

struct GeneratorStart {
    std::string id;
    std::optional<platform::ScanMode> scanMode;  ///< none: the generator's default
    std::weak_ptr<platform::RFDGeneratorDelegate> delegate;
    std::weak_ptr<const std::atomic<float>> pressure;  ///< of the service; told as 0 when that is gone
};

/// Configures and starts the generator: live with -100 to -40 dBm, or from recorded data while the process is
/// in replay mode. False, and logged, when it is not available; it is idle then.
[[nodiscard]] bool startGenerator(platform::RFDGenerator& generator, const Log& log, GeneratorStart start);

/// Stops the generator and lets go of the service. Without one, logs that `operation` was skipped.
void stopGenerator(const std::shared_ptr<platform::RFDGenerator>& generator, const Log& log,
                   std::string_view operation);

/// What both services log for `onRfdError`; nothing else happens.
void logGeneratorError(const Log& log, int code, std::string_view msg);

/// What both services log for an id that is not valid.
void logInvalidId(const Log& log, std::string_view id);

}  // namespace oska
