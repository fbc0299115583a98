#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "oska/platform/view_peer.h"
#include "oska/views/geometry.h"
#include "oska/views/image.h"

namespace oska::views {

class LayoutConstraint;

/// Runs its action at each tap on the views that it was added to. Threads: main thread.
class TapGestureRecognizer {
public:
    explicit TapGestureRecognizer(std::function<void()> action) : action_(std::move(action)) {}
    void recognize() const { action_(); }

private:
    std::function<void()> action_;
};

/// A rectangle on the screen, in a tree: what a view shows lies over its superview and over the subviews that
/// were added to it before.
///
/// A frame is as it was set, unless edges of the view are pinned (see LayoutConstraint): those follow the
/// superview at its next layout, which a change of the superview's size does at once. Threads: main thread;
/// the last reference, too. Lifetime: a view owns its subviews and knows its superview weakly.
class View : public std::enable_shared_from_this<View> {
public:
    [[nodiscard]] static std::shared_ptr<View> create(const Rect& frame = {});

    virtual ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    /// Null when there is none.
    [[nodiscard]] std::shared_ptr<View> superview() const { return superview_.lock(); }
    /// The topmost last.
    [[nodiscard]] const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }
    /// Puts `view` on top of the subviews, from wherever it was before. Adding a view to itself or to a view
    /// below it is a programming error.
    void addSubview(std::shared_ptr<View> view);
    /// Whether `other` is this view or one around it.
    [[nodiscard]] bool isAtOrBelow(const View& other) const;
    /// The view's pins end. Nothing happens without a superview.
    void removeFromSuperview();

    [[nodiscard]] const Rect& frame() const { return frame_; }  ///< in the superview's points
    [[nodiscard]] Rect bounds() const { return {0, 0, frame_.width, frame_.height}; }  ///< in its own
    void setFrame(const Rect& frame);

    /// Whether the view and everything in it is invisible.
    [[nodiscard]] bool isHidden() const { return isHidden_; }
    void setHidden(bool isHidden);
    /// From 0, invisible, to 1; numbers beyond count as these.
    [[nodiscard]] double alpha() const { return alpha_; }
    void setAlpha(double alpha);
    /// What the view shows of its own: null but for an ImageView with an image.
    [[nodiscard]] virtual std::shared_ptr<const Image> image() const { return nullptr; }
    /// Whether subviews are cut off at the view's edges.
    [[nodiscard]] bool clipsToBounds() const { return clipsToBounds_; }
    void setClipsToBounds(bool clipsToBounds);

    /// Whether taps reach the view and everything in it.
    [[nodiscard]] bool isUserInteractionEnabled() const { return isUserInteractionEnabled_; }
    void setUserInteractionEnabled(bool isEnabled);
    /// Whether taps find this view, unless one around it keeps them away: it is neither hidden nor nearly
    /// transparent nor closed to interaction.
    [[nodiscard]] bool canBeTapped() const;
    /// One that is already there is not added again.
    void addGestureRecognizer(const std::shared_ptr<TapGestureRecognizer>& recognizer);
    /// The topmost view at `point`, in this view's points, that a tap can reach: it and all views around it
    /// can be tapped. Null when there is none.
    [[nodiscard]] std::shared_ptr<View> hitTest(ViewPoint point);
    /// A tap at `point`, in this view's points. False when nothing heard it.
    bool tapAt(ViewPoint point);
    /// A tap on this view: heard by its recognisers or, when it has none, by those of the nearest view around
    /// it that has some. False when nothing heard it.
    bool handleTap();

    /// Asks for the subviews' pinned edges to be put in place at the next `layoutIfNeeded`.
    void setNeedsLayout() { needsLayout_ = true; }
    /// Does so now, for this view and all below it.
    void layoutIfNeeded();

    /// How a toolkit comes to show a tree: it gives the top view a peer, and views below get theirs from the
    /// installed platform, now and when they are added.
    void setPeer(std::unique_ptr<platform::ViewPeer> peer);
    [[nodiscard]] platform::ViewPeer* peer() const { return peer_.get(); }

protected:
    explicit View(const Rect& frame);
    void tellPeer(platform::ViewChange what) const;

private:
    friend class LayoutConstraint;

    void makePeers();
    void applyPins();
    void endPins();

    std::weak_ptr<View> superview_;
    std::vector<std::shared_ptr<View>> subviews_;
    std::vector<std::shared_ptr<LayoutConstraint>> pins_;  // the active ones
    std::vector<std::shared_ptr<TapGestureRecognizer>> recognizers_;
    Rect frame_;
    double alpha_ = 1;
    bool isHidden_ = false;
    bool clipsToBounds_ = false;
    bool isUserInteractionEnabled_ = true;
    bool needsLayout_ = false;
    std::unique_ptr<platform::ViewPeer> peer_;  // last: destroyed first
};

/// Keeps one edge of a view on the same edge of its superview while it is active; leading is left. An edge
/// that is not pinned moves with its opposite one, and two pinned edges stretch the view between them. An
/// active constraint needs no owner. It ends when the view leaves its superview.
class LayoutConstraint : public std::enable_shared_from_this<LayoutConstraint> {
public:
    enum class Edge { top, bottom, leading, trailing };

    /// Not active yet.
    [[nodiscard]] static std::shared_ptr<LayoutConstraint> pin(const std::shared_ptr<View>& view, Edge edge);

    [[nodiscard]] bool isActive() const { return isActive_; }
    void setActive(bool isActive);
    [[nodiscard]] Edge edge() const { return edge_; }

private:
    friend class View;

    LayoutConstraint(const std::shared_ptr<View>& view, Edge edge) : view_(view), edge_(edge) {}

    std::weak_ptr<View> view_;
    Edge edge_;
    bool isActive_ = false;
};

}  // namespace oska::views
