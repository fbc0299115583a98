// What a host may call stands below; `Service` above it does the work.
#include "oska/pelio/pelio_service_manager.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "oska/foundation/generator_run.h"
#include "oska/foundation/log_message.h"
#include "oska/foundation/network_constants.h"
#include "oska/foundation/signal_source.h"
#include "oska/foundation/weak_part.h"
#include "oska/pelio/pelio_ward_selection.h"
#include "oska/platform/quenlo_resource.h"
#include "oska/resources/resource_manager.h"

namespace oska {
namespace {

constexpr Log LOG{"PelioServiceManager"};

}  // namespace

/// What is private of a Pelio service: its life (initialisation, start, stop) and the way of a sample from
/// the generator to the host. Each operation is the one of the same name in `PelioServiceManager`. Threads:
/// any; the mutex is never held while a delegate, the generator or the log is called. Lifetime: a part of
/// `manager`; the load under way holds the manager weakly.
class PelioServiceManager::Service {
public:
    Service(PelioServiceManager& manager, Options options);

    void setDelegate(std::weak_ptr<PelioServiceManagerDelegate> delegate);
    [[nodiscard]] std::shared_ptr<PelioServiceManagerDelegate> delegate() const;

    /// To be called once, when the manager is shared.
    void initialize();
    void startService();
    void stopService();

    [[nodiscard]] std::map<std::int64_t, PelioMapImage> mapImages() const;
    [[nodiscard]] std::optional<PelioMapImage> mapImage(std::int64_t levelId) const;

    void handleRfd(platform::ReceivedForce receivedForce);
    void setRfdEmptyMillis(double time) { rfdEmptyMillis_.store(time); }

private:
    void finishInitialization(bool loaded);
    void reportMapImages();
    void reportInit(std::optional<PelioInitErrorCode> failure);
    [[nodiscard]] bool isInitialized() const;
    [[nodiscard]] std::optional<PelioErrorCode> start();

    PelioServiceManager& manager_;
    const Options options_;
    GeneratorRun generatorRun_;
    std::atomic<double> rfdEmptyMillis_{0};  // milliseconds, as the generator last reported
    std::atomic<float> pressure_{0};         // read by the generator; nothing here changes it

    mutable std::mutex mutex_;  // guards all below
    std::weak_ptr<PelioServiceManagerDelegate> delegate_;
    bool isInitSuccess_ = false;
    std::unique_ptr<PelioWardSelection> selection_;  // never null; built from the bundle
};

PelioServiceManager::Service::Service(PelioServiceManager& manager, Options options)
    : manager_(manager),
      options_(std::move(options)),
      generatorRun_({.log = LOG, .stopOperation = "stopService"}),
      delegate_(options_.delegate),
      selection_(std::make_unique<PelioWardSelection>()) {}

void PelioServiceManager::Service::setDelegate(std::weak_ptr<PelioServiceManagerDelegate> delegate) {
    const std::lock_guard lock(mutex_);
    delegate_ = std::move(delegate);
}

std::shared_ptr<PelioServiceManagerDelegate> PelioServiceManager::Service::delegate() const {
    const std::lock_guard lock(mutex_);
    return delegate_.lock();
}

// ---- initialisation

void PelioServiceManager::Service::initialize() {
    if (!isValidServiceId(options_.id)) {
        logInvalidId(LOG, options_.id);
        return reportInit(PelioInitErrorCode::INVALID_ID);
    }
    platform::QuenloResourceNetworkConstants::setServerURL("AWS", options_.region, false);
    OskaNetworkConstants::setServerURL(options_.region);
    OskaResourceManager::shared()->loadPelioResources(options_.sectorId, options_.forceUpdate,
                                                      [weak = weakPart(manager_, *this)](bool success) {
                                                          if (const auto self = weak.lock())
                                                              self->finishInitialization(success);
                                                      });
}

void PelioServiceManager::Service::finishInitialization(bool loaded) {
    const auto bundle = loaded ? OskaResourceManager::shared()->currentPelioBundle() : nullptr;
    auto selection =
        bundle ? std::make_unique<PelioWardSelection>(*bundle) : std::make_unique<PelioWardSelection>();
    const auto wardCount = selection->wardCount();
    const auto levelCount = selection->maps().byLevelId().size();
    {
        const std::lock_guard lock(mutex_);
        isInitSuccess_ = bundle != nullptr;
        selection_.swap(selection);
    }
    if (!bundle) {
        LOG.error(
            "initialize", "resource load failed",
            {{"id", options_.id}, {"sectorId", options_.sectorId}, {"forceUpdate", options_.forceUpdate}});
        return reportInit(PelioInitErrorCode::RESOURCE_FAIL);
    }
    LOG.info("initialize", "success",
             {{"id", options_.id},
              {"sectorId", options_.sectorId},
              {"forceUpdate", options_.forceUpdate},
              {"wardCount", wardCount},
              {"levelCount", levelCount}});
    reportMapImages();
    reportInit(std::nullopt);
}

void PelioServiceManager::Service::reportMapImages() {
    for (const auto& [levelId, mapImage] : mapImages()) {
        if (const auto host = delegate()) host->onPelioMapImageData(manager_, levelId, mapImage);
    }
}

void PelioServiceManager::Service::reportInit(std::optional<PelioInitErrorCode> failure) {
    if (const auto host = delegate()) host->onInitSuccess(manager_, !failure, failure);
}

bool PelioServiceManager::Service::isInitialized() const {
    const std::lock_guard lock(mutex_);
    return isInitSuccess_;
}

std::map<std::int64_t, PelioMapImage> PelioServiceManager::Service::mapImages() const {
    const std::lock_guard lock(mutex_);
    return selection_->maps().byLevelId();
}

std::optional<PelioMapImage> PelioServiceManager::Service::mapImage(std::int64_t levelId) const {
    const std::lock_guard lock(mutex_);
    return selection_->maps().find(levelId);
}

// ---- start and stop

void PelioServiceManager::Service::startService() {
    const auto failure = start();
    if (const auto host = delegate()) host->onPelioSuccess(manager_, !failure, failure);
}

std::optional<PelioErrorCode> PelioServiceManager::Service::start() {
    if (!isInitialized()) return PelioErrorCode::NOT_INITIALIZED;
    const auto claim = generatorRun_.claim();
    if (!claim) return PelioErrorCode::DUPLICATE_SERVICE;
    {
        const std::lock_guard lock(mutex_);
        selection_->reset();  // drops a sample that was being handled while the last run was stopped
    }
    const auto outcome = generatorRun_.start(*claim, {.id = options_.id,
                                                      .scanMode = platform::ScanMode::ONLY_WARD_SCAN,
                                                      .delegate = weakPart(manager_, manager_),
                                                      .pressure = weakPart(manager_, pressure_)});
    return outcome.failure;
}

void PelioServiceManager::Service::stopService() {
    generatorRun_.stop();
    const std::lock_guard lock(mutex_);
    if (generatorRun_.isIdle()) selection_->reset();  // otherwise a new start has reset it already
}

// ---- samples

void PelioServiceManager::Service::handleRfd(platform::ReceivedForce receivedForce) {
    const auto host = delegate();
    const auto now = receivedForce.mobile_time;
    std::optional<PelioWardSelection::Report> report;
    {
        std::unique_lock lock(mutex_);
        if (!isInitSuccess_ || selection_->wardCount() == 0) {
            lock.unlock();
            return LOG.warn("handleRfd", "skipped because Pelio bundle is not ready");
        }
        const auto* ward = selection_->handle(std::move(receivedForce));
        if (ward && host) report = selection_->report(*ward, now);
    }
    if (!report) return;
    if (!report->hasMapImage) {
        LOG.warn("convertWardCoordinate", "map_image not found", {{"levelId", report->result.level_id}});
    }
    host->onPelioResult(manager_, report->result);
}

// ---- what a host may call

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
