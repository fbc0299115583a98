#pragma once

namespace oska::platform {

/// Whether the application may use Bluetooth. The raw values are the phone platform's, which may add more: a
/// service refuses to start at a value that is not named here.
enum class BluetoothAuthorizationState : int {
    notDetermined = 0,  ///< the user has not been asked yet; a service starts
    restricted = 1,     ///< not allowed, and the user cannot change it; a service does not start
    denied = 2,         ///< the user has refused; a service does not start
    allowedAlways = 3   ///< a service starts
};

/// Reads the application's right to use Bluetooth. A host or an adapter implements it; the services ask
/// nothing else of the phone's Bluetooth, whose signals reach them through a generator.
class BluetoothAuthorization {
public:
    virtual ~BluetoothAuthorization() = default;

    /// The state at this moment. Called at every start of a service, on the thread of that start; must not
    /// block. Threads: any. An exception counts as an unknown state.
    [[nodiscard]] virtual BluetoothAuthorizationState authorization() const = 0;
};

}  // namespace oska::platform
