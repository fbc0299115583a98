#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "oska/pelio/pelio_types.h"
#include "oska/platform/quenlo_common.h"

namespace oska {

class GeneratorRun;
class PelioWardSelection;

/// The Pelio service: from received-signal samples to the phone's position in a building.
///
///     auto service = PelioServiceManager::create(
///         {.id = "demo", .region = "KOREA", .sectorId = 12, .delegate = host});
///     // after onInitSuccess:
///     service->startService();
///
/// Threads: operations on any thread. Initialisation is reported on the main queue, a start inside
/// `startService`, results on the generator's thread. The service guards its state with a mutex that it never
/// holds while it calls a delegate or the generator, so a host may call anything from any callback. Lifetime:
/// the last reference may go on any thread, inside a callback, too; that stops the service. A load under way
/// then ends without a callback.
class PelioServiceManager : public platform::RFDGeneratorDelegate,
                            public std::enable_shared_from_this<PelioServiceManager> {
public:
    struct Options {
        std::string id;      ///< ASCII letters, digits, underscores and hyphens
        std::string region;  ///< "KOREA" or "CANADA"; anything else counts as Korea
        std::int64_t sectorId = 0;
        bool forceUpdate = false;  ///< download the bundle even when its version is unchanged

        /// The first delegate, held weakly. It hears the outcome for certain; one that is set afterwards may
        /// miss it when `create` is called off the main thread, and never hears of an id that is not valid.
        std::weak_ptr<PelioServiceManagerDelegate> delegate = {};
    };

    /// Makes the service and starts its initialisation, which ends with `onInitSuccess`, on the main queue.
    /// With an id that is not valid nothing is loaded: that is logged, and the delegate of the options hears
    /// it inside this call, on its thread. It may call the service, and keep it by `shared_from_this`.
    [[nodiscard]] static std::shared_ptr<PelioServiceManager> create(Options options);

    ~PelioServiceManager() override;
    PelioServiceManager(const PelioServiceManager&) = delete;
    PelioServiceManager& operator=(const PelioServiceManager&) = delete;

    /// Held weakly; may be set, replaced and taken away at any time.
    void setDelegate(std::weak_ptr<PelioServiceManagerDelegate> delegate);
    [[nodiscard]] std::shared_ptr<PelioServiceManagerDelegate> delegate() const;

    /// Starts the generator. The outcome is `onPelioSuccess`, called before this returns; it tells of the
    /// start alone, also when a callback or another thread has stopped the service meanwhile.
    void startService();

    /// Stops the generator and forgets what was heard; the bundle stays. What the generator still delivers
    /// while it is being stopped is reported as before, and the service counts as started until then. No
    /// other delegate call.
    void stopService();

    /// By level id; empty before a successful initialisation.
    [[nodiscard]] std::map<std::int64_t, PelioMapImage> getPelioMapImages() const;
    [[nodiscard]] std::optional<PelioMapImage> getPelioMapImage(std::int64_t levelId) const;

    // The generator's callbacks, on the generator's thread. A result is reported before onRfdResult returns.
    void onRfdResult(platform::RFDGenerator& generator, platform::ReceivedForce receivedForce) override;
    void onRfdError(platform::RFDGenerator& generator, int code, const std::string& msg) override;
    void onRfdEmptyMillis(platform::RFDGenerator& generator, double time) override;

private:
    explicit PelioServiceManager(Options options);

    void initialize();
    void finishInitialization(bool loaded);
    void reportMapImages();
    void reportInit(bool success, std::optional<PelioInitErrorCode> code);
    void reportStart(bool success, std::optional<PelioErrorCode> code);

    [[nodiscard]] std::optional<PelioErrorCode> start();
    [[nodiscard]] bool isInitialized() const;

    void handleRfd(platform::ReceivedForce receivedForce);

    const Options options_;
    const std::unique_ptr<GeneratorRun> generatorRun_;
    std::atomic<double> rfdEmptyMillis_{0};  // milliseconds, as the generator last said
    std::atomic<float> pressure_{0};         // for the generator; nothing here changes it

    mutable std::mutex mutex_;  // guards all below
    std::weak_ptr<PelioServiceManagerDelegate> delegate_;
    bool isInitSuccess_ = false;
    std::unique_ptr<PelioWardSelection> selection_;  // never null; built from the bundle
};

}  // namespace oska
