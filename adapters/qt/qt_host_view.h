#pragma once

#include <memory>

#include "oska/views/view.h"

class QWidget;

namespace oska::qt {

/// The view that stands for a widget of the host's: what is added to it is shown over the widget, as child
/// widgets that lie above its other children and follow its size.
///
///     dapoView->configureFrame({.to = oska::qt::viewOf(*mapWidget)});
///
/// It is always the same view for a widget. Its frame is the widget's geometry, as far as Qt has told: a
/// widget that was never shown tells its size when it is, or when it is passed here. Whatever else is set on
/// the view (hidden, alpha, interaction, recognisers) has no effect on the widget.
///
/// What Qt's widgets cannot do: views are always cut off at the edges of the widget and of the views around
/// them, whatever `clipsToBounds` says; and a child that the host raises afterwards lies above the views, as
/// the page does that a stacked widget turns to: there, pass the page. For a scroll area, pass its
/// `viewport()`: that is where its content is, and who hears the wheel.
///
/// Input: a left click and a touch on a view are taps. All else that happens over it reaches the widget:
/// other buttons, the wheel, keys; and everything does while the view is hidden, nearly transparent or closed
/// to interaction. A host that is disabled has no taps either. A press that becomes a drag is no tap, and
/// nobody else's.
///
/// Threads: the application's. Lifetime: the widget owns its view. When the widget is destroyed, the views
/// over it lose their place on the screen, and may be moved to another widget's view; views that nobody else
/// holds are destroyed with it. Needs an installed platform whose views are shown as widgets (QtPlatform).
[[nodiscard]] std::shared_ptr<views::View> viewOf(QWidget& widget);

}  // namespace oska::qt
