#include "adapters/qt/qt_host_view.h"

#include <QChildEvent>
#include <QPointer>
#include <QWidget>

#include "adapters/qt/qt_view_peer.h"

namespace oska::qt {
namespace {

using views::View;

/// The peer of a host widget's view. Changes of the view have no effect on the widget.
class HostPeer final : public WidgetPeer {
public:
    explicit HostPeer(QWidget& widget) : widget_(&widget) {}
    [[nodiscard]] QWidget* widget() const override { return widget_; }
    void changed(const View&, platform::ViewChange) override {}

private:
    const QPointer<QWidget> widget_;
};

/// Owns a widget's view. It is a child of the widget, so that it is destroyed with it.
class HostView final : public QObject {
public:
    explicit HostView(QWidget& widget) : QObject(&widget), widget_(widget), view_(View::create()) {
        view_->setPeer(std::make_unique<HostPeer>(widget));
        widget.installEventFilter(this);
    }
    ~HostView() override { view_->setPeer(nullptr); }
    HostView(const HostView&) = delete;
    HostView& operator=(const HostView&) = delete;

    [[nodiscard]] const std::shared_ptr<View>& view() const { return view_; }

    void followGeometry() {
        const auto rect = widget_.geometry();
        view_->setFrame({static_cast<double>(rect.x()), static_cast<double>(rect.y()),
                         static_cast<double>(rect.width()), static_cast<double>(rect.height())});
    }

    bool eventFilter(QObject*, QEvent* event) override {
        switch (event->type()) {
            case QEvent::Move:
            case QEvent::Resize:
                followGeometry();
                break;
            case QEvent::ChildAdded:
            case QEvent::ChildPolished:
                if (static_cast<QChildEvent*>(event)->child()->isWidgetType()) raiseSubviews(*view_);
                break;
            default:
                break;
        }
        return false;
    }

private:
    QWidget& widget_;
    const std::shared_ptr<View> view_;
};

HostView* hostViewOf(const QWidget& widget) {
    for (auto* child : widget.children()) {
        if (auto* hostView = dynamic_cast<HostView*>(child)) return hostView;
    }
    return nullptr;
}

}  // namespace

std::shared_ptr<View> viewOf(QWidget& widget) {
    auto* hostView = hostViewOf(widget);
    if (!hostView) hostView = new HostView(widget);  // owned by the widget
    hostView->followGeometry();
    return hostView->view();
}

}  // namespace oska::qt
