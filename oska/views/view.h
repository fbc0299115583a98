#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "oska/platform/view_peer.h"
#include "oska/views/geometry.h"
#include "oska/views/image.h"

namespace oska::views {

class LayoutConstraint;

/// Runs an action at each tap on the views that it was added to. Threads: main thread. Lifetime: shared by
/// those views; the action is kept as long.
class TapGestureRecognizer {
public:
    /// `action` must not be empty.
    explicit TapGestureRecognizer(std::function<void()> action) : action_(std::move(action)) {}

    /// Runs the action now.
    void recognize() const { action_(); }

private:
    std::function<void()> action_;
};

/// A rectangle on the screen, and the views in it. A view covers its superview, and those of the superview's
/// subviews that were added before it.
///
/// A frame stays as it was set, unless edges of the view are pinned (see LayoutConstraint). Pinned edges
/// follow the superview at its next layout; changing the superview's size lays it out at once.
///
/// Threads: main thread only, also for the release of the last reference. Lifetime: a view owns its subviews
/// and holds its superview weakly. Errors: misuse ends the program with one line.
class View : public std::enable_shared_from_this<View> {
public:
    /// A view without a superview. `frame` is in points.
    [[nodiscard]] static std::shared_ptr<View> create(const Rect& frame = {});

    virtual ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    // ---- the tree

    /// The view that this one is in, or null.
    [[nodiscard]] std::shared_ptr<View> superview() const { return superview_.lock(); }

    /// The views directly in this one, the topmost last.
    [[nodiscard]] const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }

    /// Puts `view` on top of the subviews and removes it from where it was before. It is a programming error
    /// to add null, the view itself, or a view that contains this one.
    void addSubview(std::shared_ptr<View> view);

    /// Whether `other` is this view or contains it, directly or indirectly.
    [[nodiscard]] bool isAtOrBelow(const View& other) const;

    /// Takes the view out of its superview and ends its constraints. Without a superview nothing happens.
    void removeFromSuperview();

    // ---- geometry and look

    /// Place and size, in the superview's points.
    [[nodiscard]] const Rect& frame() const { return frame_; }

    /// The same rectangle in the view's own points: its corner is (0, 0).
    [[nodiscard]] Rect bounds() const { return {0, 0, frame_.width, frame_.height}; }

    /// Moves and resizes the view. A new size lays out the subviews before the call returns.
    void setFrame(const Rect& frame);

    /// Whether the view, with all views in it, is invisible. At first it is not.
    [[nodiscard]] bool isHidden() const { return isHidden_; }
    /// Tells the peer when the value changes.
    void setHidden(bool isHidden);

    /// Opacity from 0 (invisible) to 1, the value at first. A number outside that range is set to its nearer
    /// end.
    [[nodiscard]] double alpha() const { return alpha_; }
    /// Numbers outside 0 to 1 become 0 or 1.
    void setAlpha(double alpha);

    /// The image that the view itself shows; null unless it is an ImageView with an image.
    [[nodiscard]] virtual std::shared_ptr<const Image> image() const { return nullptr; }

    /// Whether subviews are cut off at the view's edges. At first they are not.
    [[nodiscard]] bool clipsToBounds() const { return clipsToBounds_; }
    /// Tells the peer when the value changes.
    void setClipsToBounds(bool clipsToBounds);

    // ---- taps

    /// Whether taps can reach the view and the views in it. At first they can.
    [[nodiscard]] bool isUserInteractionEnabled() const { return isUserInteractionEnabled_; }
    /// Tells the peer when the value changes.
    void setUserInteractionEnabled(bool isEnabled);

    /// Whether this view itself lets taps through to it: interaction is enabled, it is not hidden, and its
    /// alpha is at least 0.01. The views that contain it are not looked at.
    [[nodiscard]] bool canBeTapped() const;

    /// Adds a recogniser. One that the view already has is not added again.
    void addGestureRecognizer(const std::shared_ptr<TapGestureRecognizer>& recognizer);

    /// The view that a tap at `point`, in this view's points, reaches: the topmost one there that can be
    /// tapped together with all views between it and this one. Null when there is none.
    [[nodiscard]] std::shared_ptr<View> hitTest(ViewPoint point);

    /// Handles a tap at `point`, in this view's points. Returns whether a recogniser ran.
    bool tapAt(ViewPoint point);

    /// Handles a tap on this view: runs its recognisers or, when it has none, those of the nearest view that
    /// contains it and has some. Returns whether a recogniser ran. An action may change or release the views.
    bool handleTap();

    // ---- layout

    /// Marks the subviews' pinned edges to be moved into place by the next layoutIfNeeded().
    void setNeedsLayout() { needsLayout_ = true; }

    /// Moves pinned edges into place, in every view from this one down that is marked.
    void layoutIfNeeded();

    // ---- showing

    /// Makes a toolkit show this view and the views in it. The toolkit gives the topmost view its peer; the
    /// views below get theirs from the installed platform's `makeViewPeer`, now and when they are added. Null
    /// takes the peer away.
    void setPeer(std::unique_ptr<platform::ViewPeer> peer);

    /// The peer, owned by the view, or null.
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

/// Keeps one edge of a view on the same edge of its superview while it is active.
///
/// When only one of two opposite edges is pinned, the view keeps its size and moves; when both are pinned, it
/// is stretched between them. A constraint takes effect at the superview's next layout.
///
/// Threads: main thread. Lifetime: an active constraint is owned by its view, so the caller need not keep it.
/// It becomes inactive when the view leaves its superview.
class LayoutConstraint : public std::enable_shared_from_this<LayoutConstraint> {
public:
    /// The edges of a view.
    enum class Edge {
        top,       ///< the upper edge
        bottom,    ///< the lower edge
        leading,   ///< the left edge
        trailing,  ///< the right edge
    };

    /// A constraint that is not active yet. It holds `view` weakly.
    [[nodiscard]] static std::shared_ptr<LayoutConstraint> pin(const std::shared_ptr<View>& view, Edge edge);

    /// Whether the edge is kept in place.
    [[nodiscard]] bool isActive() const { return isActive_; }

    /// Switches the constraint on or off. On a view without a superview this is a programming error, unless
    /// it changes nothing; after the view is gone nothing happens.
    void setActive(bool isActive);

    /// The edge that is pinned.
    [[nodiscard]] Edge edge() const { return edge_; }

private:
    friend class View;

    LayoutConstraint(const std::shared_ptr<View>& view, Edge edge) : view_(view), edge_(edge) {}

    std::weak_ptr<View> view_;
    Edge edge_;
    bool isActive_ = false;
};

}  // namespace oska::views
