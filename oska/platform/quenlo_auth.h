#pragma once

#include <functional>
#include <optional>
#include <string>
#include <variant>

/// The access-token provider of the maker's framework QuenloAuth.
namespace oska::platform {

enum class TokenFailureReason { notSignedIn, network, server, unknown };

struct TokenFailure {
    TokenFailureReason reason = TokenFailureReason::unknown;
    std::optional<int> statusCode;
    std::optional<std::string> message;
};

/// The token, or why there is none.
using TokenResult = std::variant<std::string, TokenFailure>;

/// Threads: `getAccessToken` on any thread; `completion` exactly once, on any thread, inside the call or
/// later. The kit ignores a second answer and takes an exception for a failure. It keeps at most eight
/// uploads waiting for an answer; older ones end as if the provider had failed.
class QuenloAuthManager {
public:
    virtual ~QuenloAuthManager() = default;
    /// `update`: a token that has run out is renewed first.
    virtual void getAccessToken(bool update, std::function<void(TokenResult)> completion) = 0;
};

}  // namespace oska::platform
