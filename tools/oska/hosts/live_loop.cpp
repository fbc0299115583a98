#include "tools/oska/hosts/live_loop.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

#include "oska/platform/platform.h"
#include "tools/oska/cli/interruption.h"

namespace oska::tool {

/// Wakes the main thread from poll(2).
class LiveLoop::Alarm {
public:
    Alarm() : file_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (file_ < 0) platform::programmingError("no file descriptors are left for the main loop");
    }
    ~Alarm() { close(file_); }
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;

    [[nodiscard]] int file() const { return file_; }
    void ring() const { (void)eventfd_write(file_, 1); }
    void reset() const {
        eventfd_t count = 0;
        (void)eventfd_read(file_, &count);
    }

private:
    const int file_;
};

namespace {

/// The time from now to `instant`, not negative. null: without end.
const timespec* timeUntil(const std::optional<LiveLoop::Clock::time_point>& instant, timespec& time) {
    using std::chrono::nanoseconds;
    constexpr nanoseconds::rep SECOND = 1'000'000'000;
    if (!instant) return nullptr;
    const auto now = LiveLoop::Clock::now();
    const auto rest = *instant > now ? nanoseconds(*instant - now).count() : 0;
    time = {.tv_sec = rest / SECOND, .tv_nsec = rest % SECOND};
    return &time;
}

template <class Options, class Hook>
Options withWake(Options options, Hook hook) {
    options.wake = std::move(hook);
    return options;
}

}  // namespace

LiveLoop::LiveLoop(native::NativePlatformOptions options)
    : alarm_(std::make_shared<Alarm>()),
      native_(withWake(std::move(options), [alarm = alarm_] { alarm->ring(); })) {}

bool LiveLoop::runUntil(Clock::time_point instant) {
    for (;;) {
        pump();
        if (Interruption::requested()) return false;
        if (Clock::now() >= instant) return true;
        wait(instant, NO_FILE, Interruption::descriptor());
    }
}

bool LiveLoop::runUntil(const IsDone& isDone) {
    for (;;) {
        pump();
        if (Interruption::requested()) return false;
        if (isDone()) return true;
        wait(std::nullopt, NO_FILE, Interruption::descriptor());
    }
}

bool LiveLoop::runUntilReadable(int file) {
    for (bool isReadable = false;;) {
        pump();
        if (Interruption::requested()) return false;
        if (isReadable) return true;
        isReadable = wait(std::nullopt, file, Interruption::descriptor());
    }
}

void LiveLoop::finish(const IsDone& isDone) {
    for (;;) {
        pump();
        if (isDone()) return;
        wait(std::nullopt, NO_FILE, NO_FILE);
    }
}

bool LiveLoop::wait(Instant instant, int file, int interruption) {
    if (nextJob_) instant = instant ? std::min(*instant, *nextJob_) : *nextJob_;
    std::array<pollfd, 3> waited{{{file, POLLIN, 0}, {interruption, POLLIN, 0}, {alarm_->file(), POLLIN, 0}}};
    timespec time{};
    const int ready = ppoll(waited.data(), waited.size(), timeUntil(instant, time), nullptr);
    alarm_->reset();
    return ready > 0 && waited.front().revents != 0;
}

}  // namespace oska::tool
