#include "oska/views/view.h"

#include <algorithm>
#include <utility>

#include "oska/platform/platform.h"

namespace oska::views {
namespace {

using Edge = LayoutConstraint::Edge;

// A fainter view can hardly be seen, so taps do not reach it.
constexpr double FAINTEST_TAPPABLE_ALPHA = 0.01;

struct Span {
    double start;
    double length;
};

/// Where `span` lies after pinning its start, its end or both inside a length of `available`.
Span pinned(Span span, bool atStart, bool atEnd, double available) {
    if (atStart && atEnd) return {0, available};
    if (atStart) return {0, span.length};
    if (atEnd) return {available - span.length, span.length};
    return span;
}

}  // namespace

std::shared_ptr<View> View::create(const Rect& frame) { return std::shared_ptr<View>(new View(frame)); }

View::View(const Rect& frame) : frame_(frame) {}

View::~View() {
    for (const auto& view : subviews_) {
        view->superview_.reset();
        view->endPins();
    }
}

void View::tellPeer(platform::ViewChange what) const {
    if (peer_) peer_->changed(*this, what);
}

// ---- the tree

// By value: the argument may be an element of the list that this function changes.
void View::addSubview(std::shared_ptr<View> view) {  // NOLINT(performance-unnecessary-value-param)
    if (!view || isAtOrBelow(*view))
        platform::programmingError("View::addSubview was given null, the view itself or one around it");
    if (view->superview().get() == this) {
        const auto at = std::find(subviews_.begin(), subviews_.end(), view);
        std::rotate(at, at + 1, subviews_.end());
    } else {
        view->removeFromSuperview();
        subviews_.push_back(view);
        view->superview_ = weak_from_this();
        setNeedsLayout();
    }
    if (peer_) view->makePeers();
    view->tellPeer(platform::ViewChange::hierarchy);
}

void View::removeFromSuperview() {
    const auto above = superview();
    if (!above) return;
    const auto self = shared_from_this();
    std::erase(above->subviews_, self);
    superview_.reset();
    endPins();
    tellPeer(platform::ViewChange::hierarchy);
}

bool View::isAtOrBelow(const View& other) const {
    if (this == &other) return true;
    const auto above = superview();
    return above && above->isAtOrBelow(other);
}

// ---- geometry and layout

void View::setFrame(const Rect& frame) {
    if (frame == frame_) return;
    const bool isResized = frame.size() != frame_.size();
    frame_ = frame;
    tellPeer(platform::ViewChange::frame);
    if (!isResized) return;
    setNeedsLayout();
    layoutIfNeeded();
}

void View::layoutIfNeeded() {
    if (std::exchange(needsLayout_, false)) {
        for (const auto& view : subviews_) view->applyPins();
    }
    for (const auto& view : subviews_) view->layoutIfNeeded();
}

void View::applyPins() {
    const auto above = superview();
    if (!above || pins_.empty()) return;
    const auto isPinned = [this](Edge edge) {
        return std::any_of(pins_.begin(), pins_.end(),
                           [edge](const auto& pin) { return pin->edge() == edge; });
    };
    const auto [x, width] = pinned({frame_.x, frame_.width}, isPinned(Edge::leading),
                                   isPinned(Edge::trailing), above->frame_.width);
    const auto [y, height] =
        pinned({frame_.y, frame_.height}, isPinned(Edge::top), isPinned(Edge::bottom), above->frame_.height);
    setFrame({x, y, width, height});
}

void View::endPins() {
    for (const auto& pin : pins_) pin->isActive_ = false;
    pins_.clear();
}

std::shared_ptr<LayoutConstraint> LayoutConstraint::pin(const std::shared_ptr<View>& view, Edge edge) {
    return std::shared_ptr<LayoutConstraint>(new LayoutConstraint(view, edge));
}

void LayoutConstraint::setActive(bool isActive) {
    const auto view = view_.lock();
    if (!view || isActive == isActive_) return;
    const auto above = view->superview();
    if (!above)
        platform::programmingError("LayoutConstraint::setActive was called on a view without a superview");
    const auto self = shared_from_this();
    isActive_ = isActive;
    if (isActive) {
        view->pins_.push_back(self);
    } else {
        std::erase(view->pins_, self);
    }
    above->setNeedsLayout();
}

// ---- look

void View::setHidden(bool isHidden) {
    if (std::exchange(isHidden_, isHidden) != isHidden) tellPeer(platform::ViewChange::hidden);
}

void View::setAlpha(double alpha) {
    const double inRange = std::clamp(alpha, 0.0, 1.0);
    if (std::exchange(alpha_, inRange) != inRange) tellPeer(platform::ViewChange::alpha);
}

void View::setClipsToBounds(bool clipsToBounds) {
    if (std::exchange(clipsToBounds_, clipsToBounds) != clipsToBounds)
        tellPeer(platform::ViewChange::clipping);
}

void View::setUserInteractionEnabled(bool isEnabled) {
    if (std::exchange(isUserInteractionEnabled_, isEnabled) != isEnabled)
        tellPeer(platform::ViewChange::interaction);
}

// ---- taps

void View::addGestureRecognizer(const std::shared_ptr<TapGestureRecognizer>& recognizer) {
    if (std::find(recognizers_.begin(), recognizers_.end(), recognizer) == recognizers_.end()) {
        recognizers_.push_back(recognizer);
    }
}

bool View::canBeTapped() const {
    return isUserInteractionEnabled_ && !isHidden_ && alpha_ >= FAINTEST_TAPPABLE_ALPHA;
}

std::shared_ptr<View> View::hitTest(ViewPoint point) {
    if (!canBeTapped() || !bounds().contains(point)) return nullptr;
    for (auto view = subviews_.rbegin(); view != subviews_.rend(); ++view) {
        const auto& frame = (*view)->frame_;
        if (auto hit = (*view)->hitTest({point.x - frame.x, point.y - frame.y})) return hit;
    }
    return shared_from_this();
}

bool View::tapAt(ViewPoint point) {
    const auto hit = hitTest(point);
    return hit && hit->handleTap();
}

bool View::handleTap() {
    auto heard = shared_from_this();
    while (heard && heard->recognizers_.empty()) heard = heard->superview();
    if (!heard) return false;
    const auto recognizers = heard->recognizers_;  // a copy: an action may change the tree
    for (const auto& recognizer : recognizers) recognizer->recognize();
    return true;
}

// ---- peers

void View::setPeer(std::unique_ptr<platform::ViewPeer> peer) {
    using enum platform::ViewChange;
    peer_ = std::move(peer);
    if (!peer_) return;
    for (const auto what : {hierarchy, frame, hidden, alpha, clipping, interaction, image}) tellPeer(what);
    for (const auto& view : subviews_) view->makePeers();
}

void View::makePeers() {
    const auto& make = platform::current().makeViewPeer;
    if (peer_ || !make) return;
    setPeer(make(*this));
}

}  // namespace oska::views
