#include "adapters/qt/qt_platform.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>
#include <QWidget>
#include <limits>

#include "adapters/qt/qt_host_view.h"
#include "adapters/qt/qt_loop_driver.h"
#include "adapters/virtual/settable_bluetooth.h"
#include "oska/platform/notification_center.h"
#include "tests/contract/main_queue_contract.h"

namespace oska::qt {
namespace {

using native::RunLoop;
using std::chrono::nanoseconds;
using namespace std::chrono_literals;

/// Lets Qt sleep until there is an event, so that a job that gets none is waited for in vain.
struct QtDriver : platform::SteadyDriver {
    QtDriver() { driver.drive(loop); }

    platform::MainQueue& queue() { return *loop; }
    void stop() { loop->stop(); }
    void runUntil(const std::function<bool()>& isDone) {
        while (!isDone()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    QtLoopDriver driver;
    const std::shared_ptr<RunLoop> loop = std::make_shared<RunLoop>(driver.wakeHook());
};

TEST(QtLoopDriver, RoundsDelaysUpToWhatATimerHolds) {
    constexpr int LONGEST = std::numeric_limits<int>::max();
    const std::pair<nanoseconds, int> rows[]{
        {-5s, 0}, {1ns, 1}, {1ms, 1}, {1ms + 1ns, 2}, {24h * 25, LONGEST}, {nanoseconds::max(), LONGEST}};
    for (const auto& [delay, interval] : rows) EXPECT_EQ(timerInterval(delay), interval);
}

/// Counts the times that any timer of the application fires.
class TimerCounter : public QObject {
public:
    TimerCounter() { qApp->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::Timer;
        return false;
    }
    int count = 0;
};

TEST(QtLoopDriver, RestsUntilTheNextDeadlineAndAFarOneHoldsUpNoEarlierOne) {
    QtDriver qt;
    bool isDone = false;
    const auto never = qt.queue().after(nanoseconds::max(), [] { ADD_FAILURE(); });
    const auto far = qt.queue().after(24h * 365, [] { ADD_FAILURE(); });
    QCoreApplication::processEvents();
    const auto soon = qt.queue().after(1ms, [&] { isDone = true; });
    qt.runUntil([&] { return isDone; });
    const TimerCounter timers;
    for (int i = 0; i < 100; ++i) QCoreApplication::processEvents();
    EXPECT_EQ(timers.count, 0);
}

TEST(QtLoopDriver, JobsThatPostThemselvesAgainTakeTurnsWithEvents) {
    QtDriver qt;
    int runs = 0;
    std::function<void()> again = [&] {
        ++runs;
        qt.queue().async(again);
    };
    again();
    int events = 0;
    for (int i = 0; i < 100; ++i) {
        const int before = runs;
        QTimer::singleShot(0, qApp, [&] { ++events; });
        qt.runUntil([&] { return events > i && runs > before; });
    }
}

TEST(QtLoopDriver, AnEventLoopInsideAJobRunsNoOtherAndLosesNone) {
    QtDriver qt;
    bool isOpen = false;
    int others = 0;
    int ticksAfter = 0;
    const auto other = [&] {
        EXPECT_FALSE(isOpen);
        ++others;
    };
    const auto tick = qt.queue().every(1ms, [&] {
        EXPECT_FALSE(isOpen);
        ticksAfter += others == 2;
    });
    std::unique_ptr<platform::ScheduledWork> inside;
    qt.queue().async([&] {
        isOpen = true;
        inside = qt.queue().after(0ns, other);
        QEventLoop dialog;
        std::thread([&] { qt.queue().async(other); }).join();
        // Many times what is due: none of it may run.
        QTimer::singleShot(10ms, Qt::PreciseTimer, &dialog, &QEventLoop::quit);
        dialog.exec();
        isOpen = false;
    });
    qt.runUntil([&] { return ticksAfter > 0; });
}

TEST(QtLoopDriver, MayBeDestroyedInsideAJobWhileOthersWakeIt) {
    auto qt = std::make_unique<QtDriver>();
    const auto loop = qt->loop;
    std::atomic<bool> isOver{false};
    std::thread other([&] {
        while (!isOver) {
            loop->async([] {});
            std::this_thread::yield();
        }
    });
    const auto kept = loop->after(1ms, [&] {
        loop->async([] {});
        qt.reset();
    });
    while (qt) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    isOver = true;
    other.join();
    loop->async([] { ADD_FAILURE() << "nobody drives the loop"; });
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(QtPlatform, RunsTheMainQueueInTheApplicationsLoopUntilItIsShutDown) {
    const auto bluetooth = std::make_shared<virtual_world::SettableBluetooth>();
    auto qt = std::make_unique<QtPlatform>(native::NativePlatformOptions{.bluetooth = bluetooth});
    EXPECT_EQ(qt->platform().bluetooth, bluetooth) << "in place of Qt's";
    const auto queue = qt->platform().mainQueue;
    std::thread other([&] {
        EXPECT_TRUE(queue->sync([&] { EXPECT_TRUE(queue->isMainThread()); }));
        queue->async([] { QApplication::exit(7); });
    });
    EXPECT_EQ(QApplication::exec(), 7);
    other.join();

    platform::install(qt->platform());
    QWidget host;
    const auto view = views::View::create();
    viewOf(host)->addSubview(view);
    host.setGeometry(1, 2, 30, 40);  // of a widget that was never shown, no event tells
    EXPECT_EQ(viewOf(host)->frame(), (views::Rect{1, 2, 30, 40}));
    const auto timer = queue->every(1ms, [] {});
    std::thread([&] { queue->async([] {}); }).join();
    for (int i = 0; i < 2; ++i) qt->shutDown();
    qt.reset();
    queue->async([] { ADD_FAILURE() << "the queue has stopped"; });
    std::thread([&] { EXPECT_FALSE(queue->sync([] {})); }).join();
    QApplication::processEvents();
    host.show();
    view->setFrame({5, 5, 20, 20});
    EXPECT_EQ(host.childrenRect(), QRect(5, 5, 20, 20)) << "views outlive the platform";
}

TEST(QtPlatform, PostsOnceEachTimeTheApplicationBecomesActive) {
    QtPlatform qt;
    int posts = 0;
    const auto observation = platform::NotificationCenter::shared().addObserver(
        platform::Notification::willEnterForeground, [&] { ++posts; });
    const auto become = [](Qt::ApplicationState state) { Q_EMIT qApp->applicationStateChanged(state); };
    become(Qt::ApplicationInactive);
    for (int i = 0; i < 2; ++i) become(Qt::ApplicationActive);
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

TEST(QtPlatformDeathTest, NeedsTheApplicationsThread) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(std::thread([] { QtPlatform(); }).join(), "QApplication on this thread");
}

}  // namespace
}  // namespace oska::qt

namespace oska::platform {
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, MainQueueContract, qt::QtDriver);
}  // namespace oska::platform
