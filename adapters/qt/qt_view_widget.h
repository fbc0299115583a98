#pragma once

#include <QImage>
#include <QWidget>
#include <memory>

#include "adapters/qt/qt_tap_tracker.h"
#include "oska/views/view.h"

class QTouchEvent;

namespace oska::qt {

/// One view on the screen: paints its image and turns clicks and touches into taps. It is transparent
/// elsewhere, and lets all other events through.
///
/// Threads: the application's thread. Lifetime: owned by its parent widget; the peer uses it until `discard`.
class ViewWidget final : public QWidget {
public:
    ViewWidget(std::weak_ptr<views::View> view, QWidget& parent);

    /// Removes the widget, and deletes it; during its own tap, later.
    static void discard(ViewWidget* widget);

    void place(const QRect& frame);
    void showImage(const QImage& image);
    /// Without `canBeTapped`, lets every event through from now on and forgets a press.
    void setTappable(bool canBeTapped);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void touch(const QTouchEvent& event);
    void tap();

    const std::weak_ptr<views::View> view_;
    QRect frame_;
    QImage image_;
    TapTracker tracker_;
    bool isInTap_ = false;
};

}  // namespace oska::qt
