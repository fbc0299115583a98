#pragma once

namespace oska::platform {

/// Whether the application may use Bluetooth; the raw values are the platform's, which may add more.
enum class BluetoothAuthorizationState : int {
    notDetermined = 0,
    restricted = 1,
    denied = 2,
    allowedAlways = 3
};

/// Asked at every start of a service, on the thread of that start. Threads: any.
class BluetoothAuthorization {
public:
    virtual ~BluetoothAuthorization() = default;
    [[nodiscard]] virtual BluetoothAuthorizationState authorization() const = 0;
};

}  // namespace oska::platform
