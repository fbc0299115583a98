#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "oska/pelio/pelio_types.h"
#include "oska/platform/quenlo_common.h"

namespace oska {

/// The Pelio service: from received-signal samples to the phone's position in a building.
///
///     auto service = PelioServiceManager::create(
///         {.id = "demo", .region = "KOREA", .sectorId = 12, .delegate = host});
///     // after onInitSuccess:
///     service->startService();
///
/// Requires: a platform is installed (see platform/platform.h).
/// Threads: operations on any thread, also inside a callback. The initialisation is reported on the main
/// queue, a start inside `startService`, a position on the generator's thread. No lock is held during a
/// callback.
/// Lifetime: the last reference may be released on any thread, also inside a callback. That stops the
/// service; a load that is not finished ends without a callback. Errors: no operation throws; outcomes are
/// reported to the delegate, and logged with the tag PelioServiceManager.
class PelioServiceManager : public platform::RFDGeneratorDelegate,
                            public std::enable_shared_from_this<PelioServiceManager> {
public:
    /// The arguments of `create`.
    struct Options {
        /// The service id: one or more ASCII letters, digits, underscores and hyphens.
        std::string id = {};
        /// The region whose servers are used: "KOREA" or "CANADA". Any other text counts as "KOREA".
        std::string region = {};
        /// The sector whose bundle is loaded.
        std::int64_t sectorId = 0;
        /// Whether the bundle is downloaded even when its version has not changed.
        bool forceUpdate = false;
        /// The first delegate, held weakly; it receives the outcome of the initialisation in any case. A
        /// delegate that is set later may miss the outcome when `create` is called off the main thread, and
        /// always misses the report of an invalid id.
        std::weak_ptr<PelioServiceManagerDelegate> delegate = {};
    };

    /// Makes the service and starts its initialisation, which ends with `onInitSuccess` in a job of the main
    /// queue. An invalid id is reported inside this call, on its thread, to the delegate of the options, and
    /// nothing is loaded. The delegate may already use the service then, and keep it by `shared_from_this`.
    /// Never null.
    [[nodiscard]] static std::shared_ptr<PelioServiceManager> create(Options options);

    ~PelioServiceManager() override;
    PelioServiceManager(const PelioServiceManager&) = delete;
    PelioServiceManager& operator=(const PelioServiceManager&) = delete;

    /// The receiver of all reports. The service holds it weakly; it may be replaced or cleared at any time.
    void setDelegate(std::weak_ptr<PelioServiceManagerDelegate> delegate);
    /// Null when no delegate is set or when it has been destroyed.
    [[nodiscard]] std::shared_ptr<PelioServiceManagerDelegate> delegate() const;

    /// Starts the signal generator. The outcome is `onPelioSuccess`, inside this call. It describes this
    /// start only: a callback or another thread may have stopped the service meanwhile.
    void startService();

    /// Stops the generator and forgets samples and position; the bundle stays, so that the service can start
    /// again. What the generator still delivers while it is being stopped is reported as before, and the
    /// service counts as started until then. Calls no delegate otherwise.
    void stopService();

    /// The map images of the site by level id; empty before a successful initialisation.
    [[nodiscard]] std::map<std::int64_t, PelioMapImage> getPelioMapImages() const;
    /// The map image of one level; nullopt for an unknown level.
    [[nodiscard]] std::optional<PelioMapImage> getPelioMapImage(std::int64_t levelId) const;

    // The generator's callbacks, called by the generator on its own thread; a host does not call them.

    /// One sample. A position that follows from it is reported before this returns.
    void onRfdResult(platform::RFDGenerator& generator, platform::ReceivedForce receivedForce) override;
    /// Logs the error; the service goes on.
    void onRfdError(platform::RFDGenerator& generator, int code, const std::string& msg) override;
    /// Stores the time, in milliseconds, for which nothing was received.
    void onRfdEmptyMillis(platform::RFDGenerator& generator, double time) override;

private:
    class Service;

    explicit PelioServiceManager(Options options);

    const std::unique_ptr<Service> service_;
};

}  // namespace oska
