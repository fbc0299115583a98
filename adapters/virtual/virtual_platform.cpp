#include "adapters/virtual/virtual_platform.h"

namespace oska::virtual_world {

VirtualPlatform::VirtualPlatform(platform::WallTime start)
    : time_(std::make_shared<VirtualMainQueue>(start)),
      server_(std::make_shared<MemoryServer>(time_)),
      auth_(std::make_shared<FixedToken>(std::string("token"))),
      bluetooth_(std::make_shared<SettableBluetooth>()) {}

VirtualPlatform::~VirtualPlatform() {
    server_->shutDown();
    time_->stop();
}

platform::Platform VirtualPlatform::platform() const {
    return {.mainQueue = time_,
            .clock = time_,
            .http = server_,
            .bluetooth = bluetooth_,
            .auth = auth_,
            .makeRFDGenerator = source_.factory()};
}

}  // namespace oska::virtual_world
