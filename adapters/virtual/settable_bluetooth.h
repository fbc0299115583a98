#pragma once

#include <atomic>

#include "oska/platform/bluetooth.h"

namespace oska::virtual_world {

/// A Bluetooth authorisation that a test or a simulation sets; `allowedAlways` at the beginning.
///
///     world.bluetooth().set(BluetoothAuthorizationState::denied);
///
/// Threads: any. Nobody is notified of a change: services ask when they start, and a service that runs goes
/// on.
class SettableBluetooth final : public platform::BluetoothAuthorization {
public:
    /// `authorization` returns `state` from now on.
    void set(platform::BluetoothAuthorizationState state) { state_.store(state); }

    /// What was last set.
    [[nodiscard]] platform::BluetoothAuthorizationState authorization() const override {
        return state_.load();
    }

private:
    // Atomic, because a service may ask on another thread.
    std::atomic<platform::BluetoothAuthorizationState> state_{
        platform::BluetoothAuthorizationState::allowedAlways};
};

}  // namespace oska::virtual_world
