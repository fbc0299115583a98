#pragma once

#include <functional>
#include <memory>

namespace oska::views {
class View;
}

namespace oska::platform {

/// Which property of a view has changed. The new value is to be read from the view.
enum class ViewChange {
    frame,        ///< its place in its parent, in points
    hidden,       ///< whether it is hidden
    alpha,        ///< its opacity, 0 to 1
    clipping,     ///< whether it clips its subviews
    interaction,  ///< whether it takes taps
    hierarchy,    ///< its parent, its subviews or their order
    image,        ///< the image of an image view
};

/// Shows one view through a toolkit, which keeps a counterpart of the view. Views without a peer exist in
/// memory only.
///
/// The way back: the toolkit reports the frame of a view that it lays out itself with `View::setFrame`, and a
/// tap on a view with `View::handleTap`. Threads: main thread. Lifetime: the view owns its
/// peer, and destroys it before its subviews.
class ViewPeer {
public:
    virtual ~ViewPeer() = default;
    /// `view` has changed in `what`. Also called once for each kind of change when the view gets the peer.
    /// Must not change the tree.
    virtual void changed(const views::View& view, ViewChange what) = 0;
};

/// Makes the peer of a view that was added below a view with a peer. May return null: the view then stays
/// without one.
using ViewPeerFactory = std::function<std::unique_ptr<ViewPeer>(views::View&)>;

}  // namespace oska::platform
