#include "oska/foundation/signal_source.h"

#include <algorithm>

namespace oska {
namespace {

bool isIdCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

// A state that cannot be read counts as one that the platform has added.
platform::BluetoothAuthorizationState authorizationOf(const platform::BluetoothAuthorization& bluetooth) {
    try {
        return bluetooth.authorization();
    } catch (...) {
        return static_cast<platform::BluetoothAuthorizationState>(-1);
    }
}

}  // namespace

bool isValidServiceId(std::string_view id) {
    return !id.empty() && std::all_of(id.begin(), id.end(), isIdCharacter);
}

bool checkBLEAuthorized(const platform::BluetoothAuthorization& bluetooth, const Log& log) {
    switch (authorizationOf(bluetooth)) {
        case platform::BluetoothAuthorizationState::notDetermined:
        case platform::BluetoothAuthorizationState::allowedAlways:
            return true;
        case platform::BluetoothAuthorizationState::restricted:
        case platform::BluetoothAuthorizationState::denied:
            log.error("checkBLEAuthorized", "bluetooth authorization denied or restricted");
            return false;
    }
    log.warn("checkBLEAuthorized", "unknown bluetooth authorization state");
    return false;
}

void logGeneratorError(const Log& log, int code, std::string_view msg) {
    log.error("onRfdError", "code = " + std::to_string(code) + ", msg = " + std::string(msg));
}

void logInvalidId(const Log& log, std::string_view id) {
    log.error("initialize", "invalid ID", {{"ID", id}});
}

}  // namespace oska
