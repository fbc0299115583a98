#include <cstdio>

#include "adapters/native/native_platform.h"
#include "oska/pelio/pelio_service_manager.h"

struct Host : oska::PelioServiceManagerDelegate {
    using Service = oska::PelioServiceManager;
    void onInitSuccess(Service& service, bool success, std::optional<oska::PelioInitErrorCode>) override {
        if (success) service.startService();
    }
    void onPelioSuccess(Service&, bool, std::optional<oska::PelioErrorCode>) override {}
    void onPelioResult(Service&, const oska::PelioResult& at) override {
        std::printf("%s, %s: %.1f, %.1f\n", at.building_name.c_str(), at.level_name.c_str(), at.x, at.y);
    }
};

int main() {
    oska::native::NativePlatform native;  // .auth: your tokens, .makeRFDGenerator: your radio
    oska::platform::install(native.platform());
    const auto host = std::make_shared<Host>();
    const auto service = oska::PelioServiceManager::create({.id = "demo", .region = "KOREA", .sectorId = 12});
    service->setDelegate(host);
    native.runLoop().run();
}
