#include "tools/site_viewer/site_host.h"

#include <QString>
#include <utility>

#include "oska/foundation/network_constants.h"

namespace viewer {
namespace {

constexpr auto SERVICE_ID = "site-viewer";

template <class Code>
std::string failureOf(bool success, const std::optional<Code>& code) {
    if (success) return {};
    return code ? std::string(oska::caseName(*code)) : "failed";
}

}  // namespace

std::string namesOf(const std::vector<oska::DapoWard>& wards) {
    std::string names;
    for (const auto& ward : wards) names += (names.empty() ? "" : ", ") + ward.name;
    return names;
}

std::string describe(const oska::PelioResult& at) {
    return at.building_name + " " + at.level_name +
           QString(" (%1, %2)").arg(at.x, 0, 'f', 0).arg(at.y, 0, 'f', 0).toStdString();
}

std::shared_ptr<SiteHost> SiteHost::create(std::int64_t sectorId, const std::string& serverUrl,
                                           Callbacks callbacks) {
    auto host = std::shared_ptr<SiteHost>(new SiteHost(std::move(callbacks)));
    oska::OskaOnPremiseNetworkConstants::setBaseURL(serverUrl);
    host->pelio_ =
        oska::PelioServiceManager::create({.id = SERVICE_ID, .region = "KOREA", .sectorId = sectorId});
    host->pelio_->setDelegate(host);
    host->dapo_ = oska::DapoView::create();
    host->dapo_->setDelegate(host);
    host->dapo_->initialize({.id = SERVICE_ID, .sectorId = sectorId, .baseURL = serverUrl});
    return host;
}

void SiteHost::placeOverlay(std::shared_ptr<oska::views::View> host,
                            std::shared_ptr<const oska::views::Image> image) {
    dapo_->configureFrame({.to = std::move(host), .dapoImage = std::move(image)});
}

void SiteHost::restart() {
    pelio_->stopService();
    dapo_->stopService();
    noticeOverlay();
    position_.reset();
    trails_.clear();
    if (pelioOutcome_ && pelioOutcome_->empty()) pelio_->startService();
    if (dapoOutcome_ && dapoOutcome_->empty()) dapo_->startService();
}

void SiteHost::noticeOverlay() {
    const bool isShown = isOverlayShown();
    if (std::exchange(wasOverlayShown_, isShown) == isShown) return;
    callbacks_.onEvent(isShown ? "Dapo   overlay shown" : "Dapo   overlay hidden");
}

std::vector<QPointF> SiteHost::trailOn(std::int64_t levelId) const {
    const auto found = trails_.find(levelId);
    return found == trails_.end() ? std::vector<QPointF>() : found->second;
}

void SiteHost::settle(Outcome& outcome, const std::string& service, std::string failure) {
    const bool wasSettled = isSettled();
    callbacks_.onEvent(service + (failure.empty() ? " initialised" : " not initialised: " + failure));
    outcome = std::move(failure);
    if (!wasSettled && isSettled()) callbacks_.onSettled();
}

void SiteHost::onInitSuccess(oska::PelioServiceManager&, bool success,
                             std::optional<oska::PelioInitErrorCode> code) {
    settle(pelioOutcome_, "Pelio ", failureOf(success, code));
}

void SiteHost::onInitSuccess(oska::DapoView&, bool success, std::optional<oska::DapoInitErrorCode> code) {
    settle(dapoOutcome_, "Dapo  ", failureOf(success, code));
}

void SiteHost::onPelioSuccess(oska::PelioServiceManager&, bool success,
                              std::optional<oska::PelioErrorCode> code) {
    callbacks_.onEvent(success ? "Pelio  started" : "Pelio  not started: " + failureOf(success, code));
}

void SiteHost::onDapoSuccess(oska::DapoView&, bool success, std::optional<oska::DapoErrorCode> code) {
    callbacks_.onEvent(success ? "Dapo   started" : "Dapo   not started: " + failureOf(success, code));
}

void SiteHost::onPelioResult(oska::PelioServiceManager&, const oska::PelioResult& result) {
    position_ = result;
    auto& trail = trails_[result.level_id];
    const QPointF place(result.x, result.y);
    if (!trail.empty() && trail.back() == place) return;
    trail.push_back(place);
    callbacks_.onEvent("Pelio  " + describe(result));
}

void SiteHost::onClick(oska::DapoView&, const std::vector<oska::DapoWard>& dapoWards) {
    callbacks_.onEvent("Dapo   tapped: " + namesOf(dapoWards));
    callbacks_.onLinks(dapoWards);
}

void SiteHost::onDapoSelectionChanged(oska::DapoView&, const std::vector<oska::DapoWard>& dapoWards) {
    callbacks_.onEvent("Dapo   selection: " + namesOf(dapoWards));
}

}  // namespace viewer
