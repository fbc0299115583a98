#include "adapters/native/run_loop.h"

#include <utility>

#include "adapters/native/wake_pipe.h"
#include "adapters/queue/scheduler.h"
#include "oska/platform/platform.h"

namespace oska::native {

using platform::Task;
using std::chrono::nanoseconds;

namespace {

/// The steady clock. A job runs at the instant at which its pump began; no tick before that is made up for.
struct SteadyTime {
    using Instant = RunLoop::Clock::time_point;

    [[nodiscard]] static Instant now() { return RunLoop::Clock::now(); }

    static Instant after(Instant time, nanoseconds delay) {
        if (delay <= nanoseconds::zero()) return time;
        return delay > Instant::max() - time ? Instant::max() : time + delay;
    }

    static nanoseconds span(Instant from, Instant to) { return to - from; }

    static Instant arriveAt(Instant, Instant limit) { return limit; }
    static void pass(Instant) {}
};

}  // namespace

class RunLoopJobs final : public queue::Scheduler<SteadyTime> {
public:
    using Scheduler::Scheduler;
};

RunLoop::RunLoop(std::function<void()> wake)
    : wake_(std::move(wake)),
      wakePipe_(std::make_unique<WakePipe>()),
      jobs_(std::make_unique<RunLoopJobs>(SteadyTime{}, [this] { wakeUnlessPumping(); })) {}

RunLoop::~RunLoop() { stop(); }

std::optional<RunLoop::Clock::time_point> RunLoop::pump() {
    if (!isMainThread())
        platform::programmingError("RunLoop::pump was called on another thread than the main one");
    if (isPumping_) return std::nullopt;
    isPumping_ = true;
    const auto now = Clock::now();
    const auto end = jobs_->jobs().nextNumber();
    while (jobs_->jobs().runNext(now, end)) {
    }
    isPumping_ = false;
    return jobs_->jobs().nextDeadline();
}

void RunLoop::run() {
    (void)runUntil([] { return false; });
}

bool RunLoop::runUntil(const std::function<bool()>& isDone) {
    if (isPumping_) platform::programmingError("RunLoop::run was called inside one of its jobs");
    while (!isDone()) {
        waitUntilDue();
        if (jobs_->jobs().isStopped()) return false;
        pump();
    }
    return true;
}

/// Returns when the first job is due or the loop has stopped.
void RunLoop::waitUntilDue() {
    for (;;) {
        wakePipe_->reset();  // first: what comes after this look at the jobs ends the wait
        if (jobs_->jobs().isStopped()) return;
        const auto deadline = jobs_->jobs().nextDeadline();
        if (deadline && *deadline <= Clock::now()) return;
        wakePipe_->wait(deadline.value_or(Clock::time_point::max()));
    }
}

void RunLoop::wakeUnlessPumping() {
    if (isMainThread() && isPumping_) return;  // pump returns the deadline
    wakePipe_->wake();
    if (wake_) wake_();
}

void RunLoop::stop() {
    jobs_->jobs().stop();
    wakePipe_->wake();
}

bool RunLoop::isMainThread() const { return jobs_->isMainThread(); }

void RunLoop::async(Task task) { jobs_->async(std::move(task)); }

std::unique_ptr<platform::ScheduledWork> RunLoop::after(nanoseconds delay, Task task) {
    return jobs_->after(delay, std::move(task));
}

std::unique_ptr<platform::ScheduledWork> RunLoop::every(nanoseconds interval, Task task) {
    return jobs_->every(interval, std::move(task));
}

bool RunLoop::sync(Task task) { return jobs_->sync(*this, std::move(task)); }

}  // namespace oska::native
