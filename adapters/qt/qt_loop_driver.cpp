#include "adapters/qt/qt_loop_driver.h"

#include <QTimer>
#include <algorithm>
#include <limits>
#include <mutex>
#include <optional>
#include <utility>

namespace oska::qt {

using native::RunLoop;

class QtLoopDriver::Pump : public std::enable_shared_from_this<Pump> {
public:
    Pump() : timer_(std::make_unique<QTimer>()) {
        timer_->setTimerType(Qt::PreciseTimer);
        timer_->setSingleShot(true);
        QObject::connect(timer_.get(), &QTimer::timeout, timer_.get(), [this] { run(); });
    }

    void drive(std::shared_ptr<RunLoop> loop) { loop_ = std::move(loop); }

    void wake() {
        const std::lock_guard lock(mutex_);
        if (!timer_ || std::exchange(isWaking_, true)) return;
        QMetaObject::invokeMethod(
            timer_.get(), [self = shared_from_this()] { self->runSoon(); }, Qt::QueuedConnection);
    }

    void stop() {
        loop_ = nullptr;
        std::unique_ptr<QTimer> timer;
        {
            const std::lock_guard lock(mutex_);
            timer.swap(timer_);
        }
        if (!timer || !isRunning_) return;
        timer->disconnect();  // a job that the timer's own signal runs may call this
        timer.release()->deleteLater();
    }

private:
    void runSoon() {
        {
            const std::lock_guard lock(mutex_);
            isWaking_ = false;
        }
        if (timer_) timer_->start(0);
    }

    void run() {
        if (isRunning_) return;  // an event loop inside a job; the outer call sets the timer
        const auto self = shared_from_this();
        const auto loop = loop_;
        isRunning_ = true;
        const auto deadline = loop->pump();
        isRunning_ = false;
        if (timer_ && deadline) timer_->start(timerInterval(*deadline - RunLoop::Clock::now()));
    }

    std::shared_ptr<RunLoop> loop_;
    bool isRunning_ = false;

    std::mutex mutex_;
    bool isWaking_ = false;          // guarded
    std::unique_ptr<QTimer> timer_;  // changed on the main thread only, and guarded; null once stopped
};

QtLoopDriver::QtLoopDriver() : pump_(std::make_shared<Pump>()) {}

QtLoopDriver::~QtLoopDriver() { stop(); }

std::function<void()> QtLoopDriver::wakeHook() const {
    return [pump = pump_] { pump->wake(); };
}

void QtLoopDriver::drive(std::shared_ptr<RunLoop> loop) { pump_->drive(std::move(loop)); }

void QtLoopDriver::stop() { pump_->stop(); }

int timerInterval(std::chrono::nanoseconds remaining) {
    constexpr std::chrono::milliseconds LONGEST{std::numeric_limits<int>::max()};
    const auto rounded = std::chrono::ceil<std::chrono::milliseconds>(remaining);
    return static_cast<int>(std::clamp(rounded, std::chrono::milliseconds::zero(), LONGEST).count());
}

}  // namespace oska::qt
