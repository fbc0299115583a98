#pragma once

#include <atomic>

#include "oska/platform/bluetooth.h"

namespace oska::virtual_world {

/// An authorisation that is what it was set to; allowed at the beginning.
/// Threads: any.
class SettableBluetooth final : public platform::BluetoothAuthorization {
public:
    void set(platform::BluetoothAuthorizationState state) { state_.store(state); }
    [[nodiscard]] platform::BluetoothAuthorizationState authorization() const override {
        return state_.load();
    }

private:
    std::atomic<platform::BluetoothAuthorizationState> state_{
        platform::BluetoothAuthorizationState::allowedAlways};
};

}  // namespace oska::virtual_world
