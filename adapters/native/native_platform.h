#pragma once

#include <functional>
#include <memory>
#include <string>

#include "adapters/native/run_loop.h"
#include "oska/platform/platform.h"

namespace oska::native {

/// What a host brings to the native platform. Every member may be left out.
struct NativePlatformOptions {
    /// Provides access tokens. Null: every request for a token fails as `notSignedIn`.
    std::shared_ptr<platform::QuenloAuthManager> auth = {};
    /// Whether the application may use Bluetooth. Null: it always may.
    std::shared_ptr<platform::BluetoothAuthorization> bluetooth = {};
    /// Makes the generators of radio samples. Empty: generators that say that they are not available.
    platform::RFDGeneratorFactory makeRFDGenerator = {};
    /// Path of a PEM file with certificates of authorities to trust besides the system's; empty for none.
    std::string caFile = {};
    /// The wake hook for a host with a loop of its own; see `RunLoop`.
    std::function<void()> wake = {};
};

/// The real world: HTTP over libcurl, the system's clock, and a main queue on the standard library.
///
///     oska::native::NativePlatform native({.auth = myTokens});
///     oska::platform::install(native.platform());
///     ...
///     native.runLoop().run();
///     native.shutDown();
///
/// Threads: constructed on the main thread; `platform` and `runLoop` may be called on any thread.
/// Lifetime: destroying it shuts it down. The parts that an installed platform holds live on, but do nothing.
class NativePlatform {
public:
    /// Makes the parts; the calling thread becomes the main thread. Installs nothing.
    explicit NativePlatform(NativePlatformOptions options = {});
    ~NativePlatform();
    NativePlatform(const NativePlatform&) = delete;
    NativePlatform& operator=(const NativePlatform&) = delete;

    /// The value to install.
    [[nodiscard]] platform::Platform platform() const { return platform_; }

    /// The main queue, which the host must pump or run.
    [[nodiscard]] RunLoop& runLoop() { return *runLoop_; }

    /// Does three things in this order. It ends the network: each request under way completes as
    /// `cancelled`. It runs once what is due on the main queue, so that these completions reach the kit. It
    /// stops the main queue.
    /// Call it on the main thread, outside the queue's jobs; elsewhere the second step is left out. May be
    /// called again.
    void shutDown();

private:
    const std::shared_ptr<RunLoop> runLoop_;
    const std::shared_ptr<class CurlHttpSessionFactory> http_;
    const platform::Platform platform_;
};

}  // namespace oska::native
