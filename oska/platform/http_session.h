#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "oska/url/url.h"

namespace oska::platform {

/// One header field of a request or a reply. Names are compared without regard to case.
struct HttpHeader {
    std::string name = {};   ///< as it is sent or was received, without the colon
    std::string value = {};  ///< without white space at its ends
};

/// What a session may take from a cache of its own instead of asking the server.
enum class HttpCachePolicy {
    useProtocolCachePolicy,    ///< what HTTP allows
    reloadIgnoringLocalCache,  ///< nothing: the server is asked
};

/// What a session sends.
struct HttpRequest {
    Url url;                     ///< scheme http or https; the fragment is not sent
    std::string method = "GET";  ///< sent as it stands, in this case

    /// The header fields that the caller sets, sent in this order; a name may occur more than once. Names
    /// must be tokens of HTTP, and values must hold no line break and no NUL. Accept-Encoding,
    /// Content-Length, Expect and Transfer-Encoding belong to the session, which ignores them here. A
    /// redirect to another scheme, host or port leaves them all out, except Content-Type where the body is
    /// sent on.
    std::vector<HttpHeader> headers = {};

    std::optional<std::string> body = {};  ///< any bytes; nullopt or empty: no body
    HttpCachePolicy cachePolicy = HttpCachePolicy::useProtocolCachePolicy;  ///< for this request alone

    /// Idle time-out of this request: the longest silence, connecting included. When set, it replaces the
    /// session's `timeoutForRequest`, whether it is shorter or longer.
    std::optional<std::chrono::milliseconds> timeout = {};
};

/// What went wrong below HTTP. A status of 400 or more is a reply, not an error.
enum class HttpErrorKind {
    timedOut,        ///< silent for longer than the request allows, or longer in all than the session allows
    cancelled,       ///< the session or the platform ended first
    unsupportedUrl,  ///< no scheme, no host, or a scheme other than http and https
    cannotFindHost,  ///< the name does not resolve
    cannotConnect,   ///< refused or unreachable
    connectionLost,  ///< the connection ended before the reply was complete
    badServerReply,  ///< the reply is not HTTP, or its body cannot be decompressed
    tooManyRedirects,        ///< more than 20
    secureConnectionFailed,  ///< TLS could not be set up
    untrustedCertificate,    ///< no known authority has signed the server's certificate, or it is of another
                             ///< host
    replyTooLarge,           ///< the body exceeds the session's `maximumReplyBytes`
    bodyNotAllowed,          ///< a GET with a body; no connection was made
    outOfResources,          ///< no memory for the request or its reply, or no thread to carry it
    unknown,                 ///< none of these
};

/// Why a request has no complete reply.
struct HttpError {
    HttpErrorKind kind = HttpErrorKind::unknown;  ///< for programs
    std::string description = {};  ///< for people: what happened and, where it helps, with which host
};

/// The head of a reply.
struct HttpReply {
    std::optional<int> status = {};        ///< nullopt when the reply is not an HTTP reply
    std::vector<HttpHeader> headers = {};  ///< in the order received
};

/// How a request ended. Success: `reply` and `body`, which is empty, not nullopt, when the reply had none.
/// Failure: `error`; `reply` only when its headers had arrived already, and never a part of a body.
struct HttpOutcome {
    std::optional<HttpReply> reply = {};   ///< see above
    std::optional<std::string> body = {};  ///< decompressed bytes
    std::optional<HttpError> error = {};   ///< nullopt: the reply is complete, whatever its status
};

/// A server asks who it is talking to, or shows who it is.
struct AuthenticationChallenge {
    /// What the challenge is about.
    enum class Method {
        serverTrust,  ///< the server shows its certificate
        other,        ///< anything else, such as a password
    };

    Method method = Method::serverTrust;  ///< what is asked
    std::string host = {};                ///< of the connection: a name, or an address without brackets
    bool hasServerTrust = true;           ///< whether the challenge carries the server's certificate chain
};

/// What a session does with a challenge.
enum class ChallengeDisposition {
    performDefaultHandling,  ///< the platform's full check, as if there were no delegate
    useCredential,           ///< accept the server's certificate as it is
};

/// Decides on servers' certificates for a session.
/// Threads: the platform's network thread. Must not block.
class HttpSessionDelegate {
public:
    virtual ~HttpSessionDelegate() = default;

    /// Called once for each new TLS connection, before the default check. The decision holds for all requests
    /// of the session over that connection.
    virtual ChallengeDisposition didReceiveChallenge(const AuthenticationChallenge& challenge) = 0;

    /// The reason why certificates of `host` are accepted at present, as any text; nullopt when the delegate
    /// accepts none of this host. Called before each request over https: a connection that was accepted for
    /// another reason is not used again, so that the new request is decided anew. A delegate whose decisions
    /// may change must override this; by default the reason never changes.
    [[nodiscard]] virtual std::optional<std::string> trustBasis(const std::string& host) const {
        (void)host;
        return "";
    }
};

/// Limits of one session, for all its requests.
struct HttpSessionConfiguration {
    std::chrono::milliseconds timeoutForRequest{
        60'000};  ///< idle time-out of requests without one of their own
    std::chrono::milliseconds timeoutForResource{604'800'000};  ///< over the whole of a request; seven days
    std::size_t maximumReplyBytes = std::size_t{256} << 20;     ///< of a body after decompression
};

/// Sends requests over http and https. It follows redirects (20 at most), decompresses bodies, caches
/// nothing, and repeats only requests that are safe to send twice.
///
/// Threads: `send` and the destructor on any thread, also inside a completion. Lifetime: destroying the
/// session, or shutting the platform down, ends its requests: each completes as `cancelled`. Requests cannot
/// be cancelled one by one. Errors: part of the outcome; nothing throws.
class HttpSession {
public:
    /// Receives the outcome of one request. It should hand it to the main queue and return.
    using Completion = std::function<void(HttpOutcome)>;

    virtual ~HttpSession() = default;

    /// Starts `request` and returns at once. `completion` is called exactly once, later, never inside `send`,
    /// on the platform's network thread (in a virtual world: on the only thread). One exception: when no
    /// thread can be made for the request, it completes as `outOfResources` inside `send`.
    virtual void send(HttpRequest request, Completion completion) = 0;
};

/// Whether `status` is an HTTP status of success: 200 to 299.
[[nodiscard]] constexpr bool isSuccess(int status) { return status >= 200 && status <= 299; }

/// Whether the request is a GET with a body. No session sends it: it fails as `bodyNotAllowed`. An empty body
/// counts as no body.
[[nodiscard]] bool isGetWithBody(const HttpRequest& request);

/// Makes sessions. Threads: any.
class HttpSessionFactory {
public:
    virtual ~HttpSessionFactory() = default;

    /// Returns a session of its own, which keeps `delegate` alive; a null delegate leaves every decision to
    /// the default check. When this returns null or throws, every request of the session fails.
    [[nodiscard]] virtual std::unique_ptr<HttpSession> makeSession(
        const HttpSessionConfiguration& configuration, std::shared_ptr<HttpSessionDelegate> delegate) = 0;
};

/// One line about a reply that is not a success: "HTTP status 404 (Not Found)"; without the parentheses where
/// the status has no usual reason phrase, and "not an HTTP reply" where there is no status.
[[nodiscard]] std::string describe(const HttpReply& reply);

}  // namespace oska::platform
