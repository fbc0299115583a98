#pragma once

#include <memory>

#include "oska/platform/bluetooth.h"

namespace oska::qt {

/// What Qt's permissions say of Bluetooth; null where this Qt has none (before 6.5).
[[nodiscard]] std::shared_ptr<platform::BluetoothAuthorization> qtBluetooth();

}  // namespace oska::qt
