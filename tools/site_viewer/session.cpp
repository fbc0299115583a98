#include "tools/site_viewer/session.h"

#include <utility>

#include "tools/site_viewer/overlay_image.h"

namespace viewer {

Session::Session(const oska::tool::Site& site, const std::string& siteFolder, const std::string& serverUrl,
                 Player& player, Callbacks callbacks)
    : site_(site),
      player_(player),
      callbacks_(std::move(callbacks)),
      images_(site.levels.size()),
      host_(SiteHost::create(site.sectorId, serverUrl,
                             {.onSettled = [this] { beReadyOnce(); },
                              .onEvent = callbacks_.onEvent,
                              .onLinks = callbacks_.onLinks})),
      mapImages_(siteFolder, serverUrl) {
    player_.setListener(this);
    loadImages();
}

Session::~Session() { player_.setListener(nullptr); }

void Session::loadImages() {
    imagesUnderWay_ = images_.size();
    for (std::size_t level = 0; level < images_.size(); ++level) {
        const auto& url = site_.levels[level].map.url;
        mapImages_.load(url, [this, level, url](QImage image, const std::string& problem) {
            images_[level] = std::move(image);
            --imagesUnderWay_;
            if (!problem.empty()) callbacks_.onEvent("Map    " + url + ": " + problem);
            beReadyOnce();
        });
    }
}

void Session::beReadyOnce() {
    if (isReady_ || imagesUnderWay_ > 0 || !host_->isSettled()) return;
    isReady_ = true;
    host_->restart();
    callbacks_.onReady();
}

void Session::placeOverlay(const std::shared_ptr<oska::views::View>& host, std::size_t level) {
    host_->placeOverlay(host, overlayImage(extentOf(picture(level)).size()));
}

LevelPicture Session::picture(std::size_t level) const {
    const auto& shown = site_.levels[level];
    const auto& at = host_->position();
    LevelPicture picture{
        .level = &shown,
        .image = images_[level],
        .wards = readingsOf(site_, level, strengths_, host_->selection(), player_.position()),
        .trail = host_->trailOn(shown.id)};
    if (at && at->level_id == shown.id) picture.phone = QPointF(at->x, at->y);
    return picture;
}

std::optional<std::size_t> Session::phoneLevel() const {
    const auto& at = host_->position();
    return at ? site_.findLevel(at->level_id, std::nullopt) : std::nullopt;
}

std::string Session::positionText() const {
    if (const auto problem = host_->pelioProblem(); !problem.empty()) return "not running: " + problem;
    return host_->position() ? describe(*host_->position()) : "no position yet";
}

std::string Session::overlayText() const {
    if (const auto problem = host_->dapoProblem(); !problem.empty()) return "not running: " + problem;
    const auto selection = host_->selection();
    if (selection.empty()) return host_->isOverlayShown() ? "shown" : "hidden";
    return (host_->isOverlayShown() ? "shown for " : "hidden; ") + namesOf(selection);
}

void Session::onRewound() {
    strengths_.clear();
    host_->restart();
    callbacks_.onRewound();
}

void Session::onSamplePlayed(const oska::platform::ReceivedForce& sample) {
    strengths_.add(sample, player_.position());
    host_->noticeOverlay();
}

void Session::onPlayerChanged() {
    host_->noticeOverlay();
    callbacks_.onChanged();
}

}  // namespace viewer
