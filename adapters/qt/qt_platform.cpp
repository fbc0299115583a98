#include "adapters/qt/qt_platform.h"

#include <QApplication>
#include <QThread>
#include <utility>

#include "adapters/qt/qt_bluetooth.h"
#include "adapters/qt/qt_foreground.h"
#include "adapters/qt/qt_loop_driver.h"
#include "adapters/qt/qt_view_peer.h"

namespace oska::qt {
namespace {

std::unique_ptr<QtLoopDriver> makeDriver() {
    const auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
    if (!application || application->thread() != QThread::currentThread())
        platform::programmingError("QtPlatform was made without a QApplication on this thread");
    return std::make_unique<QtLoopDriver>();
}

native::NativePlatformOptions adapt(native::NativePlatformOptions options, const QtLoopDriver& driver) {
    options.wake = driver.wakeHook();
    if (!options.bluetooth) options.bluetooth = qtBluetooth();
    return options;
}

}  // namespace

QtPlatform::QtPlatform(native::NativePlatformOptions options)
    : driver_(makeDriver()),
      native_(adapt(std::move(options), *driver_)),
      foreground_(watchForeground(*qApp)) {
    driver_->drive({native_.platform().mainQueue, &native_.runLoop()});
}

QtPlatform::~QtPlatform() { shutDown(); }

platform::Platform QtPlatform::platform() const {
    auto platform = native_.platform();
    platform.makeViewPeer = makeViewPeer;
    return platform;
}

void QtPlatform::shutDown() {
    foreground_.reset();
    native_.shutDown();
    driver_->stop();
}

}  // namespace oska::qt
