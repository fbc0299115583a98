#include "adapters/native/wake_pipe.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

#include "oska/platform/platform.h"

namespace oska::native {

WakePipe::WakePipe() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        platform::programmingError("no file descriptors are left to wake a thread by");
    readEnd_ = ends[0];
    writeEnd_ = ends[1];
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
}

WakePipe::~WakePipe() {
    ::close(readEnd_);
    ::close(writeEnd_);
}

void WakePipe::wake() {
    if (isAwake_.exchange(true)) return;
    const char byte = 0;
    // Does not fail: there is never more than one byte in the pipe.
    [[maybe_unused]] const auto written = ::write(writeEnd_, &byte, 1);
}

void WakePipe::reset() {
    char byte = 0;
    if (::read(readEnd_, &byte, 1) == 1) isAwake_.store(false);
}

void WakePipe::wait(Clock::time_point deadline) const {
    pollfd polled{readEnd_, POLLIN, 0};
    (void)::poll(&polled, 1, pollTimeout(deadline));  // ended by a signal: as if the time were over
}

int pollTimeout(WakePipe::Clock::time_point deadline) {
    using Clock = WakePipe::Clock;
    if (deadline == Clock::time_point::max()) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    constexpr std::int64_t LAST_STEP = 1000;
    const auto step = left > 2 * LAST_STEP ? left - LAST_STEP : left;
    return static_cast<int>(std::clamp<std::int64_t>(step, 0, std::numeric_limits<int>::max()));
}

}  // namespace oska::native
