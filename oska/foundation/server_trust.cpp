#include "oska/foundation/server_trust.h"

#include "oska/foundation/log_message.h"
#include "oska/foundation/network_constants.h"
#include "oska/platform/url.h"

namespace oska {
namespace {

bool isOnPremiseHost(const std::string& host) {
    if (!OskaOnPremiseNetworkConstants::isEnabled()) return false;
    const auto url = platform::Url::parse(OskaOnPremiseNetworkConstants::baseURL());
    return url && url->host() && *url->host() == host;
}

}  // namespace

platform::ChallengeDisposition OskaOnPremiseServerTrustDelegate::didReceiveChallenge(
    const platform::AuthenticationChallenge& challenge) {
    using enum platform::ChallengeDisposition;
    if (challenge.method != platform::AuthenticationChallenge::Method::serverTrust)
        return performDefaultHandling;
    if (!challenge.hasServerTrust || !isOnPremiseHost(challenge.host)) return performDefaultHandling;
    writeDirectLine("(OskaOnPremiseServerTrustDelegate) accepting server trust for on-premise host= " +
                    challenge.host);
    return useCredential;
}

}  // namespace oska
