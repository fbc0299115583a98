#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "oska/foundation/network_manager.h"
#include "oska/platform/quenlo_common.h"

namespace oska {

/// Collects the samples of a running Dapo view and uploads them, unchanged, to the navigation framework's
/// recording endpoint: a batch as soon as it spans ten seconds of the samples' own time, its last sample
/// included. An upload that fails is logged and lost; it is never retried. Threads: main thread.
class DapoBatchSender {
public:
    static constexpr std::int64_t RFD_BATCH_INTERVAL_MS = 10'000;

    /// The instance of the process, made on first use over `OskaNetworkManager::shared()`.
    static DapoBatchSender& shared();

    explicit DapoBatchSender(std::shared_ptr<OskaNetworkManager> network);

    /// Adds a sample. One without readings is ignored: it neither starts a batch nor ends one.
    void inputReceivedForce(const platform::ReceivedForce& rfd);

    /// Forgets what has been collected.
    void reset();

    /// Uploads what has been collected, if anything.
    void flush();

private:
    void postRFD(std::vector<platform::ReceivedForce> batch);

    std::shared_ptr<OskaNetworkManager> network_;
    std::vector<platform::ReceivedForce> inputReceivedForceArray_;  // the oldest first
};

}  // namespace oska
