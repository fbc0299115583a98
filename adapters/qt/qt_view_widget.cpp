#include "adapters/qt/qt_view_widget.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QTouchEvent>
#include <utility>

namespace oska::qt {
namespace {

using views::View;

/// The product of the view's alpha and that of all views around it.
double effectiveAlpha(const View& view) {
    const auto above = view.superview();
    return above ? view.alpha() * effectiveAlpha(*above) : view.alpha();
}

QRectF aspectFit(QSize content, QSize box) {
    const auto rect =
        views::aspectFit({static_cast<double>(content.width()), static_cast<double>(content.height())},
                         {static_cast<double>(box.width()), static_cast<double>(box.height())});
    return {rect.x, rect.y, rect.width, rect.height};
}

/// Some systems also make a mouse event of a touch, which must not count as a second tap.
bool isFromTouchScreen(const QMouseEvent& event) {
    return event.deviceType() == QInputDevice::DeviceType::TouchScreen;
}

}  // namespace

ViewWidget::ViewWidget(std::weak_ptr<View> view, QWidget& parent) : QWidget(&parent), view_(std::move(view)) {
    setAttribute(Qt::WA_AcceptTouchEvents);
    // Otherwise a style sheet for all of the host's widgets would give it a background.
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    setMouseTracking(true);  // the host's widget may track the mouse
}

void ViewWidget::discard(ViewWidget* widget) {
    if (!widget->isInTap_) {
        delete widget;
        return;
    }
    widget->setParent(nullptr);
    widget->deleteLater();
}

void ViewWidget::place(const QRect& frame) {
    frame_ = frame;
    setGeometry(frame);
}

void ViewWidget::showImage(const QImage& image) {
    image_ = image;
    update();
}

void ViewWidget::setTappable(bool canBeTapped) {
    setAttribute(Qt::WA_TransparentForMouseEvents, !canBeTapped);
    if (!canBeTapped) tracker_.cancel();
}

// ---- look

void ViewWidget::paintEvent(QPaintEvent*) {
    const auto view = view_.lock();
    if (!view || image_.isNull()) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setOpacity(effectiveAlpha(*view));
    painter.drawImage(aspectFit(image_.size(), size()), image_);
}

// A host widget that scrolls its content moves its children, too.
void ViewWidget::moveEvent(QMoveEvent*) {
    if (geometry() != frame_) setGeometry(frame_);
}

// ---- taps

bool ViewWidget::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TouchCancel:
            event->accept();
            touch(*static_cast<QTouchEvent*>(event));
            return true;
        case QEvent::Polish:
        case QEvent::StyleChange: {
            const bool isHandled = QWidget::event(event);
            // A style sheet for all of the host's widgets may limit their sizes.
            setMinimumSize(0, 0);
            setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
            setGeometry(frame_);
            return isHandled;
        }
        default:
            return QWidget::event(event);
    }
}

void ViewWidget::touch(const QTouchEvent& event) {
    if (event.type() == QEvent::TouchCancel || event.pointCount() != 1) return tracker_.cancel();
    const auto at = event.points().first().position();
    if (event.type() == QEvent::TouchBegin) return tracker_.press(at);
    if (event.type() == QEvent::TouchUpdate) return tracker_.move(at);
    if (tracker_.release(at, rect())) tap();
}

void ViewWidget::hideEvent(QHideEvent*) { tracker_.cancel(); }

void ViewWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
    if (!isFromTouchScreen(*event)) tracker_.press(event->position());
}

void ViewWidget::mouseDoubleClickEvent(QMouseEvent* event) { mousePressEvent(event); }

void ViewWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!event->buttons().testFlag(Qt::LeftButton)) return QWidget::mouseMoveEvent(event);
    tracker_.move(event->position());
}

void ViewWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return QWidget::mouseReleaseEvent(event);
    if (tracker_.release(event->position(), rect())) tap();
}

void ViewWidget::tap() {
    const auto view = view_.lock();
    if (!view) return;
    const QPointer<ViewWidget> self(this);  // the tap may destroy this widget
    isInTap_ = true;
    view->handleTap();
    if (self) isInTap_ = false;
}

}  // namespace oska::qt
