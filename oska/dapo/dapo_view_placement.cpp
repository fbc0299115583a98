// The view on the screen: where it lies, what it shows, and taps.
#include "oska/dapo/dapo_output.h"
#include "oska/dapo/dapo_view.h"
#include "oska/foundation/log_message.h"

namespace oska {
namespace {

using views::LayoutConstraint;
using enum LayoutConstraint::Edge;

constexpr Log LOG{"DapoView"};
constexpr double IMAGE_ALPHA = 0.65;
constexpr std::array EDGES{top, bottom, leading, trailing};

}  // namespace

void DapoView::configureFrame(Placement placement) {
    onMain("configureFrame", [&] { place(placement); });
}

void DapoView::place(const Placement& placement) {
    const auto& matchView = placement.to;
    if (!matchView) return LOG.error("configureFrame", "failed because matchView is nil");
    if (matchView->isAtOrBelow(*this))
        return LOG.error("configureFrame", "failed because matchView is in the view");
    writeDirectLine(logMessage("DapoView", "configureFrame",
                               {{"matchView.frame", describe(matchView->frame())},
                                {"matchView.bounds", describe(matchView->bounds())}}));
    if (superview() != matchView) matchView->addSubview(shared_from_this());
    pinEdges();
    matchView->setNeedsLayout();
    matchView->layoutIfNeeded();
    setupAssets(placement.dapoImage);
    setUserInteractionEnabled(true);
    addGestureRecognizer(tapRecognizer_);
    LOG.info("configureFrame", "success",
             {{"id", id_.value_or("nil")}, {"frame", describe(matchView->bounds())}});
}

void DapoView::pinEdges() {
    for (std::size_t i = 0; i < EDGES.size(); ++i) {
        auto& constraint = edgeConstraints_[i];
        if (constraint) constraint->setActive(false);
        constraint = LayoutConstraint::pin(shared_from_this(), EDGES[i]);
        constraint->setActive(true);
    }
}

void DapoView::setupAssets(std::shared_ptr<const views::Image> image) {
    dapoImage_ = image ? std::move(image) : views::imageNamed("ic_dapo");
    if (!dapoImage_) return LOG.error("setupAssets", "failed because dapo image is nil");
    if (dapoImageView_->superview().get() != this) {
        addSubview(dapoImageView_);
        for (const auto edge : EDGES) LayoutConstraint::pin(dapoImageView_, edge)->setActive(true);
    }
    dapoImageView_->setImage(dapoImage_);
    dapoImageView_->setAlpha(IMAGE_ALPHA);
    dapoImageView_->setClipsToBounds(false);
    layoutIfNeeded();
    LOG.info("setupAssets", "success");
}

void DapoView::handleTapDapo() {
    const auto wards = output_->currentWards();
    if (wards.empty()) return;
    if (const auto host = delegate_.lock()) host->onClick(*this, wards);
}

}  // namespace oska
