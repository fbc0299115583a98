#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "adapters/native/network_loop.h"
#include "adapters/native/wake_pipe.h"

namespace oska::native {

/// The network thread: it starts with the first request, and serves the sessions of all.
///
/// Life: `shutDown` ends what is under way as cancelled, and the thread with it. A request that comes later
/// is completed as cancelled by a thread that lives for just that. Where memory runs out the thread ends,
/// too, and the next request starts one. Threads: operations on any; completions on the network thread with
/// no lock held. Lifetime: the thread keeps the network alive, so that somebody must shut it down: see
/// `CurlHttpSessionFactory`.
class CurlNetwork : public std::enable_shared_from_this<CurlNetwork> {
public:
    /// `caFile`: see `TrustStore`.
    explicit CurlNetwork(std::string caFile) : caFile_(std::move(caFile)) {}
    ~CurlNetwork();
    CurlNetwork(const CurlNetwork&) = delete;
    CurlNetwork& operator=(const CurlNetwork&) = delete;

    /// Completes as out of resources, inside the call, when there is no memory or no thread for it.
    void send(std::unique_ptr<HttpTransfer> transfer);

    /// Makes the thread look for transfers that are cancelled.
    void wake() { wakePipe_.wake(); }

    /// Waits for the thread, unless called on it. May be called again.
    void shutDown();

private:
    struct Orders {
        HttpTransfers sent;
        bool isShutDown = false;
    };

    [[nodiscard]] bool tryHandOver(std::unique_ptr<HttpTransfer>& transfer);
    void startThread();
    void run();
    /// Until it is shut down. Throws `std::bad_alloc`; what was under way has completed then.
    void serve();
    Orders takeOrders();
    /// True, and the thread does not run any more for those who send, unless somebody has sent since.
    [[nodiscard]] bool tryEnd();

    const std::string caFile_;
    WakePipe wakePipe_;

    std::mutex mutex_;
    HttpTransfers sent_;
    bool isShutDown_ = false;
    bool isRunning_ = false;
    std::thread thread_;
};

}  // namespace oska::native
