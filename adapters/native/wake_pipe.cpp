#include "adapters/native/wake_pipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>

#include "oska/platform/platform.h"

namespace oska::native {

WakePipe::WakePipe() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        platform::programmingError("no file descriptors are left for the network thread");
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
    // Cannot fail: there is never more than one byte in the pipe.
    [[maybe_unused]] const auto written = ::write(writeEnd_, &byte, 1);
}

void WakePipe::reset() {
    char byte = 0;
    if (::read(readEnd_, &byte, 1) == 1) isAwake_.store(false);
}

}  // namespace oska::native
