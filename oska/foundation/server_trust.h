#pragma once

#include "oska/platform/http_session.h"

namespace oska {

/// Accepts the certificate of the configured on-premise server as it is, and says so on standard output;
/// every other host gets the platform's ordinary check. Hosts are compared exactly, as the base URL spells
/// them at that moment. Threads: any; no state of its own.
class OskaOnPremiseServerTrustDelegate : public platform::HttpSessionDelegate {
public:
    platform::ChallengeDisposition didReceiveChallenge(
        const platform::AuthenticationChallenge& challenge) override;

    /// The base URL, for its own host.
    [[nodiscard]] std::optional<std::string> trustBasis(const std::string& host) const override;
};

}  // namespace oska
