// What a host may call; `Service` does the work.
#include "oska/pelio/pelio_service_manager.h"

#include <utility>

#include "oska/foundation/signal_source.h"
#include "oska/pelio/pelio_service.h"

namespace oska {
namespace {

constexpr Log LOG{"PelioServiceManager"};

}  // namespace

std::shared_ptr<PelioServiceManager> PelioServiceManager::create(Options options) {
    std::shared_ptr<PelioServiceManager> manager(new PelioServiceManager(std::move(options)));
    manager->service_->initialize();
    return manager;
}

PelioServiceManager::PelioServiceManager(Options options)
    : service_(std::make_unique<Service>(*this, std::move(options))) {}

PelioServiceManager::~PelioServiceManager() { stopService(); }

void PelioServiceManager::setDelegate(std::weak_ptr<PelioServiceManagerDelegate> delegate) {
    service_->setDelegate(std::move(delegate));
}

std::shared_ptr<PelioServiceManagerDelegate> PelioServiceManager::delegate() const {
    return service_->delegate();
}

void PelioServiceManager::startService() {
    const auto self = weak_from_this().lock();  // a callback of the host may release the last reference
    service_->startService();
}

void PelioServiceManager::stopService() {
    const auto self = weak_from_this().lock();  // as above; null while the service is being destroyed
    service_->stopService();
}

std::map<std::int64_t, PelioMapImage> PelioServiceManager::getPelioMapImages() const {
    return service_->mapImages();
}

std::optional<PelioMapImage> PelioServiceManager::getPelioMapImage(std::int64_t levelId) const {
    return service_->mapImage(levelId);
}

void PelioServiceManager::onRfdResult(platform::RFDGenerator&, platform::ReceivedForce receivedForce) {
    service_->handleRfd(std::move(receivedForce));
}

void PelioServiceManager::onRfdError(platform::RFDGenerator&, int code, const std::string& msg) {
    logGeneratorError(LOG, code, msg);
}

void PelioServiceManager::onRfdEmptyMillis(platform::RFDGenerator&, double time) {
    service_->setRfdEmptyMillis(time);
}

}  // namespace oska
