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

struct HttpHeader {
    std::string name;
    std::string value;
};

enum class HttpCachePolicy { useProtocolCachePolicy, reloadIgnoringLocalCache };

struct HttpRequest {
    Url url;
    std::string method = "GET";
    std::vector<HttpHeader> headers;
    std::optional<std::string> body;
    HttpCachePolicy cachePolicy = HttpCachePolicy::useProtocolCachePolicy;
    /// Idle time-out of this request: the longest silence, connecting included. When set, it takes the place
    /// of the session's `timeoutForRequest`, be it shorter or longer.
    std::optional<std::chrono::milliseconds> timeout;
};

/// What went wrong below HTTP. A status of 400 or more is a reply, not an error.
enum class HttpErrorKind {
    timedOut,          ///< idle for longer than the request allows, or longer in all than the session allows
    cancelled,         ///< the session or the platform ended first
    unsupportedUrl,    ///< no scheme, no host, or a scheme other than http and https
    cannotFindHost,    ///< the name does not resolve
    cannotConnect,     ///< refused or unreachable
    connectionLost,    ///< the connection ended before the reply was complete
    badServerReply,    ///< what came is not an HTTP reply, or its body cannot be decoded
    tooManyRedirects,  ///< more than 20
    secureConnectionFailed,  ///< TLS could not be set up
    untrustedCertificate,    ///< nobody vouches for the server's certificate, or it belongs to another host
    replyTooLarge,           ///< the body exceeds the session's `maximumReplyBytes`
    bodyNotAllowed,          ///< a GET with a body; nothing was sent, nor connected to
    outOfResources,          ///< no memory for the request or its reply, or no thread to carry it
    unknown,
};

struct HttpError {
    HttpErrorKind kind = HttpErrorKind::unknown;
    std::string description;  ///< for people: what happened and, where it helps, with which host
};

struct HttpReply {
    std::optional<int> status;  ///< absent when the reply is not an HTTP reply
    std::vector<HttpHeader> headers;
};

/// How a request ended. Success: `reply` and `body`, which is there but empty when the reply brought nothing.
/// Failure: `error`; `reply` only when its headers had come already, and never a part of a body.
struct HttpOutcome {
    std::optional<HttpReply> reply;
    std::optional<std::string> body;
    std::optional<HttpError> error;
};

struct AuthenticationChallenge {
    enum class Method { serverTrust, other };
    Method method = Method::serverTrust;
    std::string host;            ///< to which the connection goes: a name, or an address without brackets
    bool hasServerTrust = true;  ///< whether the challenge carries the server's certificate chain
};

enum class ChallengeDisposition {
    performDefaultHandling,  ///< the platform's full check, as if there were no delegate
    useCredential,           ///< accept the server's certificate as it is
};

/// Decides on servers' certificates for a session. Asked once for each new TLS connection, before the default
/// check; the answer holds for all requests of the session over that connection.
/// Threads: the platform's network thread. Must not block.
class HttpSessionDelegate {
public:
    virtual ~HttpSessionDelegate() = default;
    virtual ChallengeDisposition didReceiveChallenge(const AuthenticationChallenge& challenge) = 0;

    /// What an acceptance of `host` rests on at present, in any text: asked before each request over https. A
    /// connection made on another basis is not used any more, so that the request is decided anew. None: the
    /// delegate accepts no certificate of this host. As it stands here, an acceptance cannot be withdrawn: a
    /// delegate whose answers change says so by this.
    [[nodiscard]] virtual std::optional<std::string> trustBasis(const std::string& host) const {
        (void)host;
        return "";
    }
};

struct HttpSessionConfiguration {
    std::chrono::milliseconds timeoutForRequest{
        60'000};  ///< idle time-out of requests without one of their own
    std::chrono::milliseconds timeoutForResource{604'800'000};  ///< over the whole of a request; seven days
    std::size_t maximumReplyBytes = std::size_t{256} << 20;     ///< of a body after decompression
};

/// Sends requests over http and https: redirects followed (20 at most), compressed bodies decoded, nothing
/// cached, nothing retried that is not safe to send twice.
///
/// Life of a request: `send` returns at once; `completion` is called exactly once, later, never inside
/// `send`, on the platform's network thread (in a virtual world: on the only thread). It should hand over to
/// the main queue and return. Destroying the session, or shutting the platform down, ends its requests: each
/// completes as `cancelled`. Requests cannot be cancelled one by one. One exception: a request for which
/// there is not even a thread completes as `outOfResources` inside `send`, because there is nowhere else.
/// Threads: `send` and the destructor on
/// any thread, inside a completion, too. Errors: outcomes; nothing throws.
class HttpSession {
public:
    using Completion = std::function<void(HttpOutcome)>;

    virtual ~HttpSession() = default;
    virtual void send(HttpRequest request, Completion completion) = 0;
};

/// Whether `status` is an HTTP status of success: 200 to 299.
[[nodiscard]] constexpr bool isSuccess(int status) { return status >= 200 && status <= 299; }

/// Whether the request is one that no session sends: it fails as `bodyNotAllowed`. An empty body is none.
[[nodiscard]] bool isGetWithBody(const HttpRequest& request);

/// Makes sessions. The session keeps `delegate`, which may be null, alive. Threads: any.
class HttpSessionFactory {
public:
    virtual ~HttpSessionFactory() = default;
    [[nodiscard]] virtual std::unique_ptr<HttpSession> makeSession(
        const HttpSessionConfiguration& configuration, std::shared_ptr<HttpSessionDelegate> delegate) = 0;
};

/// The platform's one-line text of a reply that is not a success: "HTTP status 404 (Not Found)".
[[nodiscard]] std::string describe(const HttpReply& reply);

}  // namespace oska::platform
