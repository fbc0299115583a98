#pragma once

#include <QPointer>
#include <memory>

#include "oska/views/view.h"

class QWidget;

namespace oska::qt {

/// A peer that shows its view through a widget.
class WidgetPeer : public platform::ViewPeer {
public:
    /// Null while the view has no place on the screen.
    [[nodiscard]] virtual QWidget* widget() const = 0;
};

/// The platform's `makeViewPeer`: the view is shown by a child of the widget that shows its superview.
[[nodiscard]] std::unique_ptr<platform::ViewPeer> makeViewPeer(views::View& view);

/// Puts the widgets of `view`'s subviews above whatever else lies over its widget, in the views' own order.
void raiseSubviews(const views::View& view);

}  // namespace oska::qt
