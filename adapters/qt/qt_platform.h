#pragma once

#include <memory>

#include "adapters/native/native_platform.h"
#include "oska/platform/platform.h"

class QObject;

namespace oska::qt {

class QtLoopDriver;

/// The real world inside a Qt application: the native platform, its main queue run by Qt's event loop, views
/// shown as widgets (see qt_host_view.h), and `willEnterForeground` posted whenever the application becomes
/// active.
///
///     QApplication application(argc, argv);
///     oska::qt::QtPlatform qt({.auth = myTokens});
///     oska::platform::install(qt.platform());
///     ...
///     return QApplication::exec();
///
/// Options: as for the native platform; `wake` is the adapter's own, and one that is given is not called.
/// `bluetooth` left out: what Qt's permissions say, from Qt 6.5 on, and allowed before.
/// The queue's jobs run one at a time: while one of them is in an event loop of its own, as a modal dialog
/// is, Qt's events go on and jobs wait.
/// Threads: made and destroyed on the thread of the QApplication, which must exist by then and still;
/// anything else is a programming error. Lifetime: destroying it shuts it down; the parts that an installed
/// platform holds live on, idle, and views stay on the screen.
class QtPlatform {
public:
    explicit QtPlatform(native::NativePlatformOptions options = {});
    ~QtPlatform();
    QtPlatform(const QtPlatform&) = delete;
    QtPlatform& operator=(const QtPlatform&) = delete;

    [[nodiscard]] platform::Platform platform() const;

    /// As NativePlatform::shutDown; afterwards the adapter has nothing left in Qt's event loop. On the
    /// application's thread. May be called again.
    void shutDown();

private:
    const std::unique_ptr<QtLoopDriver> driver_;
    native::NativePlatform native_;
    std::unique_ptr<QObject> foreground_;
};

}  // namespace oska::qt
