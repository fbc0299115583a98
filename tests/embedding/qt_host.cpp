#include <QApplication>
#include <QLabel>

#include "adapters/qt/qt_host_view.h"
#include "adapters/qt/qt_platform.h"
#include "oska/dapo/dapo_view.h"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    oska::qt::QtPlatform qt;  // takes the options of the native platform
    oska::platform::install(qt.platform());
    QLabel map("the map");
    const auto view = oska::DapoView::create();
    view->configureFrame({.to = oska::qt::viewOf(map)});
    view->initialize({.id = "demo", .sectorId = 12, .baseURL = "http://10.0.0.2:5050"});
    map.show();
    return QApplication::exec();
}
