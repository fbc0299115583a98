#include "oska/tovan/tovan_service_manager.h"

#include <utility>

#include "oska/tovan/missing_navigation_manager.h"

namespace oska {
namespace {

/// The deployment choices that the kit makes for the navigation service.
platform::NavigationOptions navigationOptions(const TovanServiceManager::Options& options) {
    return {.id = options.id,
            .cloud = std::string(rawValue(platform::TovanCloud::GCP)),
            .region = options.region,
            .sectorId = options.sectorId,
            .debugOption = options.debugOption,
            .uploadOption = false,
            .dev = true,
            .onPremiseBaseURL = options.onPremiseBaseURL};
}

}  // namespace

std::shared_ptr<TovanServiceManager> TovanServiceManager::create(const Options& options) {
    std::shared_ptr<TovanServiceManager> service(new TovanServiceManager(options));
    service->serviceManager_->setDelegate(service);
    service->serviceManager_->initialize();
    return service;
}

TovanServiceManager::TovanServiceManager(const Options& options)
    : id_(options.id),
      region_(options.region),
      sectorId_(options.sectorId),
      serviceManager_(makeNavigationManager(navigationOptions(options))),
      delegate_(options.delegate) {}

TovanServiceManager::~TovanServiceManager() {
    try {
        serviceManager_->setDelegate({});
        serviceManager_->stopService([](bool, const std::string&, const platform::TovanServiceResult&) {});
    } catch (...) {  // an exception that leaves a destructor would end the process
    }
}

void TovanServiceManager::setDelegate(std::weak_ptr<platform::NavigationManagerDelegate> delegate) {
    const std::lock_guard lock(mutex_);
    delegate_ = std::move(delegate);
}

std::shared_ptr<platform::NavigationManagerDelegate> TovanServiceManager::delegate() const {
    const std::lock_guard lock(mutex_);
    return delegate_.lock();
}

// ---- to the navigation service

void TovanServiceManager::startService(platform::UserMode mode) { serviceManager_->startService(mode); }

void TovanServiceManager::stopService(platform::NavigationManager::StopCompletion completion) {
    serviceManager_->stopService(std::move(completion));
}

std::optional<std::string> TovanServiceManager::getBuildingName(std::int64_t buildingId) {
    return serviceManager_->getBuildingName(buildingId);
}

std::optional<std::int64_t> TovanServiceManager::getBuildingId(const std::string& buildingName) {
    return serviceManager_->getBuildingId(buildingName);
}

std::optional<std::string> TovanServiceManager::getLevelName(std::int64_t levelId) {
    return serviceManager_->getLevelName(levelId);
}

std::optional<std::int64_t> TovanServiceManager::getLevelId(std::int64_t sectorId,
                                                            const std::string& buildingName,
                                                            const std::string& levelName) {
    return serviceManager_->getLevelId(sectorId, buildingName, levelName);
}

std::optional<std::vector<float>> TovanServiceManager::getScaleOffset(std::int64_t sectorId,
                                                                      const std::string& buildingName,
                                                                      const std::string& levelName) {
    return serviceManager_->getScaleOffset(sectorId, buildingName, levelName);
}

void TovanServiceManager::setNaviDestination(const platform::Point& dest, bool isVehicle) {
    serviceManager_->setNaviDestination(dest, isVehicle);
}

void TovanServiceManager::requestRouting(const platform::RoutingStart& start, const platform::Point& end,
                                         const std::vector<platform::Point>& waypoints, bool isVehicle,
                                         platform::NavigationManager::RoutingCompletion completion) {
    serviceManager_->requestRouting(start, end, waypoints, isVehicle, std::move(completion));
}

// ---- to the host

void TovanServiceManager::onInitSuccess(bool success, std::optional<platform::InitErrorCode> code,
                                        const platform::TovanServiceResult& result) {
    if (const auto host = delegate()) host->onInitSuccess(success, code, result);
}

void TovanServiceManager::onTovanSuccess(bool success, std::optional<platform::TovanErrorCode> code,
                                         const platform::TovanServiceResult& result) {
    if (const auto host = delegate()) host->onTovanSuccess(success, code, result);
}

void TovanServiceManager::onTovanResult(const platform::TovanResult& result) {
    if (const auto host = delegate()) host->onTovanResult(result);
}

void TovanServiceManager::onTovanReport(platform::TovanServiceCode code, const std::string& text) {
    if (const auto host = delegate()) host->onTovanReport(code, text);
}

void TovanServiceManager::isTovanInOutStateChanged(platform::InOutState state) {
    if (const auto host = delegate()) host->isTovanInOutStateChanged(state);
}

void TovanServiceManager::isUserArrived() {
    if (const auto host = delegate()) host->isUserArrived();
}

void TovanServiceManager::isNavigationRouteChanged(const std::vector<platform::NavigationRouteEntry>& route) {
    if (const auto host = delegate()) host->isNavigationRouteChanged(route);
}

void TovanServiceManager::isNavigationRouteFailed(platform::NavigationRouteFailureReason reason) {
    if (const auto host = delegate()) host->isNavigationRouteFailed(reason);
}

void TovanServiceManager::isUserGuidanceOut() {
    if (const auto host = delegate()) host->isUserGuidanceOut();
}

void TovanServiceManager::isWaypointChanged(const std::vector<std::vector<double>>& waypoints) {
    if (const auto host = delegate()) host->isWaypointChanged(waypoints);
}

}  // namespace oska
