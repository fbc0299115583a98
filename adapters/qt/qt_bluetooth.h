#pragma once

#include <memory>

#include "oska/platform/bluetooth.h"

namespace oska::qt {

/// The application's Bluetooth permission as Qt reports it; null when this Qt has no permissions
/// (before 6.5).
[[nodiscard]] std::shared_ptr<platform::BluetoothAuthorization> qtBluetooth();

}  // namespace oska::qt
