#include "oska/dapo/dapo_service.h"

#include <utility>

#include "oska/dapo/dapo_sector.h"
#include "oska/foundation/batch_sender.h"
#include "oska/foundation/log_message.h"
#include "oska/foundation/main_thread.h"
#include "oska/foundation/network_constants.h"
#include "oska/foundation/signal_source.h"
#include "oska/foundation/weak_part.h"
#include "oska/json/description.h"
#include "oska/platform/platform.h"
#include "oska/platform/quenlo_resource.h"
#include "oska/resources/resource_manager.h"

namespace oska {
namespace {

constexpr Log LOG{"DapoView"};

void logLevelsWithoutMap(const std::vector<std::int64_t>& levelIds) {
    for (const auto levelId : levelIds) {
        LOG.warn("convertWardCoordinate", "map_image not found", {{"levelId", levelId}});
    }
}

}  // namespace

// ---- life

DapoView::Service::Service(DapoView& view)
    : view_(view),
      mainQueue_(platform::current().mainQueue),
      generatorRun_({.log = LOG, .stopOperation = "stopGenerator", .stopsFailedGenerator = true}),
      presentation_(view,
                    [this](const auto& wards) {
                        if (const auto host = delegate()) host->onDapoSelectionChanged(view_, wards);
                    }),
      placement_(view) {}

void DapoView::Service::connect() {
    placement_.setTapAction([weak = weakPart(view_, *this)] {
        if (const auto self = weak.lock()) self->handleTapDapo();
    });
    foregroundObservation_ = platform::NotificationCenter::shared().addObserver(
        platform::Notification::willEnterForeground, [queue = mainQueue_, weak = weakPart(view_, *this)] {
            const auto self = weak.lock();
            if (!self) return;
            runOnMain(*queue, LOG, "handleWillEnterForeground", [&] { self->handleWillEnterForeground(); });
        });
}

void DapoView::Service::tearDown() {
    foregroundObservation_.reset();
    stopService();
}

// ---- initialisation

void DapoView::Service::initialize(const Initialization& arguments) {
    presentation_.setUnchangedDeliveryInterval("initialize", arguments.unchangedDeliveryInterval, true);
    if (!isValidServiceId(arguments.id)) {
        logInvalidId(LOG, arguments.id);
        return reportInit(DapoInitErrorCode::INVALID_ID);
    }
    id_ = arguments.id;
    LOG.write(OskaLogLevel::INFO, "call initialize");
    platform::QuenloResourceNetworkConstants::setServerURL("AWS", "KOREA", false);
    OskaNetworkConstants::setServerURL("KOREA");
    OskaResourceManager::shared()->loadDapoResources(
        arguments.sectorId, arguments.forceUpdate, [weak = weakPart(view_, *this), arguments](bool success) {
            if (const auto self = weak.lock()) self->finishInitialization(arguments, success);
        });
}

void DapoView::Service::finishInitialization(const Initialization& arguments, bool loaded) {
    auto bundle = loaded ? OskaResourceManager::shared()->currentDapoBundle() : nullptr;
    isInitSuccess_ = bundle != nullptr;
    if (!bundle) {
        LOG.error(
            "initialize", "resource load failed",
            {{"id", arguments.id}, {"sectorId", arguments.sectorId}, {"forceUpdate", arguments.forceUpdate}});
        forgetBundle();
        return reportInit(DapoInitErrorCode::RESOURCE_FAIL);
    }
    LOG.info(
        "initialize", "success",
        {{"id", arguments.id}, {"sectorId", arguments.sectorId}, {"forceUpdate", arguments.forceUpdate}});
    takeIntoUse(std::move(bundle));
    reportMapImages();
    reportInit(std::nullopt);
}

void DapoView::Service::forgetBundle() {
    dapoBundle_ = nullptr;
    detection_.clearIndexes();
    detection_.reset();
    presentation_.reset();
}

void DapoView::Service::takeIntoUse(std::shared_ptr<const DapoBundle> bundle) {
    if (OskaLogger::isEnabled()) LOG.info("initialize", describe(*bundle));
    dapoBundle_ = std::move(bundle);
    detection_.indexDapoWards(dapoBundle_->buildings);
    if (OskaLogger::isEnabled()) {
        LOG.info("indexDapoWards",
                 "indexedDapoWardsByName= " + describe(detection_.indexedDapoWardsByName()));
    }
    detection_.indexDapoMapImages(dapoBundle_->buildings);
    LOG.info("indexDapoMapImages", "levelCount = " + std::to_string(maps().byLevelId().size()));
}

void DapoView::Service::reportMapImages() {
    const auto mapImages = maps().byLevelId();  // a copy: the host may initialise again
    for (const auto& [levelId, mapImage] : mapImages) {
        if (const auto host = delegate()) host->onDapoMapImageData(view_, levelId, mapImage);
    }
}

void DapoView::Service::reportInit(std::optional<DapoInitErrorCode> failure) {
    if (const auto host = delegate()) host->onInitSuccess(view_, !failure, failure);
}

std::optional<DapoSectorInfo> DapoView::Service::sectorInfo() const {
    if (!dapoBundle_) return std::nullopt;
    auto sector = describeSector(*dapoBundle_, maps());
    logLevelsWithoutMap(sector.levelsWithoutMap);
    return std::move(sector.info);
}

// ---- start and stop

void DapoView::Service::startService() {
    const auto failure = start();
    if (const auto host = delegate()) host->onDapoSuccess(view_, !failure, failure);
}

std::optional<DapoErrorCode> DapoView::Service::start() {
    if (!id_ || !isInitSuccess_ || !dapoBundle_) return DapoErrorCode::NOT_INITIALIZED;
    const auto claim = generatorRun_.claim();
    if (!claim) return DapoErrorCode::DUPLICATE_SERVICE;
    const auto outcome = generatorRun_.start(
        *claim, {.id = *id_, .delegate = weakPart(view_, view_), .pressure = weakPart(view_, pressure_)});
    if (outcome.failure || outcome.isOvertaken) return outcome.failure;
    DapoBatchSender::shared().reset();
    presentation_.startTimer();
    return std::nullopt;
}

void DapoView::Service::stopService() {
    presentation_.stopTimer();
    generatorRun_.stop();
    if (!generatorRun_.isIdle()) return;  // stopped and started again inside: the new run goes on
    DapoBatchSender::shared().flush();
    detection_.reset();
    presentation_.reset();
}

// ---- samples, taps, the foreground

void DapoView::Service::handleRfd(platform::ReceivedForce receivedForce) {
    if (!isInitSuccess_ || !dapoBundle_ || detection_.isEmpty()) {
        return LOG.warn("handleRfd", "skipped because Dapo bundle is not ready");
    }
    auto detected = detection_.handle(std::move(receivedForce));
    logLevelsWithoutMap(detected.levelsWithoutMap);
    presentation_.handleDetectedWards(std::move(detected.wards));
}

void DapoView::Service::handleTapDapo() {
    const auto wards = presentation_.currentWards();
    if (wards.empty()) return;
    if (const auto host = delegate()) host->onClick(view_, wards);
}

void DapoView::Service::handleWillEnterForeground() {
    if (generatorRun_.isRunning()) presentation_.enterForeground();
}

}  // namespace oska
