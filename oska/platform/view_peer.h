#pragma once

#include <functional>
#include <memory>

namespace oska::views {
class View;
}

namespace oska::platform {

/// What of a view has changed, to be read from the view.
enum class ViewChange { frame, hidden, alpha, clipping, interaction, hierarchy, image };

/// Shows one view through a toolkit, which keeps a counterpart of it. Views without a peer are a tree in
/// memory.
///
/// The way back: a toolkit tells the geometry of a view that it lays out itself with `View::setFrame`, and a
/// tap that it has found a view for with `View::handleTap`. Threads: main thread. Lifetime: the view owns its
/// peer, and destroys it before its subviews.
class ViewPeer {
public:
    virtual ~ViewPeer() = default;
    /// Also called once for each kind of change when the view is given the peer. Must not change the tree.
    virtual void changed(const views::View& view, ViewChange what) = 0;
};

/// Makes the peer of a view that has come under one which has a peer; null to leave it without.
using ViewPeerFactory = std::function<std::unique_ptr<ViewPeer>(views::View&)>;

}  // namespace oska::platform
