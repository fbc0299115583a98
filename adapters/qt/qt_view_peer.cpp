#include "adapters/qt/qt_view_peer.h"

#include <QWidget>
#include <utility>

#include "adapters/qt/qt_image.h"
#include "adapters/qt/qt_view_widget.h"

namespace oska::qt {
namespace {

using platform::ViewChange;
using views::View;

QWidget* widgetOf(const View* view) {
    const auto* peer = view ? dynamic_cast<WidgetPeer*>(view->peer()) : nullptr;
    return peer ? peer->widget() : nullptr;
}

/// Each edge is rounded to whole points, so that views that share an edge share it on the screen, too.
QRect toWholePoints(const views::Rect& rect) {
    const QPoint topLeft(qRound(rect.x), qRound(rect.y));
    const QPoint end(qRound(rect.x + rect.width), qRound(rect.y + rect.height));
    return {topLeft, QSize(end.x() - topLeft.x(), end.y() - topLeft.y())};
}

class QtViewPeer final : public WidgetPeer {
public:
    explicit QtViewPeer(std::weak_ptr<View> view) : view_(std::move(view)) {}
    ~QtViewPeer() override { discardWidget(); }
    QtViewPeer(const QtViewPeer&) = delete;
    QtViewPeer& operator=(const QtViewPeer&) = delete;

    [[nodiscard]] QWidget* widget() const override { return widget_; }

    void changed(const View& view, ViewChange what) override {
        if (what == ViewChange::hierarchy) return place(view);
        if (widget_) apply(view, what);
    }

private:
    void place(const View& view);
    void apply(const View& view, ViewChange what);
    void discardWidget();

    const std::weak_ptr<View> view_;
    QPointer<ViewWidget> widget_;  // owned by its parent, which may be destroyed before the view
};

void QtViewPeer::place(const View& view) {
    auto* parent = widgetOf(view.superview().get());
    if (!widget_ || widget_->parentWidget() != parent) {
        discardWidget();
        if (!parent) return;
        widget_ = new ViewWidget(view_, *parent);
        using enum ViewChange;
        for (const auto what : {frame, interaction, image, hidden}) apply(view, what);
        for (const auto& subview : view.subviews()) {
            if (auto* peer = dynamic_cast<QtViewPeer*>(subview->peer())) peer->place(*subview);
        }
    }
    widget_->raise();
}

void QtViewPeer::apply(const View& view, ViewChange what) {
    switch (what) {
        case ViewChange::frame:
            return widget_->place(toWholePoints(view.frame()));
        case ViewChange::hidden:
            widget_->setTappable(view.canBeTapped());
            return widget_->setVisible(!view.isHidden());
        case ViewChange::alpha:
        case ViewChange::interaction:
            widget_->setTappable(view.canBeTapped());
            return widget_->update();
        case ViewChange::image:
            return widget_->showImage(decoded(view.image()));
        case ViewChange::clipping:  // a child widget is always clipped
        case ViewChange::hierarchy:
            return;
    }
}

void QtViewPeer::discardWidget() {
    if (!widget_) return;
    ViewWidget::discard(std::exchange(widget_, nullptr));
}

}  // namespace

std::unique_ptr<platform::ViewPeer> makeViewPeer(View& view) {
    return std::make_unique<QtViewPeer>(view.weak_from_this());
}

void raiseSubviews(const View& view) {
    for (const auto& subview : view.subviews()) {
        if (auto* widget = widgetOf(subview.get())) widget->raise();
    }
}

}  // namespace oska::qt
