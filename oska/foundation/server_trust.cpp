#include "oska/foundation/server_trust.h"

#include <optional>
#include <string>
#include <utility>

#include "oska/foundation/log_message.h"
#include "oska/foundation/network_constants.h"
#include "oska/url/url.h"

namespace oska {
namespace {

/// The base URL, or nullopt when its host is another one.
std::optional<std::string> onPremiseBaseUrl(const std::string& host) {
    if (!OskaOnPremiseNetworkConstants::isEnabled()) return std::nullopt;
    auto text = OskaOnPremiseNetworkConstants::baseURL();
    const auto url = Url::parse(text);
    return url && url->host() == host ? std::optional(std::move(text)) : std::nullopt;
}

}  // namespace

platform::ChallengeDisposition OskaOnPremiseServerTrustDelegate::didReceiveChallenge(
    const platform::AuthenticationChallenge& challenge) {
    using enum platform::ChallengeDisposition;
    if (challenge.method != platform::AuthenticationChallenge::Method::serverTrust)
        return performDefaultHandling;
    if (!challenge.hasServerTrust || !onPremiseBaseUrl(challenge.host)) return performDefaultHandling;
    writeDirectLine("(OskaOnPremiseServerTrustDelegate) accepting server trust for on-premise host= " +
                    challenge.host);
    return useCredential;
}

std::optional<std::string> OskaOnPremiseServerTrustDelegate::trustBasis(const std::string& host) const {
    return onPremiseBaseUrl(host);
}

}  // namespace oska
