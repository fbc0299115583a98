#pragma once

#include <functional>
#include <optional>
#include <string>
#include <variant>

/// The access-token provider of the maker's framework QuenloAuth.
namespace oska::platform {

/// Why a provider has no token. The kit treats all reasons alike.
enum class TokenFailureReason {
    notSignedIn,  ///< no user is signed in
    network,      ///< the token server was not reached
    server,       ///< the token server refused
    unknown,      ///< none of these
};

/// What a provider says when it has no token. The kit does not read it; it is there for hosts.
struct TokenFailure {
    TokenFailureReason reason = TokenFailureReason::unknown;  ///< for programs
    std::optional<int> statusCode = {};                       ///< HTTP status, where a server replied
    std::optional<std::string> message = {};                  ///< for people
};

/// The bearer token without the word "Bearer", or why there is none.
using TokenResult = std::variant<std::string, TokenFailure>;

/// Provides the token that goes with each authorised request.
class QuenloAuthManager {
public:
    virtual ~QuenloAuthManager() = default;

    /// Hands a token, or a failure, to `completion`. `update` asks to renew a token that has expired; the kit
    /// always passes true.
    ///
    /// Threads: called on any thread; `completion` must be called exactly once, on any thread, inside the
    /// call or later. The kit ignores a second call of it and takes an exception for a failure. At most eight
    /// uploads wait for their token; older ones end as if the provider had failed.
    virtual void getAccessToken(bool update, std::function<void(TokenResult)> completion) = 0;
};

}  // namespace oska::platform
