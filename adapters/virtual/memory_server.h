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
    std::size_t session = 0;  ///< the session it came by: 0 for the first that was made, and so on
    platform::WallTime at;
    platform::HttpRequest request;
};

/// A scripted server in memory and the HTTP sessions that reach it, whatever host a request names.
///
/// Life of a request: it reaches the server in a job of its own, right after `send` at the same instant;
/// there the handler of its path, else the one for all others, decides on the answer. The request completes
/// in a job, too, when the answer's delay has passed. It fails as `timedOut` when the answer takes longer
/// than its idle time-out (its own, else the session's) or than the session allows in all, and as
/// `replyTooLarge` beyond the session's limit.
/// A request that is neither http nor https or has no host fails as `unsupportedUrl`, a GET with a body as
/// `bodyNotAllowed`; one over https to a
/// host that nobody vouches for is put to the session's delegate, each time. Neither is seen by the server
/// unless accepted.
/// Ends: requests under way complete as `cancelled` in a job when their session is destroyed, inside
/// `shutDown` when that is called; with the queue stopped, when it drops them or, sent later still, when the
/// server and its sessions are gone. No redirects are followed, no bodies decoded.
/// Threads: operations, sessions' included, on any thread; handlers, delegates and completions on the main
/// thread.
/// Lifetime: sessions may outlive the server, which shuts down when it is destroyed.
class MemoryServer final : public platform::HttpSessionFactory {
public:
    explicit MemoryServer(std::shared_ptr<VirtualMainQueue> queue);
    ~MemoryServer() override;
    MemoryServer(const MemoryServer&) = delete;
    MemoryServer& operator=(const MemoryServer&) = delete;

    /// Answers the requests that have no handler of their own; until it is set, they are answered with status
    /// 404.
    void onRequest(RequestHandler handler);

    /// Answers the requests whose URL has this path ("/a/b", as sent: no query, escapes as they stand).
    void onPath(std::string path, RequestHandler handler);

    /// No authority vouches for the certificate of this host, given as `Url::host` reads it.
    void setUntrusted(std::string host);

    /// Whether `requests` fills (it does from the start); a long run would collect without end.
    void keepRequests(bool keep);

    /// What reached the server, in that order.
    [[nodiscard]] std::vector<SeenRequest> requests() const;

    /// Completes every request under way as cancelled, here and now, and from now on each new one in a job.
    void shutDown();

    [[nodiscard]] std::unique_ptr<platform::HttpSession> makeSession(
        const platform::HttpSessionConfiguration& configuration,
        std::shared_ptr<platform::HttpSessionDelegate> delegate) override;

private:
    const std::shared_ptr<class MemorySite> site_;  // shared with the sessions
};

}  // namespace oska::virtual_world
