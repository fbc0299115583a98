// What a host asks the view, and what it sets.
#include "oska/dapo/dapo_detection.h"
#include "oska/dapo/dapo_output.h"
#include "oska/dapo/dapo_sector.h"
#include "oska/dapo/dapo_view.h"
#include "oska/foundation/log_message.h"

namespace oska {
namespace {

constexpr Log LOG{"DapoView"};

}  // namespace

std::map<std::int64_t, DapoMapImage> DapoView::getDapoMapImages() const {
    std::map<std::int64_t, DapoMapImage> images;
    onMain("getDapoMapImages", [&] { images = detection_->maps().byLevelId(); });
    return images;
}

std::optional<DapoMapImage> DapoView::getDapoMapImage(std::int64_t levelId) const {
    std::optional<DapoMapImage> image;
    onMain("getDapoMapImage", [&] { image = detection_->maps().find(levelId); });
    return image;
}

std::optional<DapoSectorInfo> DapoView::getDapoSectorInfo() const {
    std::optional<DapoSectorInfo> info;
    onMain("getDapoSectorInfo", [&] {
        if (!dapoBundle_) return;
        auto sector = describeSector(*dapoBundle_, detection_->maps());
        logLevelsWithoutMap(sector.levelsWithoutMap);
        info = std::move(sector.info);
    });
    return info;
}

std::vector<DapoWard> DapoView::getCurrentDapoWards() const {
    std::vector<DapoWard> wards;
    onMain("getCurrentDapoWards", [&] { wards = output_->currentWards(); });
    return wards;
}

void DapoView::setVisibility(bool isVisible) {
    onMain("setVisibility", [&] { perform(output_->setVisibility(isVisible, now())); });
}

bool DapoView::getVisibility() const {
    bool hidden = true;
    onMain("getVisibility", [&] { hidden = isHidden(); });
    return hidden;
}

void DapoView::setSelectionInterval(double seconds) {
    onMain("setSelectionInterval", [&] {
        const auto accepted = acceptedOutputInterval(seconds);
        if (accepted) {
            outputInterval_ = *accepted;
        } else {
            LOG.warn("setSelectionInterval", "ignored because the interval is not a finite number above zero",
                     {{"seconds", seconds}});
        }
    });
}

void DapoView::setUnchangedDeliveryInterval(std::optional<double> seconds) {
    onMain("setUnchangedDeliveryInterval",
           [&] { storeUnchangedDeliveryInterval("setUnchangedDeliveryInterval", seconds, false); });
}

void DapoView::storeUnchangedDeliveryInterval(std::string_view operation, std::optional<double> seconds,
                                              bool refusedCountsAsNone) {
    const auto accepted = seconds ? acceptedUnchangedInterval(*seconds) : std::nullopt;
    const bool isRefused = seconds && !accepted;
    if (isRefused) {
        LOG.warn(operation, "ignored because the interval is not a number from zero on",
                 {{"seconds", *seconds}});
    }
    if (!isRefused || refusedCountsAsNone) output_->setUnchangedDeliveryInterval(accepted);
}

}  // namespace oska
