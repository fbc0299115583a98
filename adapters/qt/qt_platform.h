#pragma once

#include <memory>

#include "adapters/native/native_platform.h"
#include "oska/platform/platform.h"

class QObject;

namespace oska::qt {

class QtLoopDriver;

/// The real world inside a Qt application: the native platform, with its main queue run by Qt's event loop
/// and views shown as widgets (see qt_host_view.h). `willEnterForeground` is posted each time the application
/// becomes active.
///
///     QApplication application(argc, argv);
///     oska::qt::QtPlatform qt({.auth = myTokens});
///     oska::platform::install(qt.platform());
///     ...
///     return QApplication::exec();
///
/// Options: as for the native platform, except two. `wake` is ignored, because the adapter has its own.
/// `bluetooth` left out means Qt's permission from Qt 6.5 on; before, it means allowed.
/// Jobs run one at a time: while a job runs an event loop of its own (a modal dialog, for example), Qt's
/// events go on and the other jobs wait.
/// Threads: constructed and destroyed on the thread of the QApplication, which must exist all the time;
/// anything else is a programming error. Lifetime: destroying it shuts it down. The parts that an installed
/// platform holds live on, but do nothing; views stay on the screen.
class QtPlatform {
public:
    /// Makes the parts and attaches them to the event loop of the application. Installs nothing.
    explicit QtPlatform(native::NativePlatformOptions options = {});
    ~QtPlatform();
    QtPlatform(const QtPlatform&) = delete;
    QtPlatform& operator=(const QtPlatform&) = delete;

    /// The value to install. Threads: any.
    [[nodiscard]] platform::Platform platform() const;

    /// Like `NativePlatform::shutDown`; afterwards the adapter has nothing left in Qt's event loop. Call it
    /// on the application's thread. May be called again.
    void shutDown();

private:
    const std::unique_ptr<QtLoopDriver> driver_;
    native::NativePlatform native_;
    std::unique_ptr<QObject> foreground_;
};

}  // namespace oska::qt
