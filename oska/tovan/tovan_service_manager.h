#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "oska/platform/quenlo_navigation.h"

namespace oska {

/// The maker's navigation service with the same kind of configuration as the kit's other services.
///
///     auto service = TovanServiceManager::create({.id = "demo", .region = "KOREA", .sectorId = 12});
///     service->setDelegate(host);   // after onInitSuccess the host may call startService
///
/// Makes one navigation service, passes each call to it unchanged, and passes its notifications to the host's
/// delegate, all except `onBuildingLevelChangeStateChanged`. Checks nothing, logs nothing and keeps no state
/// of the navigation.
///
/// Requires: a platform is installed (see platform/platform.h).
/// Threads: operations on any thread, also inside a notification; notifications on the thread that the
/// navigation service chooses.
/// Lifetime: the last reference may be released on any thread, also inside a notification. That stops the
/// navigation service. No notification reaches the host afterwards, except one that is running on another
/// thread at that moment.
/// Errors: without a navigation framework, initialisation and start fail with a text that says so,
/// completions fail, and queries return nullopt.
class TovanServiceManager : public platform::NavigationManagerDelegate {
public:
    /// The arguments of `create`. All but the delegate are passed to the navigation service unchecked.
    struct Options {
        /// The service id.
        std::string id = {};
        /// The region's name, such as "KOREA".
        std::string region = {};
        /// The sector to navigate in.
        std::int64_t sectorId = 0;
        /// Whether the navigation service logs; the kit's own log switch is not changed.
        bool debugOption = false;
        /// The address of a server on the customer's premises; nullopt: the maker's servers.
        std::optional<std::string> onPremiseBaseURL = {};
        /// The first delegate, held weakly. A navigation service may report its initialisation at once,
        /// inside `create`; a delegate that is set later misses such a report.
        std::weak_ptr<platform::NavigationManagerDelegate> delegate = {};
    };

    /// Makes the service and starts its initialisation, which ends with `onInitSuccess`. Never null.
    [[nodiscard]] static std::shared_ptr<TovanServiceManager> create(const Options& options);

    ~TovanServiceManager() override;
    TovanServiceManager(const TovanServiceManager&) = delete;
    TovanServiceManager& operator=(const TovanServiceManager&) = delete;

    /// The receiver of all notifications, held weakly; it may be replaced or cleared at any time. Without
    /// one, notifications are dropped.
    void setDelegate(std::weak_ptr<platform::NavigationManagerDelegate> delegate);
    /// Null when no delegate is set or when it has been destroyed.
    [[nodiscard]] std::shared_ptr<platform::NavigationManagerDelegate> delegate() const;

    // What the options contained.
    /// The service id of the options.
    [[nodiscard]] const std::string& id() const { return id_; }
    /// The region of the options.
    [[nodiscard]] const std::string& region() const { return region_; }
    /// The sector of the options.
    [[nodiscard]] std::int64_t sectorId() const { return sectorId_; }

    /// Starts navigation for a person on foot or in a vehicle; ends with `onTovanSuccess`.
    void startService(platform::UserMode mode);
    /// Stops navigation. `completion` is called exactly once, on any thread, inside this call or later.
    void stopService(platform::NavigationManager::StopCompletion completion);

    // Queries of the site's names and ids. Nullopt when the navigation service does not know the place.
    /// Nullopt for an unknown building.
    [[nodiscard]] std::optional<std::string> getBuildingName(std::int64_t buildingId);
    /// Nullopt for an unknown building.
    [[nodiscard]] std::optional<std::int64_t> getBuildingId(const std::string& buildingName);
    /// Nullopt for an unknown level.
    [[nodiscard]] std::optional<std::string> getLevelName(std::int64_t levelId);
    /// Nullopt for an unknown level.
    [[nodiscard]] std::optional<std::int64_t> getLevelId(std::int64_t sectorId,
                                                         const std::string& buildingName,
                                                         const std::string& levelName);
    /// The numbers that convert a level's coordinates, as the navigation service returns them; their number
    /// and order are the navigation framework's.
    [[nodiscard]] std::optional<std::vector<float>> getScaleOffset(std::int64_t sectorId,
                                                                   const std::string& buildingName,
                                                                   const std::string& levelName);

    /// Sets the destination; the route then comes with `isNavigationRouteChanged`, a failure with
    /// `isNavigationRouteFailed`.
    void setNaviDestination(const platform::Point& dest, bool isVehicle);
    /// Asks for a route over `waypoints`. `completion` is called exactly once, on any thread, inside this
    /// call or later: with a result and the routes of each level, or with a reason why there is none.
    void requestRouting(const platform::RoutingStart& start, const platform::Point& end,
                        const std::vector<platform::Point>& waypoints, bool isVehicle,
                        platform::NavigationManager::RoutingCompletion completion);

private:
    explicit TovanServiceManager(const Options& options);

    // The navigation service's notifications, passed to the host's delegate.
    void onInitSuccess(bool success, std::optional<platform::InitErrorCode> code,
                       const platform::TovanServiceResult& result) override;
    void onTovanSuccess(bool success, std::optional<platform::TovanErrorCode> code,
                        const platform::TovanServiceResult& result) override;
    void onTovanResult(const platform::TovanResult& result) override;
    void onTovanReport(platform::TovanServiceCode code, const std::string& text) override;
    void isTovanInOutStateChanged(platform::InOutState state) override;
    void isUserArrived() override;
    void isNavigationRouteChanged(const std::vector<platform::NavigationRouteEntry>& route) override;
    void isNavigationRouteFailed(platform::NavigationRouteFailureReason reason) override;
    void isUserGuidanceOut() override;
    void isWaypointChanged(const std::vector<std::vector<double>>& waypoints) override;

    const std::string id_;
    const std::string region_;
    const std::int64_t sectorId_;
    const std::shared_ptr<platform::NavigationManager> serviceManager_;  // never null

    mutable std::mutex mutex_;  // guards the delegate, which a host may set while notifications arrive
    std::weak_ptr<platform::NavigationManagerDelegate> delegate_;
};

}  // namespace oska
