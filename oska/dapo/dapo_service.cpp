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

DapoService::DapoService(DapoView& view, views::View& shown, platform::RFDGeneratorDelegate& receiver)
    : view_(view),
      shown_(shown),
      receiver_(receiver),
      mainQueue_(platform::current().mainQueue),
      generatorRun_({.log = LOG, .stopOperation = "stopGenerator", .stopsFailedGenerator = true}),
      presentation_(shown,
                    [this](const auto& wards) {
                        if (const auto host = delegate()) host->onDapoSelectionChanged(view_, wards);
                    }),
      placement_(shown) {}

void DapoService::connect() {
    placement_.setTapAction([weak = weakPart(shown_, *this)] {
        if (const auto self = weak.lock()) self->handleTapDapo();
    });
    foregroundObservation_ = platform::NotificationCenter::shared().addObserver(
        platform::Notification::willEnterForeground, [queue = mainQueue_, weak = weakPart(shown_, *this)] {
            const auto self = weak.lock();
            if (!self) return;
            runOnMain(*queue, LOG, "handleWillEnterForeground", [&] { self->handleWillEnterForeground(); });
        });
}

void DapoService::tearDown() {
    foregroundObservation_.reset();
    stopService();
}

// ---- initialisation

void DapoService::initialize(const DapoInitialization& arguments) {
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
        arguments.sectorId, arguments.forceUpdate, [weak = weakPart(shown_, *this), arguments](bool success) {
            if (const auto self = weak.lock()) self->finishInitialization(arguments, success);
        });
}

void DapoService::finishInitialization(const DapoInitialization& arguments, bool loaded) {
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

void DapoService::forgetBundle() {
    dapoBundle_ = nullptr;
    detection_.clearIndexes();
    detection_.reset();
    presentation_.reset();
}

void DapoService::takeIntoUse(std::shared_ptr<const DapoBundle> bundle) {
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

void DapoService::reportMapImages() {
    const auto mapImages = maps().byLevelId();  // a copy: the host may initialise again
    for (const auto& [levelId, mapImage] : mapImages) {
        if (const auto host = delegate()) host->onDapoMapImageData(view_, levelId, mapImage);
    }
}

void DapoService::reportInit(std::optional<DapoInitErrorCode> failure) {
    if (const auto host = delegate()) host->onInitSuccess(view_, !failure, failure);
}

std::optional<DapoSectorInfo> DapoService::sectorInfo() const {
    if (!dapoBundle_) return std::nullopt;
    auto sector = describeSector(*dapoBundle_, maps());
    logLevelsWithoutMap(sector.levelsWithoutMap);
    return std::move(sector.info);
}

// ---- start and stop

void DapoService::startService() {
    const auto failure = start();
    if (const auto host = delegate()) host->onDapoSuccess(view_, !failure, failure);
}

std::optional<DapoErrorCode> DapoService::start() {
    if (!id_ || !isInitSuccess_ || !dapoBundle_) return DapoErrorCode::NOT_INITIALIZED;
    const auto claim = generatorRun_.claim();
    if (!claim) return DapoErrorCode::DUPLICATE_SERVICE;
    const auto outcome = generatorRun_.start(
        *claim,
        {.id = *id_, .delegate = weakPart(shown_, receiver_), .pressure = weakPart(shown_, pressure_)});
    if (outcome.failure || outcome.isOvertaken) return outcome.failure;
    DapoBatchSender::shared().reset();
    presentation_.startTimer();
    return std::nullopt;
}

void DapoService::stopService() {
    presentation_.stopTimer();
    generatorRun_.stop();
    if (!generatorRun_.isIdle()) return;  // stopped and started again inside: the new run goes on
    DapoBatchSender::shared().flush();
    detection_.reset();
    presentation_.reset();
}

// ---- samples, taps, the foreground

void DapoService::handleRfd(platform::ReceivedForce receivedForce) {
    if (!isInitSuccess_ || !dapoBundle_ || detection_.isEmpty()) {
        return LOG.warn("handleRfd", "skipped because Dapo bundle is not ready");
    }
    auto detected = detection_.handle(std::move(receivedForce));
    logLevelsWithoutMap(detected.levelsWithoutMap);
    presentation_.handleDetectedWards(std::move(detected.wards));
}

void DapoService::handleTapDapo() {
    const auto wards = presentation_.currentWards();
    if (wards.empty()) return;
    if (const auto host = delegate()) host->onClick(view_, wards);
}

void DapoService::handleWillEnterForeground() {
    if (generatorRun_.isRunning()) presentation_.enterForeground();
}

}  // namespace oska
