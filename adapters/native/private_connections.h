#pragma once

#include <map>
#include <memory>
#include <string>

#include "adapters/native/curl_handle.h"
#include "adapters/native/http_address.h"

namespace oska::native {

struct SessionState;

/// The connections that one session alone may use again: those to hosts whose certificate its delegate may
/// accept. They are kept while the delegate's basis of trust for the host stays what it was when the
/// connection was made. libcurl compares no such thing, so that they need a pool of their own.
/// Threads: the network thread.
class PrivateConnections {
public:
    /// The pool that a request to this address must use; null for the one that all sessions share. One that
    /// was made on another basis is closed, once its transfers have ended.
    [[nodiscard]] std::shared_ptr<CurlPool> poolFor(const std::shared_ptr<const SessionState>& session,
                                                    const HttpAddress& address);

    /// Closes what belongs to sessions that have ended.
    void forgetEnded();

private:
    struct Pool {
        std::string basis;
        std::shared_ptr<CurlPool> connections;
    };

    std::map<std::weak_ptr<const SessionState>, Pool, std::owner_less<>> pools_;
};

}  // namespace oska::native
