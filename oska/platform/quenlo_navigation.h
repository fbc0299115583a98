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

/// The navigation service of the maker's framework QuenloTovan, as far as the kit hands it through.
///
/// The kit passes these records and codes on unchanged and never reads them. Their meaning is the
/// framework's, which may use raw values beyond those named here; where this header names a unit or an order,
/// an adapter should keep to it, and a host should check it against the framework it links.
namespace oska::platform {

/// The clouds that the framework knows and the kit uses.
enum class TovanCloud {
    GCP,  ///< raw value "GCP"; the kit always chooses it
};

/// The text by which the framework knows the cloud.
[[nodiscard]] constexpr std::string_view rawValue(TovanCloud) { return "GCP"; }

/// Why an initialisation failed; raw values are the framework's.
enum class InitErrorCode : int {
    UNKNOWN = -1,  ///< also when there is no framework
};

/// Why a start failed; raw values are the framework's.
enum class TovanErrorCode : int {
    UNKNOWN = -1,  ///< also when there is no framework
};

/// What a report is about; raw values are the framework's.
enum class TovanServiceCode : int {
    UNKNOWN = -1,  ///< none of the framework's codes
};

/// Whether the user is inside a building.
enum class InOutState : int {
    UNKNOWN = -1,  ///< not known yet
    INDOOR = 0,    ///< inside
    OUTDOOR = 1,   ///< outside
};

/// Why there is no route; raw values are the framework's.
enum class NavigationRouteFailureReason : int {
    UNKNOWN = -1,  ///< also when there is no framework
};

/// How a change of building or level goes on; raw values are the framework's.
enum class BuildingLevelChangeState : int {
    UNKNOWN = -1,  ///< none of the framework's states
};

/// What the framework says of an operation.
struct TovanServiceResult {
    std::string message = {};  ///< for people
};

/// A position of the user.
struct TovanResult {
    std::int64_t mobile_time = 0;    ///< milliseconds of the phone's clock
    std::string building_name = {};  ///< the framework's
    std::string level_name = {};     ///< the framework's
    double x = 0;                    ///< on the level, in the framework's unit, as y
    double y = 0;                    ///< see x
};

/// A place on a level's map.
struct Point {
    std::int64_t level_id = 0;  ///< the framework's
    double x = 0;               ///< on the level, in the framework's unit, as y
    double y = 0;               ///< see x
};

/// Where a route starts.
struct RoutingStart {
    Point point = {};    ///< the place
    double heading = 0;  ///< the way the user faces, in degrees
};

/// A route as a whole.
struct RoutingResult {
    double distance = 0;  ///< metres
    double time = 0;      ///< seconds
};

/// The part of a route that lies on one level.
struct NavigationLevelRoute {
    std::int64_t level_id = 0;       ///< the framework's
    std::vector<Point> points = {};  ///< in the framework's order
};

/// One entry of a changed route: two texts and two numbers, in the framework's order. The kit does not know
/// what each of them means.
using NavigationRouteEntry = std::tuple<std::string, std::string, float, float>;

/// Receiver of a navigation service's notifications. Threads: those that the service chooses, one
/// notification of a service at a time.
class NavigationManagerDelegate {
public:
    virtual ~NavigationManagerDelegate() = default;
    /// The initialisation has ended. `code` is nullopt on success.
    virtual void onInitSuccess(bool success, std::optional<InitErrorCode> code,
                               const TovanServiceResult& result) = 0;
    /// A start has ended. `code` is nullopt on success.
    virtual void onTovanSuccess(bool success, std::optional<TovanErrorCode> code,
                                const TovanServiceResult& result) = 0;
    /// A new position.
    virtual void onTovanResult(const TovanResult& result) = 0;
    /// A report of the running service; `text` is for people.
    virtual void onTovanReport(TovanServiceCode code, const std::string& text) = 0;
    /// The user has entered or left a building.
    virtual void isTovanInOutStateChanged(InOutState state) = 0;
    /// The user has reached the destination.
    virtual void isUserArrived() = 0;
    /// The route is another one now; `route` is the whole of it.
    virtual void isNavigationRouteChanged(const std::vector<NavigationRouteEntry>& route) = 0;
    /// No route was found.
    virtual void isNavigationRouteFailed(NavigationRouteFailureReason reason) = 0;
    /// The user has left the route.
    virtual void isUserGuidanceOut() = 0;
    /// The waypoints are others now; each is a list of numbers in the framework's order.
    virtual void isWaypointChanged(const std::vector<std::vector<double>>& waypoints) = 0;

    /// The user goes from one level to another. Does nothing unless a receiver overrides it. The Tovan
    /// service does not pass it on.
    virtual void onBuildingLevelChangeStateChanged(BuildingLevelChangeState,
                                                   const std::string& /*fromBuilding*/,
                                                   const std::string& /*fromLevel*/,
                                                   const std::string& /*toBuilding*/,
                                                   const std::string& /*toLevel*/, std::int64_t /*index*/) {}
};

/// A navigation service, idle when made. It holds its delegate weakly and locks that reference anew for each
/// notification, so that a receiver may go at any time.
///
/// Threads: operations on any thread, also inside a notification or a completion of its own; it holds no lock
/// while it calls out. `initialize` may notify before it returns. Completions are called exactly once, on any
/// thread, inside the call or later.
/// Lifetime: after `setDelegate` has returned, no notification to the previous delegate starts; one that runs
/// on another thread at that moment may still end. The last reference may be dropped inside a notification.
class NavigationManager {
public:
    /// The outcome of a stop; `text` is for people.
    using StopCompletion =
        std::function<void(bool success, const std::string& text, const TovanServiceResult& result)>;
    /// The outcome of a routing request: a result and its routes by level, or a reason.
    using RoutingCompletion = std::function<void(const std::optional<RoutingResult>& result,
                                                 const std::vector<NavigationLevelRoute>& routes,
                                                 std::optional<NavigationRouteFailureReason> reason)>;

    virtual ~NavigationManager() = default;

    /// Sets the receiver of notifications; an empty reference takes it away.
    virtual void setDelegate(std::weak_ptr<NavigationManagerDelegate> delegate) = 0;
    /// Loads what the service needs. Ends with `onInitSuccess`.
    virtual void initialize() = 0;
    /// Starts positioning. Ends with `onTovanSuccess`.
    virtual void startService(UserMode mode) = 0;
    /// Stops positioning.
    virtual void stopService(StopCompletion completion) = 0;

    /// The name of a building, or nullopt when it is not known.
    [[nodiscard]] virtual std::optional<std::string> getBuildingName(std::int64_t buildingId) = 0;
    /// The id of a building by its name, or nullopt when it is not known.
    [[nodiscard]] virtual std::optional<std::int64_t> getBuildingId(const std::string& buildingName) = 0;
    /// The name of a level, or nullopt when it is not known.
    [[nodiscard]] virtual std::optional<std::string> getLevelName(std::int64_t levelId) = 0;
    /// The id of a level by its names, or nullopt when it is not known.
    [[nodiscard]] virtual std::optional<std::int64_t> getLevelId(std::int64_t sectorId,
                                                                 const std::string& buildingName,
                                                                 const std::string& levelName) = 0;
    /// How coordinates of a level are placed on its map, or nullopt when the level is not known. The list is
    /// the framework's own, passed on as it is: its name says scales and offsets, but how many numbers it
    /// holds and in which order only the framework defines. Check the length before use. (A bundle's
    /// `LevelMapImage` has the same four values under names.)
    [[nodiscard]] virtual std::optional<std::vector<float>> getScaleOffset(std::int64_t sectorId,
                                                                           const std::string& buildingName,
                                                                           const std::string& levelName) = 0;

    /// Guides the user to `dest`, on foot or in a vehicle.
    virtual void setNaviDestination(const Point& dest, bool isVehicle) = 0;
    /// Asks for a route from `start` over `waypoints`, in order, to `end`; the outcome goes to `completion`.
    virtual void requestRouting(const RoutingStart& start, const Point& end,
                                const std::vector<Point>& waypoints, bool is_vehicle,
                                RoutingCompletion completion) = 0;
};

/// How a navigation service is made.
struct NavigationOptions {
    std::string id = {};        ///< the host's service id, not checked
    std::string cloud = {};     ///< raw value of a `TovanCloud`
    std::string region = {};    ///< as the host gave it, not checked
    std::int64_t sectorId = 0;  ///< the site
    bool debugOption = false;   ///< the framework's own log
    bool uploadOption = false;  ///< the framework's own uploads; the kit passes false
    bool dev = false;           ///< the framework's development mode; the kit passes true
    std::optional<std::string> onPremiseBaseURL = {};  ///< a self-hosted server; nullopt: the maker's
};

/// Makes navigation services. When it returns null or throws, the kit uses a substitute that fails with a
/// text.
using NavigationManagerFactory =
    std::function<std::shared_ptr<NavigationManager>(const NavigationOptions& options)>;

}  // namespace oska::platform
