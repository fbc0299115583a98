#pragma once

#include <QObject>
#include <memory>

class QGuiApplication;

namespace oska::qt {

/// Posts `willEnterForeground` each time the application becomes active, while the answer lives.
/// Qt has no state between the background and being active, so this is the nearest it can tell.
/// Threads: the application's.
[[nodiscard]] std::unique_ptr<QObject> watchForeground(QGuiApplication& application);

}  // namespace oska::qt
