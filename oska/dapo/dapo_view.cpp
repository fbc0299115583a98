// What a host may call: each operation, on the main thread.
#include "oska/dapo/dapo_view.h"

#include <utility>

#include "oska/dapo/dapo_service.h"
#include "oska/foundation/batch_sender.h"
#include "oska/foundation/main_thread.h"
#include "oska/foundation/signal_source.h"
#include "oska/foundation/weak_part.h"
#include "oska/platform/quenlo_tovan.h"

namespace oska {
namespace {

constexpr Log LOG{"DapoView"};

}  // namespace

// ---- life

std::shared_ptr<DapoView> DapoView::create() {
    std::shared_ptr<DapoView> view(new DapoView, &DapoView::release);
    view->service_->connect();
    return view;
}

DapoView::DapoView() : View({}), service_(std::make_unique<DapoService>(*this, *this, *this)) {
    setHidden(true);
}

DapoView::~DapoView() = default;

// The job owns the view: when the queue has stopped, it destroys the job without running it, and the view
// too.
void DapoView::release(DapoView* view) {
    auto owner = std::make_shared<std::unique_ptr<DapoView>>(view);
    const auto queue = view->service_->mainQueue();
    sendToMain(*queue, [owner = std::move(owner)] { (*owner)->service_->tearDown(); });
}

template <class Work>
void DapoView::onMain(std::string_view operation, Work work) const {
    const auto self = weak_from_this().lock();  // a callback of the host may release the last reference
    runOnMain(*service_->mainQueue(), LOG, operation, [&] { work(*service_); });
}

// ---- actions

void DapoView::setDelegate(std::weak_ptr<DapoViewDelegate> delegate) {
    onMain("setDelegate", [&](auto& service) { service.setDelegate(std::move(delegate)); });
}

void DapoView::configureFrame(Placement placement) {
    onMain("configureFrame",
           [&](auto& service) { service.configureFrame(placement.to, placement.dapoImage); });
}

void DapoView::initialize(Initialization arguments) {
    platform::TovanNetworkConstants::setOnPremise(arguments.baseURL);
    onMain("initialize", [&](auto& service) { service.initialize(arguments); });
}

void DapoView::startService() {
    onMain("startService", [](auto& service) { service.startService(); });
}

void DapoView::stopService() {
    onMain("stopService", [](auto& service) { service.stopService(); });
}

void DapoView::setVisibility(bool isVisible) {
    onMain("setVisibility", [&](auto& service) { service.presentation().setVisibility(isVisible); });
}

void DapoView::setSelectionInterval(double seconds) {
    onMain("setSelectionInterval",
           [&](auto& service) { service.presentation().setSelectionInterval(seconds); });
}

void DapoView::setUnchangedDeliveryInterval(std::optional<double> seconds) {
    constexpr std::string_view OPERATION = "setUnchangedDeliveryInterval";
    onMain(OPERATION, [&](auto& service) {
        service.presentation().setUnchangedDeliveryInterval(OPERATION, seconds, false);
    });
}

// ---- queries

std::shared_ptr<DapoViewDelegate> DapoView::delegate() const {
    std::shared_ptr<DapoViewDelegate> delegate;
    onMain("delegate", [&](auto& service) { delegate = service.delegate(); });
    return delegate;
}

std::map<std::int64_t, DapoMapImage> DapoView::getDapoMapImages() const {
    std::map<std::int64_t, DapoMapImage> images;
    onMain("getDapoMapImages", [&](auto& service) { images = service.maps().byLevelId(); });
    return images;
}

std::optional<DapoMapImage> DapoView::getDapoMapImage(std::int64_t levelId) const {
    std::optional<DapoMapImage> image;
    onMain("getDapoMapImage", [&](auto& service) { image = service.maps().find(levelId); });
    return image;
}

std::optional<DapoSectorInfo> DapoView::getDapoSectorInfo() const {
    std::optional<DapoSectorInfo> info;
    onMain("getDapoSectorInfo", [&](auto& service) { info = service.sectorInfo(); });
    return info;
}

std::vector<DapoWard> DapoView::getCurrentDapoWards() const {
    std::vector<DapoWard> wards;
    onMain("getCurrentDapoWards", [&](auto& service) { wards = service.presentation().currentWards(); });
    return wards;
}

bool DapoView::getVisibility() const {
    bool hidden = true;
    onMain("getVisibility", [&](auto&) { hidden = isHidden(); });
    return hidden;
}

// ---- the generator's callbacks

// A sample that arrives after the view has gone is uploaded all the same.
void DapoView::onRfdResult(platform::RFDGenerator&, platform::ReceivedForce receivedForce) {
    sendToMain(*service_->mainQueue(),
               [weak = weakPart(*this, *service_), sample = std::move(receivedForce)]() mutable {
                   DapoBatchSender::shared().inputReceivedForce(sample);
                   if (const auto service = weak.lock()) service->handleRfd(std::move(sample));
               });
}

void DapoView::onRfdError(platform::RFDGenerator&, int code, const std::string& msg) {
    logGeneratorError(LOG, code, msg);
}

void DapoView::onRfdEmptyMillis(platform::RFDGenerator&, double time) {
    sendToMain(*service_->mainQueue(), [weak = weakPart(*this, *service_), time] {
        if (const auto service = weak.lock()) service->setRfdEmptyMillis(time);
    });
}

}  // namespace oska
