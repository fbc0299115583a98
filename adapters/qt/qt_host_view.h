#pragma once

#include <memory>

#include "oska/views/view.h"

class QWidget;

namespace oska::qt {

/// The view that stands for a widget of the host. Views that are added to it are shown over the widget: as
/// child widgets, above its other children. They follow its size.
///
///     dapoView->configureFrame({.to = oska::qt::viewOf(*mapWidget)});
///
/// A widget always has the same view. The view's frame is the widget's geometry, in points. Qt reports the
/// geometry of a widget that was never shown only when it is shown, or passed to this function. All other
/// properties of the view (hidden, alpha, interaction, recognisers) have no effect on the widget.
///
/// What Qt's widgets cannot do: views are always clipped to the widget and to the views around them,
/// even when `clipsToBounds` is false. A child that the host raises later lies above the views; a stacked
/// widget raises the page that it shows, so pass the page. For a scroll area pass its `viewport()`, which
/// holds the content and receives the wheel.
///
/// Input: a left click and a touch on a view are taps. Other buttons, the wheel and keys reach the widget.
/// While the view is hidden, nearly transparent or closed to interaction, all input reaches the widget. A
/// disabled host widget gets no taps. A press that becomes a drag is not a tap, and does not reach the
/// widget either.
///
/// Threads: the application's thread only. Lifetime: the widget owns its view. When the widget is destroyed,
/// the views over it are no longer on the screen; they may be added to another widget's view. Views that have
/// no other owner are destroyed with it. Requires: the installed platform shows views as widgets
/// (`QtPlatform`).
[[nodiscard]] std::shared_ptr<views::View> viewOf(QWidget& widget);

}  // namespace oska::qt
