#pragma once

#include <QObject>
#include <memory>

class QGuiApplication;

namespace oska::qt {

/// Posts `willEnterForeground` each time the application becomes active, until the returned object is
/// destroyed. Qt has no state between the background and being active; this is the nearest one.
/// Threads: the application's thread.
[[nodiscard]] std::unique_ptr<QObject> watchForeground(QGuiApplication& application);

}  // namespace oska::qt
