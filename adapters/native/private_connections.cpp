#include "adapters/native/private_connections.h"

#include <utility>

#include "adapters/native/session_state.h"

namespace oska::native {

std::shared_ptr<CurlPool> PrivateConnections::poolFor(const std::shared_ptr<const SessionState>& session,
                                                      const HttpAddress& address) {
    if (!address.isSecure || !session->delegate) return nullptr;
    auto basis = session->delegate->trustBasis(address.host);
    if (!basis) return nullptr;
    auto& pool = pools_[session];
    if (!pool.connections || pool.basis != *basis) pool = {std::move(*basis), std::make_shared<CurlPool>()};
    return pool.connections;
}

void PrivateConnections::forgetEnded() {
    std::erase_if(pools_, [](const auto& entry) {
        const auto session = entry.first.lock();
        return !session || session->hasEnded;
    });
}

}  // namespace oska::native
