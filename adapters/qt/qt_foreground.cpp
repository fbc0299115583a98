#include "adapters/qt/qt_foreground.h"

#include <QGuiApplication>
#include <utility>

#include "oska/platform/notification_center.h"

namespace oska::qt {

std::unique_ptr<QObject> watchForeground(QGuiApplication& application) {
    auto watch = std::make_unique<QObject>();
    QObject::connect(
        &application, &QGuiApplication::applicationStateChanged, watch.get(),
        [last = QGuiApplication::applicationState()](Qt::ApplicationState state) mutable {
            const bool wasActive = std::exchange(last, state) == Qt::ApplicationActive;
            if (state != Qt::ApplicationActive || wasActive) return;
            platform::NotificationCenter::shared().post(platform::Notification::willEnterForeground);
        });
    return watch;
}

}  // namespace oska::qt
