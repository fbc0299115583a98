#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "oska/platform/quenlo_common.h"

/// The navigation service of the maker's framework QuenloTovan, as far as the kit hands it through. The kit
/// never looks inside its records and codes: they are the framework's, which may use raw values beyond those
/// named here.
namespace oska::platform {

enum class TovanCloud { GCP };

[[nodiscard]] constexpr std::string_view rawValue(TovanCloud) { return "GCP"; }

enum class InitErrorCode : int { UNKNOWN = -1 };
enum class TovanErrorCode : int { UNKNOWN = -1 };
enum class TovanServiceCode : int { UNKNOWN = -1 };
enum class InOutState : int { UNKNOWN = -1, INDOOR = 0, OUTDOOR = 1 };
enum class NavigationRouteFailureReason : int { UNKNOWN = -1 };
enum class BuildingLevelChangeState : int { UNKNOWN = -1 };

struct TovanServiceResult {
    std::string message;  ///< for people
};

struct TovanResult {
    std::int64_t mobile_time = 0;  ///< milliseconds of the phone's clock
    std::string building_name;
    std::string level_name;
    double x = 0;
    double y = 0;
};

/// A place on a level's map.
struct Point {
    std::int64_t level_id = 0;
    double x = 0;
    double y = 0;
};

struct RoutingStart {
    Point point;
    double heading = 0;  ///< degrees
};

struct RoutingResult {
    double distance = 0;  ///< metres
    double time = 0;      ///< seconds
};

struct NavigationLevelRoute {
    std::int64_t level_id = 0;
    std::vector<Point> points;
};

/// One entry of a changed route: two texts and two numbers, as the framework orders them.
using NavigationRouteEntry = std::tuple<std::string, std::string, float, float>;

/// What a navigation service tells. Threads: whichever the service chooses, one notification of it at a time.
class NavigationManagerDelegate {
public:
    virtual ~NavigationManagerDelegate() = default;
    virtual void onInitSuccess(bool success, std::optional<InitErrorCode> code,
                               const TovanServiceResult& result) = 0;
    virtual void onTovanSuccess(bool success, std::optional<TovanErrorCode> code,
                                const TovanServiceResult& result) = 0;
    virtual void onTovanResult(const TovanResult& result) = 0;
    virtual void onTovanReport(TovanServiceCode code, const std::string& text) = 0;
    virtual void isTovanInOutStateChanged(InOutState state) = 0;
    virtual void isUserArrived() = 0;
    virtual void isNavigationRouteChanged(const std::vector<NavigationRouteEntry>& route) = 0;
    virtual void isNavigationRouteFailed(NavigationRouteFailureReason reason) = 0;
    virtual void isUserGuidanceOut() = 0;
    virtual void isWaypointChanged(const std::vector<std::vector<double>>& waypoints) = 0;

    /// Does nothing unless a receiver wants it.
    virtual void onBuildingLevelChangeStateChanged(BuildingLevelChangeState,
                                                   const std::string& /*fromBuilding*/,
                                                   const std::string& /*fromLevel*/,
                                                   const std::string& /*toBuilding*/,
                                                   const std::string& /*toLevel*/, std::int64_t /*index*/) {}
};

/// A navigation service, idle when made. It holds its delegate weakly and locks that reference anew for each
/// notification, so that a receiver may go at any time.
///
/// Threads: operations on any thread, inside a notification or a completion of its own, too; it holds no lock
/// while it calls out. `initialize` may answer before it returns. Completions come exactly once, on any
/// thread, inside the call or later.
/// Lifetime: after `setDelegate` has returned, no notification to the delegate before it starts; one that
/// runs on another thread at that moment may still end. The last reference may go inside a notification.
class NavigationManager {
public:
    using StopCompletion =
        std::function<void(bool success, const std::string& text, const TovanServiceResult& result)>;
    using RoutingCompletion = std::function<void(const std::optional<RoutingResult>& result,
                                                 const std::vector<NavigationLevelRoute>& routes,
                                                 std::optional<NavigationRouteFailureReason> reason)>;

    virtual ~NavigationManager() = default;
    virtual void setDelegate(std::weak_ptr<NavigationManagerDelegate> delegate) = 0;
    /// Ends with `onInitSuccess`.
    virtual void initialize() = 0;
    /// Ends with `onTovanSuccess`.
    virtual void startService(UserMode mode) = 0;
    virtual void stopService(StopCompletion completion) = 0;

    [[nodiscard]] virtual std::optional<std::string> getBuildingName(std::int64_t buildingId) = 0;
    [[nodiscard]] virtual std::optional<std::int64_t> getBuildingId(const std::string& buildingName) = 0;
    [[nodiscard]] virtual std::optional<std::string> getLevelName(std::int64_t levelId) = 0;
    [[nodiscard]] virtual std::optional<std::int64_t> getLevelId(std::int64_t sectorId,
                                                                 const std::string& buildingName,
                                                                 const std::string& levelName) = 0;
    [[nodiscard]] virtual std::optional<std::vector<float>> getScaleOffset(std::int64_t sectorId,
                                                                           const std::string& buildingName,
                                                                           const std::string& levelName) = 0;

    virtual void setNaviDestination(const Point& dest, bool isVehicle) = 0;
    virtual void requestRouting(const RoutingStart& start, const Point& end,
                                const std::vector<Point>& waypoints, bool is_vehicle,
                                RoutingCompletion completion) = 0;
};

/// How a navigation service is made.
struct NavigationOptions {
    std::string id;
    std::string cloud;  ///< raw value of a `TovanCloud`
    std::string region;
    std::int64_t sectorId = 0;
    bool debugOption = false;
    bool uploadOption = false;
    bool dev = false;
    std::optional<std::string> onPremiseBaseURL;
};

/// Makes navigation services; null when none can be had.
using NavigationManagerFactory =
    std::function<std::shared_ptr<NavigationManager>(const NavigationOptions& options)>;

}  // namespace oska::platform
