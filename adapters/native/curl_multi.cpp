#include "adapters/native/curl_multi.h"

#include <algorithm>
#include <new>

#include "adapters/native/wake_pipe.h"

namespace oska::native {
namespace {

short pollEvents(int what) {
    const int reads = what == CURL_POLL_IN || what == CURL_POLL_INOUT ? POLLIN : 0;
    const int writes = what == CURL_POLL_OUT || what == CURL_POLL_INOUT ? POLLOUT : 0;
    return static_cast<short>(reads | writes);
}

/// A broken socket is reported as ready: libcurl then uses it and finds the reason. Reported as an error, the
/// reason would be lost.
int curlEvents(const pollfd& ready) {
    const bool isBroken = (ready.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0;
    const int usable = isBroken ? ready.events : ready.revents;
    return ((usable & POLLIN) != 0 ? CURL_CSELECT_IN : 0) | ((usable & POLLOUT) != 0 ? CURL_CSELECT_OUT : 0);
}

}  // namespace

CurlMulti::CurlMulti() : handle_(curl_multi_init()) {
    if (!handle_) throw std::bad_alloc();
    curl_multi_setopt(handle_.get(), CURLMOPT_PIPELINING, CURLPIPE_NOTHING);
    curl_multi_setopt(handle_.get(), CURLMOPT_SOCKETFUNCTION, &CurlMulti::onSocket);
    curl_multi_setopt(handle_.get(), CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(handle_.get(), CURLMOPT_TIMERFUNCTION, &CurlMulti::onTimer);
    curl_multi_setopt(handle_.get(), CURLMOPT_TIMERDATA, this);
}

CURLMcode CurlMulti::add(CURL* transfer) { return curl_multi_add_handle(handle_.get(), transfer); }

void CurlMulti::remove(CURL* transfer) { curl_multi_remove_handle(handle_.get(), transfer); }

int CurlMulti::onSocket(CURL* transfer, curl_socket_t socket, int what, void* self, void*) noexcept {
    auto& multi = *static_cast<CurlMulti*>(self);
    if (what == CURL_POLL_REMOVE) {
        multi.watches_.erase(socket);
        return 0;
    }
    try {
        multi.watches_.insert_or_assign(socket, Watch{transfer, pollEvents(what)});
        return 0;
    } catch (const std::bad_alloc&) {
        multi.isBroken_ = true;
        return -1;  // libcurl fails every later call
    }
}

int CurlMulti::onTimer(CURLM*, long milliseconds, void* self) noexcept {
    auto& timer = static_cast<CurlMulti*>(self)->timer_;
    timer = milliseconds < 0 ? std::nullopt
                             : std::optional(Clock::now() + std::chrono::milliseconds(milliseconds));
    return 0;
}

void CurlMulti::wait(Clock::time_point deadline, int wakeDescriptor, const OnActivity& onActivity) {
    polled_.assign(1, {wakeDescriptor, POLLIN, 0});
    for (const auto& [socket, watch] : watches_) polled_.push_back({socket, watch.events, 0});
    const auto next = std::min(deadline, timer_.value_or(Clock::time_point::max()));
    const int readyCount = ::poll(polled_.data(), polled_.size(), pollTimeout(next));
    for (std::size_t i = 1; readyCount > 0 && i < polled_.size(); ++i) {
        if (polled_[i].revents != 0) advance(polled_[i], onActivity);
    }
    advanceTimer();
    if (isBroken_) throw std::bad_alloc();
}

void CurlMulti::advance(const pollfd& ready, const OnActivity& onActivity) {
    // An earlier socket of the same round may have closed this one.
    const auto watch = watches_.find(ready.fd);
    if (watch == watches_.end()) return;
    onActivity(watch->second.transfer);
    int running = 0;
    curl_multi_socket_action(handle_.get(), ready.fd, curlEvents(ready), &running);
}

void CurlMulti::advanceTimer() {
    if (!timer_ || *timer_ > Clock::now()) return;
    timer_.reset();
    int running = 0;
    curl_multi_socket_action(handle_.get(), CURL_SOCKET_TIMEOUT, 0, &running);
}

void CurlMulti::collectEnded(const OnEnd& onEnd) {
    int left = 0;
    while (const auto* message = curl_multi_info_read(handle_.get(), &left)) {
        if (message->msg == CURLMSG_DONE) onEnd(message->easy_handle, message->data.result);
    }
}

}  // namespace oska::native
