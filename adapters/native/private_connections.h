#pragma once

#include <map>
#include <memory>
#include <string>

#include "adapters/native/curl_handle.h"
#include "adapters/native/http_address.h"

namespace oska::native {

struct SessionState;

/// The kept connections that only one session may use: those to hosts whose certificate its delegate may
/// accept. They are kept while the delegate's basis of trust for the host is the same as when the connection
/// was made. libcurl does not compare any of this, so each session needs a pool of its own.
/// Threads: the network thread.
class PrivateConnections {
public:
    /// The pool that a request to this address must use; null for the pool that all sessions share. A pool
    /// with another basis is closed once its transfers have ended.
    [[nodiscard]] std::shared_ptr<CurlPool> poolFor(const std::shared_ptr<const SessionState>& session,
                                                    const HttpAddress& address);

    /// Closes the pools of sessions that have ended.
    void forgetEnded();

private:
    struct Pool {
        std::string basis;
        std::shared_ptr<CurlPool> connections;
    };

    std::map<std::weak_ptr<const SessionState>, Pool, std::owner_less<>> pools_;
};

}  // namespace oska::native
