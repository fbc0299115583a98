#include "adapters/qt/qt_tap_tracker.h"

#include <QGuiApplication>
#include <QStyleHints>

namespace oska::qt {

void TapTracker::move(QPointF at) {
    const int dragDistance = QGuiApplication::styleHints()->startDragDistance();
    if (start_ && (at - *start_).manhattanLength() >= dragDistance) cancel();
}

bool TapTracker::release(QPointF at, const QRectF& area) {
    move(at);
    const bool isTap = start_ && area.contains(at);
    cancel();
    return isTap;
}

}  // namespace oska::qt
