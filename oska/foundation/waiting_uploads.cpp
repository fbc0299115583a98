#include "oska/foundation/waiting_uploads.h"

#include <utility>

namespace oska {

WaitingUploads::~WaitingUploads() {
    for (const auto& upload : waiting_) upload.answer(platform::TokenFailure{});
}

WaitingUploads::Ticket WaitingUploads::enter(Answer answer) {
    std::list<Waiting> beyond;
    std::unique_lock lock(mutex_);
    waiting_.push_back({++last_, std::move(answer)});
    const auto ticket = last_;
    if (waiting_.size() > MOST) beyond.splice(beyond.end(), waiting_, waiting_.begin());
    lock.unlock();
    for (const auto& upload : beyond) upload.answer(platform::TokenFailure{});
    return ticket;
}

void WaitingUploads::leave(Ticket ticket) {
    std::list<Waiting> left;  // goes outside the lock
    const std::lock_guard lock(mutex_);
    for (auto at = waiting_.begin(); at != waiting_.end(); ++at) {
        if (at->ticket == ticket) return left.splice(left.end(), waiting_, at);
    }
}

}  // namespace oska
