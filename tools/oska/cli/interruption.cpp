#include "tools/oska/cli/interruption.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace oska::tool {
namespace {

volatile std::sig_atomic_t isRequested = 0;

// A pipe that the handler writes to. Without it a signal that comes between the look at the flag and the wait
// would not end the wait.
std::array<int, 2> wakeUp{-1, -1};

void noteInterruption(int) {
    const int error = errno;
    isRequested = 1;
    [[maybe_unused]] const auto written = write(wakeUp[1], "", 1);
    errno = error;
}

}  // namespace

void Interruption::listen() {
    if (pipe2(wakeUp.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    struct sigaction action = {};
    action.sa_handler = noteInterruption;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool Interruption::requested() { return isRequested != 0; }

int Interruption::descriptor() { return wakeUp[0]; }

void Interruption::wait() {
    constexpr int NO_FILE = -1;
    (void)waitForInput(NO_FILE);
}

bool Interruption::waitForInput(int file) {
    std::array<pollfd, 2> waited{{{file, POLLIN, 0}, {wakeUp[0], POLLIN, 0}}};
    while (!requested() && poll(waited.data(), waited.size(), -1) < 0 && errno == EINTR) {
    }
    return !requested();
}

}  // namespace oska::tool
