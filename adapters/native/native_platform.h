#pragma once

#include <functional>
#include <memory>
#include <string>

#include "adapters/native/run_loop.h"
#include "oska/platform/platform.h"

namespace oska::native {

/// What a host brings to the native platform. Everything may be left out, without a compiler's warning, too.
struct NativePlatformOptions {
    /// Left out: there is no token, as when no user is signed in.
    std::shared_ptr<platform::QuenloAuthManager> auth = {};
    /// Left out: allowed.
    std::shared_ptr<platform::BluetoothAuthorization> bluetooth = {};
    /// Left out: generators that are not available, because no radio is attached.
    platform::RFDGeneratorFactory makeRFDGenerator = {};
    /// Certificates in PEM of authorities to trust besides the system's.
    std::string caFile = {};
    /// The wake hook of the run loop, for hosts with a loop of their own.
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
/// Threads: made on the main thread. Lifetime: destroying it shuts it down; the parts that an installed
/// platform holds live on, idle.
class NativePlatform {
public:
    explicit NativePlatform(NativePlatformOptions options = {});
    ~NativePlatform();
    NativePlatform(const NativePlatform&) = delete;
    NativePlatform& operator=(const NativePlatform&) = delete;

    [[nodiscard]] platform::Platform platform() const { return platform_; }
    [[nodiscard]] RunLoop& runLoop() { return *runLoop_; }

    /// In this order: the network ends, and each request under way has completed as cancelled; the main
    /// queue runs, once, what is due, so that those who sent them hear of it; the main queue stops.
    /// Call it on the main thread, outside the queue's jobs; elsewhere the middle step is left out. May be
    /// called again.
    void shutDown();

private:
    const std::shared_ptr<RunLoop> runLoop_;
    const std::shared_ptr<class CurlHttpSessionFactory> http_;
    const platform::Platform platform_;
};

}  // namespace oska::native
