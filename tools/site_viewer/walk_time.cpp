#include "tools/site_viewer/walk_time.h"

#include <utility>

namespace viewer {

using oska::platform::ScheduledWork;
using oska::platform::Task;

WalkTime::WalkTime(std::shared_ptr<oska::platform::MainQueue> loop, oska::platform::WallTime start)
    : loop_(std::move(loop)), time_(std::make_shared<oska::virtual_world::VirtualMainQueue>(start)) {}

WalkTime::~WalkTime() { time_->stop(); }

void WalkTime::async(Task task) {
    time_->async(std::move(task));
    wake();
}

std::unique_ptr<ScheduledWork> WalkTime::after(std::chrono::nanoseconds delay, Task task) {
    auto work = time_->after(delay, std::move(task));
    wake();
    return work;
}

std::unique_ptr<ScheduledWork> WalkTime::every(std::chrono::nanoseconds interval, Task task) {
    auto work = time_->every(interval, std::move(task));
    wake();
    return work;
}

bool WalkTime::sync(Task task) {
    return loop_->sync([this, &task] {
        runDue();
        task();
    });
}

void WalkTime::wake() {
    loop_->async([weak = std::weak_ptr(time_)] {
        if (const auto time = weak.lock()) time->runDue();
    });
}

}  // namespace viewer
