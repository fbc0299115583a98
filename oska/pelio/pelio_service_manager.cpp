#include "oska/pelio/pelio_service_manager.h"

#include <utility>

#include "oska/foundation/generator_run.h"
#include "oska/foundation/log_message.h"
#include "oska/foundation/network_constants.h"
#include "oska/foundation/signal_source.h"
#include "oska/pelio/pelio_ward_selection.h"
#include "oska/platform/platform.h"
#include "oska/platform/quenlo_resource.h"
#include "oska/resources/resource_manager.h"

namespace oska {
namespace {

constexpr Log LOG{"PelioServiceManager"};

}  // namespace

std::shared_ptr<PelioServiceManager> PelioServiceManager::create(Options options) {
    std::shared_ptr<PelioServiceManager> service(new PelioServiceManager(std::move(options)));
    service->initialize();
    return service;
}

PelioServiceManager::PelioServiceManager(Options options)
    : options_(std::move(options)),
      generatorRun_(
          std::make_unique<GeneratorRun>(GeneratorRun::Settings{.log = LOG, .stopOperation = "stopService"})),
      delegate_(options_.delegate),
      selection_(std::make_unique<PelioWardSelection>()) {}

PelioServiceManager::~PelioServiceManager() { stopService(); }

void PelioServiceManager::setDelegate(std::weak_ptr<PelioServiceManagerDelegate> delegate) {
    const std::lock_guard lock(mutex_);
    delegate_ = std::move(delegate);
}

std::shared_ptr<PelioServiceManagerDelegate> PelioServiceManager::delegate() const {
    const std::lock_guard lock(mutex_);
    return delegate_.lock();
}

// ---- initialisation

void PelioServiceManager::initialize() {
    if (!isValidServiceId(options_.id)) {
        logInvalidId(LOG, options_.id);
        return reportInit(false, PelioInitErrorCode::INVALID_ID);
    }
    platform::QuenloResourceNetworkConstants::setServerURL("AWS", options_.region, false);
    OskaNetworkConstants::setServerURL(options_.region);
    OskaResourceManager::shared()->loadPelioResources(options_.sectorId, options_.forceUpdate,
                                                      [weak = weak_from_this()](bool success) {
                                                          if (const auto self = weak.lock())
                                                              self->finishInitialization(success);
                                                      });
}

void PelioServiceManager::finishInitialization(bool loaded) {
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
        return reportInit(false, PelioInitErrorCode::RESOURCE_FAIL);
    }
    LOG.info("initialize", "success",
             {{"id", options_.id},
              {"sectorId", options_.sectorId},
              {"forceUpdate", options_.forceUpdate},
              {"wardCount", wardCount},
              {"levelCount", levelCount}});
    reportMapImages();
    reportInit(true, std::nullopt);
}

void PelioServiceManager::reportMapImages() {
    for (const auto& [levelId, mapImage] : getPelioMapImages()) {
        if (const auto host = delegate()) host->onPelioMapImageData(*this, levelId, mapImage);
    }
}

void PelioServiceManager::reportInit(bool success, std::optional<PelioInitErrorCode> code) {
    if (const auto host = delegate()) host->onInitSuccess(*this, success, code);
}

// ---- start and stop

void PelioServiceManager::startService() {
    const auto self = weak_from_this().lock();  // a callback inside may drop the host's last reference
    const auto failure = start();
    reportStart(!failure, failure);
}

void PelioServiceManager::reportStart(bool success, std::optional<PelioErrorCode> code) {
    if (const auto host = delegate()) host->onPelioSuccess(*this, success, code);
}

std::optional<PelioErrorCode> PelioServiceManager::start() {
    if (!isInitialized()) return PelioErrorCode::NOT_INITIALIZED;
    const auto claim = generatorRun_->claim();
    if (!claim) return PelioErrorCode::DUPLICATE_SERVICE;
    {
        const std::lock_guard lock(mutex_);
        selection_->reset();  // of a sample that was under way when the last run was stopped
    }
    const auto self = weak_from_this().lock();
    const auto outcome = generatorRun_->start(
        *claim, {.id = options_.id,
                 .scanMode = platform::ScanMode::ONLY_WARD_SCAN,
                 .delegate = self,
                 .pressure = std::shared_ptr<const std::atomic<float>>(self, &pressure_)});
    return outcome.failure;
}

bool PelioServiceManager::isInitialized() const {
    const std::lock_guard lock(mutex_);
    return isInitSuccess_;
}

void PelioServiceManager::stopService() {
    const auto self = weak_from_this().lock();  // none while the service is being destroyed
    generatorRun_->stop();
    const std::lock_guard lock(mutex_);
    if (generatorRun_->isIdle()) selection_->reset();  // a start that has come since has done so itself
}

// ---- queries

std::map<std::int64_t, PelioMapImage> PelioServiceManager::getPelioMapImages() const {
    const std::lock_guard lock(mutex_);
    return selection_->maps().byLevelId();
}

std::optional<PelioMapImage> PelioServiceManager::getPelioMapImage(std::int64_t levelId) const {
    const std::lock_guard lock(mutex_);
    return selection_->maps().find(levelId);
}

// ---- samples

void PelioServiceManager::onRfdResult(platform::RFDGenerator&, platform::ReceivedForce receivedForce) {
    handleRfd(std::move(receivedForce));
}

void PelioServiceManager::onRfdError(platform::RFDGenerator&, int code, const std::string& msg) {
    logGeneratorError(LOG, code, msg);
}

void PelioServiceManager::onRfdEmptyMillis(platform::RFDGenerator&, double time) {
    rfdEmptyMillis_.store(time);
}

void PelioServiceManager::handleRfd(platform::ReceivedForce receivedForce) {
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
    host->onPelioResult(*this, report->result);
}

}  // namespace oska
