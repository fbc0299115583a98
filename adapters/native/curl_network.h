#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "adapters/native/network_loop.h"
#include "adapters/native/wake_pipe.h"

namespace oska::native {

/// The network thread. It starts with the first request and serves all sessions of a factory.
///
/// Life: `shutDown` completes the requests under way as cancelled and ends the thread. A request that comes
/// later starts a thread that only completes it as cancelled. If memory runs out, the thread ends, too; the
/// next request starts a new one.
/// Threads: operations on any; completions on the network thread, with no lock held.
/// Lifetime: the running thread keeps this object alive, so that the owner must call `shutDown`: see
/// `CurlHttpSessionFactory`.
class CurlNetwork : public std::enable_shared_from_this<CurlNetwork> {
public:
    /// `caFile`: see `TrustStore`.
    explicit CurlNetwork(std::string caFile) : caFile_(std::move(caFile)) {}
    ~CurlNetwork();
    CurlNetwork(const CurlNetwork&) = delete;
    CurlNetwork& operator=(const CurlNetwork&) = delete;

    /// If there is no memory or no thread for the transfer, it completes as out of resources inside the call.
    void send(std::unique_ptr<HttpTransfer> transfer);

    /// Makes the thread look for transfers that were cancelled.
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
    /// Returns when the network was shut down. Throws `std::bad_alloc`, after all transfers have completed.
    void serve();
    Orders takeOrders();
    /// Marks the thread as stopped unless new requests are queued; returns whether it did.
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
