// The view as a service: its life, initialisation, start and stop, and the road of a sample.
#include "oska/dapo/dapo_view.h"

#include <utility>

#include "oska/dapo/dapo_detection.h"
#include "oska/dapo/dapo_output.h"
#include "oska/foundation/batch_sender.h"
#include "oska/foundation/generator_run.h"
#include "oska/foundation/log_message.h"
#include "oska/foundation/main_thread.h"
#include "oska/foundation/network_constants.h"
#include "oska/foundation/signal_source.h"
#include "oska/json/description.h"
#include "oska/platform/quenlo_resource.h"
#include "oska/platform/quenlo_tovan.h"
#include "oska/resources/resource_manager.h"

namespace oska {
namespace {

constexpr Log LOG{"DapoView"};

}  // namespace

// ---- life

std::shared_ptr<DapoView> DapoView::create() {
    std::shared_ptr<DapoView> view(new DapoView, &DapoView::release);
    view->connect();
    return view;
}

DapoView::DapoView()
    : View({}),
      mainQueue_(platform::current().mainQueue),
      clock_(platform::current().clock),
      generatorRun_(std::make_unique<GeneratorRun>(GeneratorRun::Settings{
          .log = LOG, .stopOperation = "stopGenerator", .stopsFailedGenerator = true})),
      detection_(std::make_unique<DapoDetection>()),
      output_(std::make_unique<DapoOutput>()),
      dapoImageView_(views::ImageView::create()) {
    setHidden(true);
}

void DapoView::connect() {
    tapRecognizer_ = std::make_shared<views::TapGestureRecognizer>([weak = weakSelf()] {
        if (const auto self = weak.lock()) self->handleTapDapo();
    });
    foregroundObservation_ = platform::NotificationCenter::shared().addObserver(
        platform::Notification::willEnterForeground, [weak = weakSelf()] {
            if (const auto self = weak.lock()) self->handleWillEnterForeground();
        });
}

// The job owns the view, so that a queue which has stopped, and destroys the job instead of running it,
// leaves nothing.
void DapoView::release(DapoView* view) {
    auto owner = std::make_shared<std::unique_ptr<DapoView>>(view);
    const auto queue = view->mainQueue_;
    sendToMain(*queue, [owner = std::move(owner)] { (*owner)->tearDown(); });
}

void DapoView::tearDown() {
    foregroundObservation_.reset();
    stop();
}

DapoView::~DapoView() = default;

std::weak_ptr<DapoView> DapoView::weakSelf() {
    return std::static_pointer_cast<DapoView>(weak_from_this().lock());
}

void DapoView::onMain(std::string_view operation, const std::function<void()>& work) const {
    const auto self = weak_from_this().lock();  // a callback of the host may let go of the view
    runOnMain(*mainQueue_, LOG, operation, work);
}

platform::WallTime DapoView::now() const { return clock_->now(); }

void DapoView::setDelegate(std::weak_ptr<DapoViewDelegate> delegate) {
    onMain("setDelegate", [&] { delegate_ = std::move(delegate); });
}

std::shared_ptr<DapoViewDelegate> DapoView::delegate() const {
    std::shared_ptr<DapoViewDelegate> delegate;
    onMain("delegate", [&] { delegate = delegate_.lock(); });
    return delegate;
}

// ---- initialisation

void DapoView::initialize(Initialization arguments) {
    platform::TovanNetworkConstants::setOnPremise(arguments.baseURL);
    onMain("initialize", [&] {
        storeUnchangedDeliveryInterval("initialize", arguments.unchangedDeliveryInterval, true);
        load(arguments);
    });
}

void DapoView::load(const Initialization& arguments) {
    if (!isValidServiceId(arguments.id)) {
        logInvalidId(LOG, arguments.id);
        return reportInit(DapoInitErrorCode::INVALID_ID);
    }
    id_ = arguments.id;
    LOG.write(OskaLogLevel::INFO, "call initialize");
    platform::QuenloResourceNetworkConstants::setServerURL("AWS", "KOREA", false);
    OskaNetworkConstants::setServerURL("KOREA");
    OskaResourceManager::shared()->loadDapoResources(arguments.sectorId, arguments.forceUpdate,
                                                     [weak = weakSelf(), arguments](bool success) {
                                                         if (const auto self = weak.lock())
                                                             self->finishInitialization(arguments, success);
                                                     });
}

void DapoView::finishInitialization(const Initialization& arguments, bool loaded) {
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

void DapoView::forgetBundle() {
    dapoBundle_ = nullptr;
    detection_->clearIndexes();
    detection_->reset();
    perform(output_->reset());
}

void DapoView::takeIntoUse(std::shared_ptr<const DapoBundle> bundle) {
    if (OskaLogger::isEnabled()) LOG.info("initialize", describe(*bundle));
    dapoBundle_ = std::move(bundle);
    detection_->indexDapoWards(dapoBundle_->buildings);
    if (OskaLogger::isEnabled()) {
        LOG.info("indexDapoWards",
                 "indexedDapoWardsByName= " + describe(detection_->indexedDapoWardsByName()));
    }
    detection_->indexDapoMapImages(dapoBundle_->buildings);
    LOG.info("indexDapoMapImages", "levelCount = " + std::to_string(detection_->maps().byLevelId().size()));
}

void DapoView::reportMapImages() {
    const auto mapImages = detection_->maps().byLevelId();  // the host may initialise again
    for (const auto& [levelId, mapImage] : mapImages) {
        if (const auto host = delegate_.lock()) host->onDapoMapImageData(*this, levelId, mapImage);
    }
}

void DapoView::reportInit(std::optional<DapoInitErrorCode> failure) {
    if (const auto host = delegate_.lock()) host->onInitSuccess(*this, !failure, failure);
}

// ---- start and stop

void DapoView::startService() {
    onMain("startService", [&] {
        const auto failure = start();
        if (const auto host = delegate_.lock()) host->onDapoSuccess(*this, !failure, failure);
    });
}

std::optional<DapoErrorCode> DapoView::start() {
    if (!id_ || !isInitSuccess_ || !dapoBundle_) return DapoErrorCode::NOT_INITIALIZED;
    const auto claim = generatorRun_->claim();
    if (!claim) return DapoErrorCode::DUPLICATE_SERVICE;
    const auto self = weakSelf().lock();
    const auto outcome = generatorRun_->start(
        *claim, {.id = *id_,
                 .delegate = self,
                 .pressure = std::shared_ptr<const std::atomic<float>>(self, &pressure_)});
    if (outcome.failure || outcome.isOvertaken) return outcome.failure;
    DapoBatchSender::shared().reset();
    startTimer();
    return std::nullopt;
}

void DapoView::startTimer() {
    if (outputTimer_) return;
    outputTimer_ = mainQueue_->every(nanosecondsOf(outputInterval_), [weak = weakSelf()] {
        if (const auto self = weak.lock()) self->perform(self->output_->deliverCurrentWards(self->now()));
    });
    LOG.info("startTimer", "success",
             {{"label", "com.quenlo.oska.outputTimer"}, {"interval", outputInterval_}});
}

void DapoView::stopService() {
    onMain("stopService", [&] { stop(); });
}

void DapoView::stop() {
    outputTimer_.reset();
    generatorRun_->stop();
    if (!generatorRun_->isIdle()) return;  // a callback inside has stopped the service and started it again
    DapoBatchSender::shared().flush();
    detection_->reset();
    perform(output_->reset());
}

// ---- samples

// A sample that arrives after the view is gone is uploaded all the same.
void DapoView::onRfdResult(platform::RFDGenerator&, platform::ReceivedForce receivedForce) {
    sendToMain(*mainQueue_, [weak = weakSelf(), sample = std::move(receivedForce)]() mutable {
        DapoBatchSender::shared().inputReceivedForce(sample);
        if (const auto self = weak.lock()) self->handleRfd(std::move(sample));
    });
}

void DapoView::onRfdError(platform::RFDGenerator&, int code, const std::string& msg) {
    logGeneratorError(LOG, code, msg);
}

void DapoView::onRfdEmptyMillis(platform::RFDGenerator&, double time) {
    sendToMain(*mainQueue_, [weak = weakSelf(), time] {
        if (const auto self = weak.lock()) self->rfdEmptyMillis_ = time;
    });
}

void DapoView::handleRfd(platform::ReceivedForce receivedForce) {
    if (!isInitSuccess_ || !dapoBundle_ || detection_->isEmpty()) {
        return LOG.warn("handleRfd", "skipped because Dapo bundle is not ready");
    }
    auto detected = detection_->handle(std::move(receivedForce));
    logLevelsWithoutMap(detected.levelsWithoutMap);
    if (detected.wards.empty()) return perform(output_->releaseExpiredHolds(now()));
    perform(output_->handleDetectedWards(std::move(detected.wards), now()));
}

void DapoView::logLevelsWithoutMap(const std::vector<std::int64_t>& levelIds) {
    for (const auto levelId : levelIds) {
        LOG.warn("convertWardCoordinate", "map_image not found", {{"levelId", levelId}});
    }
}

// ---- output

void DapoView::perform(const DapoOutput::Effects& effects) {
    if (effects.isHideDelayed) LOG.info("setVisibility", "delayed hide because visibility hold is active");
    if (effects.release == DapoOutput::Release::cancel) holdReleaseWorkItem_.reset();
    if (effects.release == DapoOutput::Release::schedule) scheduleHoldRelease(effects.releaseAfter);
    if (effects.visibility) setHidden(!*effects.visibility);
    if (effects.delivery.empty()) return;
    if (const auto host = delegate_.lock()) host->onDapoSelectionChanged(*this, effects.delivery);
}

void DapoView::scheduleHoldRelease(std::chrono::nanoseconds delay) {
    holdReleaseWorkItem_ = mainQueue_->after(delay, [weak = weakSelf()] {
        if (const auto self = weak.lock()) self->perform(self->output_->releaseExpiredHolds(self->now()));
    });
}

void DapoView::handleWillEnterForeground() {
    onMain("handleWillEnterForeground", [&] {
        if (generatorRun_->isRunning()) perform(output_->enterForeground(now()));
    });
}

}  // namespace oska
