#include "adapters/native/native_platform.h"

#include <utility>

#include "adapters/native/curl_http_session.h"
#include "adapters/native/system_wall_clock.h"

namespace oska::native {
namespace {

using platform::RFDGeneratorDelegate;
using platform::TokenFailure;
using platform::TokenFailureReason;
using platform::TokenResult;

class NobodySignedIn final : public platform::QuenloAuthManager {
public:
    void getAccessToken(bool, std::function<void(TokenResult)> completion) override {
        completion(TokenFailure{.reason = TokenFailureReason::notSignedIn,
                                .message = "The host has not given the platform a token provider."});
    }
};

class AlwaysAllowed final : public platform::BluetoothAuthorization {
public:
    [[nodiscard]] platform::BluetoothAuthorizationState authorization() const override {
        return platform::BluetoothAuthorizationState::allowedAlways;
    }
};

/// A generator that is not available and does nothing.
class NoRadio final : public platform::RFDGenerator {
public:
    platform::RfdAvailability checkIsAvailableRfd() override {
        return {.available = false, .message = "no radio is attached to the platform"};
    }
    void setScanMode(platform::ScanMode) override {}
    void setDelegate(std::weak_ptr<RFDGeneratorDelegate>) override {}
    void setPressureProvider(std::function<float()>) override {}
    void generateRfd(const platform::RfdOptions&) override {}
    void generateReplayRfd() override {}
    void stopRfdGeneration() override {}
};

platform::Platform assemble(std::shared_ptr<RunLoop> runLoop,
                            std::shared_ptr<platform::HttpSessionFactory> http,
                            NativePlatformOptions options) {
    if (!options.auth) options.auth = std::make_shared<NobodySignedIn>();
    if (!options.bluetooth) options.bluetooth = std::make_shared<AlwaysAllowed>();
    if (!options.makeRFDGenerator) options.makeRFDGenerator = [] { return std::make_shared<NoRadio>(); };
    return {.mainQueue = std::move(runLoop),
            .clock = std::make_shared<SystemWallClock>(),
            .http = std::move(http),
            .bluetooth = std::move(options.bluetooth),
            .auth = std::move(options.auth),
            .makeRFDGenerator = std::move(options.makeRFDGenerator)};
}

}  // namespace

NativePlatform::NativePlatform(NativePlatformOptions options)
    : runLoop_(std::make_shared<RunLoop>(std::move(options.wake))),
      http_(std::make_shared<CurlHttpSessionFactory>(std::move(options.caFile))),
      platform_(assemble(runLoop_, http_, std::move(options))) {}

NativePlatform::~NativePlatform() { shutDown(); }

void NativePlatform::shutDown() {
    http_->shutDown();
    if (runLoop_->isMainThread()) runLoop_->pump();
    runLoop_->stop();
}

}  // namespace oska::native
