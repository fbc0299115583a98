#include "oska/foundation/service_codes.h"

namespace oska {

std::optional<ServiceInitErrorCode> serviceInitErrorCode(std::int64_t rawValue) {
    if (rawValue < -1 || rawValue > 1) return std::nullopt;
    return static_cast<ServiceInitErrorCode>(rawValue);
}

std::optional<ServiceErrorCode> serviceErrorCode(std::int64_t rawValue) {
    if (rawValue < -1 || rawValue > 3) return std::nullopt;
    return static_cast<ServiceErrorCode>(rawValue);
}

std::string_view caseName(ServiceInitErrorCode code) {
    switch (code) {
        case ServiceInitErrorCode::UNKNOWN:
            return "UNKNOWN";
        case ServiceInitErrorCode::INVALID_ID:
            return "INVALID_ID";
        case ServiceInitErrorCode::RESOURCE_FAIL:
            return "RESOURCE_FAIL";
    }
    return "UNKNOWN";
}

std::string_view caseName(ServiceErrorCode code) {
    switch (code) {
        case ServiceErrorCode::UNKNOWN:
            return "UNKNOWN";
        case ServiceErrorCode::NOT_INITIALIZED:
            return "NOT_INITIALIZED";
        case ServiceErrorCode::DUPLICATE_SERVICE:
            return "DUPLICATE_SERVICE";
        case ServiceErrorCode::BLE_NOT_AUTHORIZED:
            return "BLE_NOT_AUTHORIZED";
        case ServiceErrorCode::GENERATOR_FAIL:
            return "GENERATOR_FAIL";
    }
    return "UNKNOWN";
}

}  // namespace oska
