#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <limits>
#include <thread>

#include "adapters/qt/qt_loop_driver.h"
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

}  // namespace
}  // namespace oska::qt

namespace oska::platform {
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, MainQueueContract, qt::QtDriver);
}  // namespace oska::platform

namespace oska::qt {
namespace {

TEST(QtLoopDriver, RoundsDelaysUpToWhatATimerHolds) {
    constexpr int LONGEST = std::numeric_limits<int>::max();
    EXPECT_EQ(timerInterval(-5s), 0);
    EXPECT_EQ(timerInterval(0ns), 0);
    EXPECT_EQ(timerInterval(1ns), 1);
    EXPECT_EQ(timerInterval(1ms), 1);
    EXPECT_EQ(timerInterval(1ms + 1ns), 2);
    EXPECT_EQ(timerInterval(24h * 24), 24 * 24 * 3'600'000);
    EXPECT_EQ(timerInterval(24h * 25), LONGEST);
    EXPECT_EQ(timerInterval(nanoseconds::max()), LONGEST);
}

TEST(QtLoopDriver, AnEarlierJobIsNotHeldUpByAFarOne) {
    QtDriver qt;
    bool isDone = false;
    const auto never = qt.queue().after(nanoseconds::max(), [] { ADD_FAILURE(); });
    const auto far = qt.queue().after(24h * 365, [] { ADD_FAILURE(); });
    QCoreApplication::processEvents();
    const auto soon = qt.queue().after(1ms, [&] { isDone = true; });
    qt.runUntil([&] { return isDone; });
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

TEST(QtLoopDriver, RestsUntilTheNextDeadline) {
    QtDriver qt;
    bool isDone = false;
    const auto far = qt.queue().after(1h, [] {});
    qt.queue().async([&] { isDone = true; });
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
    qt.queue().async(again);
    int events = 0;
    for (int i = 0; i < 100; ++i) {
        const int before = runs;
        QMetaObject::invokeMethod(
            qApp, [&] { ++events; }, Qt::QueuedConnection);
        qt.runUntil([&] { return events > i && runs > before; });
    }
}

TEST(QtLoopDriver, AnEventLoopInsideAJobRunsNoOtherAndLosesNone) {
    QtDriver qt;
    std::vector<std::string> ran;
    const auto tick = qt.queue().every(1ms, [&] { ran.push_back("tick"); });
    std::unique_ptr<platform::ScheduledWork> inside;
    qt.queue().async([&] {
        ran.push_back("dialog opens");
        inside = qt.queue().after(0ns, [&] { ran.push_back("from inside"); });
        QEventLoop dialog;
        std::thread([&] { qt.queue().async([&] { ran.push_back("from elsewhere"); }); }).join();
        // Many times what is due: none of it may run.
        QTimer::singleShot(10ms, Qt::PreciseTimer, &dialog, &QEventLoop::quit);
        dialog.exec();
        ran.push_back("dialog closes");
    });
    qt.runUntil([&] { return ran.size() >= 7; });
    ran.resize(6);
    EXPECT_EQ(ran[0], "tick");
    EXPECT_EQ(ran[1], "dialog opens");
    EXPECT_EQ(ran[2], "dialog closes");
    EXPECT_NE(std::find(ran.begin() + 3, ran.end(), "from inside"), ran.end());
    EXPECT_NE(std::find(ran.begin() + 3, ran.end(), "from elsewhere"), ran.end());
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
    bool isDestroyed = false;
    const auto kept = loop->after(1ms, [&] {
        loop->async([] {});
        qt.reset();
        isDestroyed = true;
    });
    while (!isDestroyed) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    isOver = true;
    other.join();
    loop->async([] { ADD_FAILURE() << "nobody drives the loop"; });
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

}  // namespace
}  // namespace oska::qt
