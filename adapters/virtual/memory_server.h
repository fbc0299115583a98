#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "adapters/virtual/scripted_answer.h"
#include "adapters/virtual/virtual_main_queue.h"
#include "oska/platform/http_session.h"

namespace oska::virtual_world {

/// One request as it reached the server.
struct SeenRequest {
    /// The session that sent it: 0 for the first session that was made, and so on.
    std::size_t session = 0;
    /// When it arrived, by the virtual clock.
    platform::WallTime at;
    /// As it was given to `send`.
    platform::HttpRequest request;
};

/// A scripted server in memory, and the HTTP sessions that reach it. All requests go to it, to any host.
///
/// Life of a request: it reaches the server in a job of its own, at the instant of `send`. There the handler
/// of its path decides on the answer; without one, the handler for all other paths. When the answer's delay
/// has passed, the request completes, in a job, too. Redirects are not followed and bodies not decoded.
/// Errors: `timedOut` when the answer takes longer than the idle time-out (the request's, else the session's)
/// or than the session's total limit; `replyTooLarge` beyond the session's limit; `unsupportedUrl` when the
/// URL is not http or https or has no host; `bodyNotAllowed` for a GET with a body. A request over https to
/// an untrusted host asks the session's delegate each time, and fails as `untrustedCertificate` unless it
/// accepts. The server does not see the requests that fail in the last three ways.
/// Ends: requests under way complete as `cancelled`: in a job when their session is destroyed, inside
/// `shutDown` when that is called. If the queue has stopped, they do so when it destroys their jobs;
/// requests sent after that, when the server and its sessions were destroyed.
/// Threads: all operations, the sessions' too, on any thread; handlers, delegates and completions are called
/// on the main thread.
/// Lifetime: sessions may outlive the server. Destroying the server shuts it down.
class MemoryServer final : public platform::HttpSessionFactory {
public:
    /// `queue`: runs the jobs, and its clock measures the delays.
    explicit MemoryServer(std::shared_ptr<VirtualMainQueue> queue);
    ~MemoryServer() override;
    MemoryServer(const MemoryServer&) = delete;
    MemoryServer& operator=(const MemoryServer&) = delete;

    /// Sets the handler for all paths without one of their own. Until then they are answered with status 404.
    void onRequest(RequestHandler handler);

    /// Sets the handler for one path: "/a/b", without a query and with escapes as they were sent.
    void onPath(std::string path, RequestHandler handler);

    /// From now on the certificate of this host passes no check. `host` as `Url::host` returns it.
    void setUntrusted(std::string host);

    /// Whether `requests` collects (at the beginning it does). Switch it off for long runs, to save memory.
    void keepRequests(bool keep);

    /// The requests that reached the server, in the order in which they came.
    [[nodiscard]] std::vector<SeenRequest> requests() const;

    /// Completes every request under way as `cancelled` inside this call. Later requests complete as
    /// `cancelled` in a job.
    void shutDown();

    [[nodiscard]] std::unique_ptr<platform::HttpSession> makeSession(
        const platform::HttpSessionConfiguration& configuration,
        std::shared_ptr<platform::HttpSessionDelegate> delegate) override;

private:
    const std::shared_ptr<class MemorySite> site_;  // shared with the sessions
};

}  // namespace oska::virtual_world
