#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace oska {

/// Why an initialisation failed. Both services use these cases and raw values, each under a name of its own.
enum class ServiceInitErrorCode : int {
    UNKNOWN = -1,       ///< not used by the kit
    INVALID_ID = 0,     ///< the id is empty or has characters other than ASCII letters, digits, _ and -
    RESOURCE_FAIL = 1,  ///< there is no bundle for the sector; the log says why
};

/// Why a start failed. Both services use these cases and raw values, each under a name of its own. They are
/// checked in the order of their raw values; the first that fails is reported.
enum class ServiceErrorCode : int {
    UNKNOWN = -1,            ///< not used by the kit
    NOT_INITIALIZED = 0,     ///< no initialisation has succeeded
    DUPLICATE_SERVICE = 1,   ///< the service has been started already
    BLE_NOT_AUTHORIZED = 2,  ///< the application may not use Bluetooth
    GENERATOR_FAIL = 3,      ///< there is no signal generator, or it cannot run now; the log says why
};

/// The case with that raw value, or nullopt. The whole 64 bits count: 2^32 + 1 is not 1.
[[nodiscard]] std::optional<ServiceInitErrorCode> serviceInitErrorCode(std::int64_t rawValue);
/// The same for the codes of a start.
[[nodiscard]] std::optional<ServiceErrorCode> serviceErrorCode(std::int64_t rawValue);

/// The name of the case as it is spelt above: "INVALID_ID".
[[nodiscard]] std::string_view caseName(ServiceInitErrorCode code);
/// The same for the codes of a start.
[[nodiscard]] std::string_view caseName(ServiceErrorCode code);

}  // namespace oska
