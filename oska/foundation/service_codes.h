#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace oska {

/// Why an initialisation failed; both services share the cases.
enum class ServiceInitErrorCode : int { UNKNOWN = -1, INVALID_ID = 0, RESOURCE_FAIL = 1 };

/// Why a start failed; both services share the cases.
enum class ServiceErrorCode : int {
    UNKNOWN = -1,
    NOT_INITIALIZED = 0,
    DUPLICATE_SERVICE = 1,
    BLE_NOT_AUTHORIZED = 2,
    GENERATOR_FAIL = 3,
};

/// The case with that raw value, or none. The whole 64 bits count: 2^32 + 1 is not 1.
[[nodiscard]] std::optional<ServiceInitErrorCode> serviceInitErrorCode(std::int64_t rawValue);
[[nodiscard]] std::optional<ServiceErrorCode> serviceErrorCode(std::int64_t rawValue);

/// The name of the case as it is spelt above.
[[nodiscard]] std::string_view caseName(ServiceInitErrorCode code);
[[nodiscard]] std::string_view caseName(ServiceErrorCode code);

}  // namespace oska
