#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "adapters/native/connection_slots.h"
#include "adapters/native/curl_multi.h"
#include "adapters/native/http_transfer.h"
#include "adapters/native/private_connections.h"
#include "adapters/native/trust_store.h"

namespace oska::native {

using HttpTransfers = std::vector<std::unique_ptr<HttpTransfer>>;

/// The transfers under way, and the connections kept for the next ones. Threads: the network thread.
class NetworkLoop {
public:
    explicit NetworkLoop(std::string caFile) : authorities_(std::move(caFile)) {}

    // Each of these may call completions. If there is no memory for one transfer, that transfer ends. If
    // there is none for the loop itself, they throw `std::bad_alloc`; the transfers then end with the loop.

    void begin(HttpTransfers transfers);
    /// Waits until a socket or `wakeDescriptor` is ready or a deadline has come, moves the transfers on, and
    /// completes those that have ended, timed out or been cancelled.
    void turn(int wakeDescriptor);
    void cancelAll();

private:
    void enter(HttpTransfer& transfer);
    void startNext();
    void take(HttpTransfer& transfer, CURLcode code);
    void end(HttpTransfer& transfer, platform::HttpOutcome outcome);
    void endOverdue();
    [[nodiscard]] CurlMulti::Clock::time_point nextDeadline() const;

    TrustStore authorities_;
    PrivateConnections connections_;
    CurlMulti multi_;
    ConnectionSlots slots_;
    std::unordered_map<HttpTransfer*, std::unique_ptr<HttpTransfer>> transfers_;
};

}  // namespace oska::native
