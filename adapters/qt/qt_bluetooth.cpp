#include "adapters/qt/qt_bluetooth.h"

#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
#if QT_CONFIG(permissions)
#define QUENLOOSKA_QT_HAS_PERMISSIONS
#endif
#endif

#ifdef QUENLOOSKA_QT_HAS_PERMISSIONS
#include <QCoreApplication>
#include <QPermissions>
#endif

namespace oska::qt {

#ifdef QUENLOOSKA_QT_HAS_PERMISSIONS

namespace {

using State = platform::BluetoothAuthorizationState;

class QtBluetooth final : public platform::BluetoothAuthorization {
public:
    [[nodiscard]] State authorization() const override {
        switch (qApp->checkPermission(QBluetoothPermission{})) {
            case Qt::PermissionStatus::Granted:
                return State::allowedAlways;
            case Qt::PermissionStatus::Denied:
                return State::denied;
            case Qt::PermissionStatus::Undetermined:
                break;
        }
        return State::notDetermined;
    }
};

}  // namespace

std::shared_ptr<platform::BluetoothAuthorization> qtBluetooth() { return std::make_shared<QtBluetooth>(); }

#else

std::shared_ptr<platform::BluetoothAuthorization> qtBluetooth() { return nullptr; }

#endif

}  // namespace oska::qt
