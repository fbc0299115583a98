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

/// The platform's `makeViewPeer`. The view's widget is a child of the widget of its superview.
[[nodiscard]] std::unique_ptr<platform::ViewPeer> makeViewPeer(views::View& view);

/// Raises the widgets of the subviews above all other children of the view's widget, in the order of the
/// views.
void raiseSubviews(const views::View& view);

}  // namespace oska::qt
