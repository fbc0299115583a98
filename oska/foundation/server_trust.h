#pragma once

#include "oska/platform/http_session.h"

namespace oska {

/// Accepts the certificate of the configured on-premise server without a check, and writes a line about it;
/// every other host gets the platform's ordinary check. The host must equal that of the base URL at that
/// moment, exactly. Threads: any; no state.
class OskaOnPremiseServerTrustDelegate : public platform::HttpSessionDelegate {
public:
    platform::ChallengeDisposition didReceiveChallenge(
        const platform::AuthenticationChallenge& challenge) override;

    /// The base URL for its own host, nullopt for others.
    [[nodiscard]] std::optional<std::string> trustBasis(const std::string& host) const override;
};

}  // namespace oska
