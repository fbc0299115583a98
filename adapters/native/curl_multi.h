#pragma once

#include <curl/curl.h>
#include <poll.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace oska::native {

/// libcurl's transfers and their pool of connections, driven by one thread that waits on their sockets
/// itself: only so is every byte that comes or goes seen, headers and TLS handshakes included, and no
/// deadline slept through.
///
/// Transfers do not share a connection at the same time, over HTTP/2 neither: one that was accepted for one
/// request only could not be kept from serving another.
/// Threads: one. Lifetime: longer than its transfers.
class CurlMulti {
public:
    using Clock = std::chrono::steady_clock;
    using OnActivity = std::function<void(CURL*)>;
    using OnEnd = std::function<void(CURL*, CURLcode)>;

    /// Throws `std::bad_alloc`.
    CurlMulti();
    CurlMulti(const CurlMulti&) = delete;
    CurlMulti& operator=(const CurlMulti&) = delete;

    [[nodiscard]] CURLMcode add(CURL* transfer);
    /// Also what ends a transfer early.
    void remove(CURL* transfer);

    /// Waits until a socket or `wakeDescriptor` is ready or `deadline` has come, and moves the transfers on.
    /// `onActivity` is told of each transfer whose bytes came or went.
    /// Throws `std::bad_alloc`, and is of no use any more then.
    void wait(Clock::time_point deadline, int wakeDescriptor, const OnActivity& onActivity);

    /// Tells of each transfer that has ended since, once; it may be removed then.
    void collectEnded(const OnEnd& onEnd);

private:
    struct Watch {
        CURL* transfer;
        short events;
    };
    struct Free {
        void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
    };

    static int onSocket(CURL* transfer, curl_socket_t socket, int what, void* self, void* perSocket) noexcept;
    static int onTimer(CURLM* handle, long milliseconds, void* self) noexcept;
    void advance(const pollfd& ready, const OnActivity& onActivity);
    void advanceTimer();

    std::unordered_map<curl_socket_t, Watch> watches_;
    std::optional<Clock::time_point> timer_;
    bool isBroken_ = false;  // for want of memory
    std::vector<pollfd> polled_;
    std::unique_ptr<CURLM, Free> handle_;  // last: when its connections close, the watches hear of it
};

}  // namespace oska::native
