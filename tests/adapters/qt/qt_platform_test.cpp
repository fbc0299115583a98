#include "adapters/qt/qt_platform.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QWidget>
#include <thread>

#include "adapters/qt/qt_host_view.h"
#include "adapters/virtual/settable_bluetooth.h"
#include "oska/platform/notification_center.h"

namespace oska::qt {
namespace {

using platform::Notification;
using platform::NotificationCenter;

TEST(QtPlatform, RunsTheMainQueueInTheApplicationsLoop) {
    QtPlatform qt;
    const auto queue = qt.platform().mainQueue;
    std::thread other([&] {
        EXPECT_TRUE(queue->sync([&] { EXPECT_TRUE(queue->isMainThread()); }));
        queue->async([] { QApplication::exit(7); });
    });
    EXPECT_EQ(QApplication::exec(), 7);
    other.join();
}

TEST(QtPlatform, TheHostsBluetoothTakesThePlaceOfQts) {
    const auto denied = std::make_shared<virtual_world::SettableBluetooth>();
    denied->set(platform::BluetoothAuthorizationState::denied);
    EXPECT_EQ(QtPlatform({.bluetooth = denied}).platform().bluetooth, denied);
}

TEST(QtPlatform, PostsOnceEachTimeTheApplicationBecomesActive) {
    QtPlatform qt;
    int posts = 0;
    const auto observation =
        NotificationCenter::shared().addObserver(Notification::willEnterForeground, [&] { ++posts; });
    const auto become = [](Qt::ApplicationState state) { Q_EMIT qApp->applicationStateChanged(state); };
    become(Qt::ApplicationInactive);
    become(Qt::ApplicationActive);
    EXPECT_EQ(posts, 1);
    become(Qt::ApplicationActive);
    EXPECT_EQ(posts, 1);
    for (const auto away : {Qt::ApplicationSuspended, Qt::ApplicationHidden}) {
        become(away);
        become(Qt::ApplicationActive);
    }
    EXPECT_EQ(posts, 3);
    become(Qt::ApplicationInactive);
    qt.shutDown();
    become(Qt::ApplicationActive);
    EXPECT_EQ(posts, 3);
}

TEST(QtPlatform, LeavesNothingInTheLoopWhenShutDown) {
    auto qt = std::make_unique<QtPlatform>();
    const auto platform = qt->platform();
    const auto timer = platform.mainQueue->every(std::chrono::milliseconds(1), [] {});
    std::thread([&] { platform.mainQueue->async([] {}); }).join();
    qt->shutDown();
    qt->shutDown();
    qt.reset();
    platform.mainQueue->async([] { ADD_FAILURE() << "the queue has stopped"; });
    std::thread([&] { EXPECT_FALSE(platform.mainQueue->sync([] {})); }).join();
    QApplication::processEvents();
}

TEST(QtPlatform, ViewsOutliveIt) {
    auto qt = std::make_unique<QtPlatform>();
    platform::install(qt->platform());
    QWidget host;
    host.resize(50, 50);
    const auto view = views::View::create({0, 0, 10, 10});
    viewOf(host)->addSubview(view);
    qt.reset();
    host.show();
    view->setFrame({5, 5, 20, 20});
    ASSERT_TRUE(host.childAt(10, 10));
    EXPECT_EQ(host.childAt(10, 10)->geometry(), QRect(5, 5, 20, 20));
    view->removeFromSuperview();
    EXPECT_FALSE(host.childAt(10, 10));
}

TEST(QtPlatformDeathTest, NeedsTheApplicationsThread) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(std::thread([] { QtPlatform(); }).join(), "QApplication on this thread");
}

}  // namespace
}  // namespace oska::qt
