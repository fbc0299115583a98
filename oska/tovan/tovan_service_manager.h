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
///     service->setDelegate(host);   // hears onInitSuccess, then startService() may be called
///
/// Passes every call to a navigation service of its own, unchanged, and hands that service's notifications to
/// the host's delegate, all but `onBuildingLevelChangeStateChanged`. A notification that finds no delegate is
/// dropped. Without a navigation framework, initialisation and start fail in words that say so.
///
/// Threads: operations on any thread, inside a notification, too; notifications on whichever thread the
/// navigation service chooses.
/// Lifetime: the last reference may go on any thread, inside a notification, too; that stops the navigation
/// service. No notification reaches the host afterwards; one that runs on another thread at that moment may
/// still end.
class TovanServiceManager : public platform::NavigationManagerDelegate {
public:
    struct Options {
        std::string id;  ///< this and what follows go to the navigation service as they stand
        std::string region;
        std::int64_t sectorId = 0;
        bool debugOption = false;  ///< of the navigation service; the kit's own logging is not touched
        std::optional<std::string> onPremiseBaseURL = {};

        /// The first delegate. A navigation service may answer its initialisation at once, inside `create`; a
        /// delegate given here hears that answer, one that is set afterwards does not.
        std::weak_ptr<platform::NavigationManagerDelegate> delegate = {};
    };

    /// Makes the service and starts its initialisation, which ends with `onInitSuccess`.
    [[nodiscard]] static std::shared_ptr<TovanServiceManager> create(const Options& options);

    ~TovanServiceManager() override;
    TovanServiceManager(const TovanServiceManager&) = delete;
    TovanServiceManager& operator=(const TovanServiceManager&) = delete;

    /// Held weakly; may be set, replaced and taken away at any time.
    void setDelegate(std::weak_ptr<platform::NavigationManagerDelegate> delegate);
    [[nodiscard]] std::shared_ptr<platform::NavigationManagerDelegate> delegate() const;

    [[nodiscard]] const std::string& id() const { return id_; }
    [[nodiscard]] const std::string& region() const { return region_; }
    [[nodiscard]] std::int64_t sectorId() const { return sectorId_; }

    void startService(platform::UserMode mode);
    void stopService(platform::NavigationManager::StopCompletion completion);

    [[nodiscard]] std::optional<std::string> getBuildingName(std::int64_t buildingId);
    [[nodiscard]] std::optional<std::int64_t> getBuildingId(const std::string& buildingName);
    [[nodiscard]] std::optional<std::string> getLevelName(std::int64_t levelId);
    [[nodiscard]] std::optional<std::int64_t> getLevelId(std::int64_t sectorId,
                                                         const std::string& buildingName,
                                                         const std::string& levelName);
    [[nodiscard]] std::optional<std::vector<float>> getScaleOffset(std::int64_t sectorId,
                                                                   const std::string& buildingName,
                                                                   const std::string& levelName);

    void setNaviDestination(const platform::Point& dest, bool isVehicle);
    void requestRouting(const platform::RoutingStart& start, const platform::Point& end,
                        const std::vector<platform::Point>& waypoints, bool isVehicle,
                        platform::NavigationManager::RoutingCompletion completion);

private:
    explicit TovanServiceManager(const Options& options);

    // The navigation service's notifications.
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

    mutable std::mutex mutex_;  // guards the delegate: hosts set it while notifications arrive
    std::weak_ptr<platform::NavigationManagerDelegate> delegate_;
};

}  // namespace oska
