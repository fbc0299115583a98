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

/// libcurl's transfers and their pool of connections. One thread waits on their sockets with its own `poll`,
/// so that it sees every byte that comes or goes (headers and TLS handshakes too) and misses no deadline.
///
/// Two transfers never share a connection at the same time, not even over HTTP/2: otherwise a connection that
/// was accepted for one request could carry another.
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
    /// Also ends a transfer early.
    void remove(CURL* transfer);

    /// Waits until a socket or `wakeDescriptor` is ready or `deadline` has come, and moves the transfers on.
    /// `onActivity` is called for each transfer that received or sent bytes.
    /// Throws `std::bad_alloc`; the object cannot be used any more then.
    void wait(Clock::time_point deadline, int wakeDescriptor, const OnActivity& onActivity);

    /// Calls `onEnd` once for each transfer that has ended since the last call. `onEnd` may remove it.
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
    bool isBroken_ = false;  // a watch was lost because there was no memory for it
    std::vector<pollfd> polled_;
    std::unique_ptr<CURLM, Free> handle_;  // last: closing its connections calls `onSocket`
};

}  // namespace oska::native
