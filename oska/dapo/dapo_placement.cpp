#include "oska/dapo/dapo_placement.h"

#include <utility>

#include "oska/foundation/log_message.h"

namespace oska {
namespace {

using views::LayoutConstraint;
using enum LayoutConstraint::Edge;

constexpr Log LOG{"DapoView"};
constexpr double IMAGE_ALPHA = 0.65;
constexpr std::array EDGES{top, bottom, leading, trailing};

}  // namespace

void DapoPlacement::setTapAction(std::function<void()> action) {
    tapRecognizer_ = std::make_shared<views::TapGestureRecognizer>(std::move(action));
}

void DapoPlacement::place(const std::shared_ptr<views::View>& matchView,
                          std::shared_ptr<const views::Image> image, const std::optional<std::string>& id) {
    if (!matchView) return LOG.error("configureFrame", "failed because matchView is nil");
    if (matchView->isAtOrBelow(view_))
        return LOG.error("configureFrame", "failed because matchView is in the view");
    writeDirectLine(logMessage("DapoView", "configureFrame",
                               {{"matchView.frame", describe(matchView->frame())},
                                {"matchView.bounds", describe(matchView->bounds())}}));
    if (view_.superview() != matchView) matchView->addSubview(view_.shared_from_this());
    pinEdges();
    matchView->setNeedsLayout();
    matchView->layoutIfNeeded();
    setupAssets(std::move(image));
    view_.setUserInteractionEnabled(true);
    view_.addGestureRecognizer(tapRecognizer_);
    LOG.info("configureFrame", "success",
             {{"id", id.value_or("nil")}, {"frame", describe(matchView->bounds())}});
}

void DapoPlacement::pinEdges() {
    for (std::size_t i = 0; i < EDGES.size(); ++i) {
        auto& constraint = edgeConstraints_[i];
        if (constraint) constraint->setActive(false);
        constraint = LayoutConstraint::pin(view_.shared_from_this(), EDGES[i]);
        constraint->setActive(true);
    }
}

void DapoPlacement::setupAssets(std::shared_ptr<const views::Image> image) {
    dapoImage_ = image ? std::move(image) : views::imageNamed("ic_dapo");
    if (!dapoImage_) return LOG.error("setupAssets", "failed because dapo image is nil");
    if (dapoImageView_->superview().get() != &view_) {
        view_.addSubview(dapoImageView_);
        for (const auto edge : EDGES) LayoutConstraint::pin(dapoImageView_, edge)->setActive(true);
    }
    dapoImageView_->setImage(dapoImage_);
    dapoImageView_->setAlpha(IMAGE_ALPHA);
    dapoImageView_->setClipsToBounds(false);
    view_.layoutIfNeeded();
    LOG.info("setupAssets", "success");
}

}  // namespace oska
