#include "adapters/native/request_deadlines.h"

namespace oska::native {

using std::chrono::milliseconds;

namespace {

/// A span may be as long as its type allows: an instant beyond the clock's range never comes.
RequestDeadlines::Clock::time_point after(RequestDeadlines::Clock::time_point now, milliseconds span) {
    using std::chrono::floor;
    const auto end = RequestDeadlines::Clock::time_point::max();
    return span >= floor<milliseconds>(end - now) ? end : now + std::max(span, milliseconds::zero());
}

}  // namespace

RequestDeadlines::RequestDeadlines(milliseconds idle, milliseconds total, Clock::time_point now)
    : idle_(idle), total_(total), idleEnd_(after(now, idle)), totalEnd_(after(now, total)) {}

void RequestDeadlines::noteActivity(Clock::time_point now) { idleEnd_ = after(now, idle_); }

std::string RequestDeadlines::describe(const std::string& server) const {
    if (totalEnd_ < idleEnd_) {
        return "The request to " + server + " was not done after " + std::to_string(total_.count()) + " ms.";
    }
    return server + " was silent for " + std::to_string(idle_.count()) + " ms.";
}

}  // namespace oska::native
