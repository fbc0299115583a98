#include "adapters/virtual/memory_server.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <utility>

#include "adapters/virtual/memory_transfer.h"

namespace oska::virtual_world {

using platform::HttpErrorKind;
using platform::HttpOutcome;
using platform::HttpRequest;
using platform::HttpSession;
using platform::HttpSessionConfiguration;
using std::chrono::nanoseconds;

/// The server's handlers and seen requests, and every request under way. No completion, handler or delegate
/// is called and no request destroyed while the lock is held.
class MemorySite : public std::enable_shared_from_this<MemorySite> {
public:
    explicit MemorySite(std::shared_ptr<VirtualMainQueue> queue) : queue_(std::move(queue)) {}

    void setHandler(RequestHandler handler) {
        const std::lock_guard lock(mutex_);
        handler_.swap(handler);
    }

    void setHandler(std::string path, RequestHandler handler) {
        const std::lock_guard lock(mutex_);
        pathHandlers_[std::move(path)].swap(handler);
    }

    void setUntrusted(std::string host) {
        const std::lock_guard lock(mutex_);
        untrustedHosts_.insert(std::move(host));
    }

    void keepRequests(bool keep) {
        const std::lock_guard lock(mutex_);
        keepsRequests_ = keep;
    }

    std::vector<SeenRequest> requests() const {
        const std::lock_guard lock(mutex_);
        return seen_;
    }

    std::size_t addSession() {
        const std::lock_guard lock(mutex_);
        return sessionCount_++;
    }

    void send(std::shared_ptr<const SessionInfo> session, HttpRequest request,
              HttpSession::Completion completion) {
        auto transfer =
            std::make_shared<MemoryTransfer>(std::move(session), std::move(request), std::move(completion));
        const auto id = add(std::move(transfer));
        queue_->async([weak = weak_from_this(), id] {
            if (const auto site = weak.lock()) site->arrive(id);
        });
    }

    void endSession(std::size_t index) {
        auto ended = takeOf(index);
        if (ended.empty()) return;
        queue_->async([ended = std::move(ended)] {
            for (const auto& [id, transfer] : ended) transfer->owed.complete(cancelled());
        });
    }

    void shutDown() {
        Transfers ended;
        {
            const std::lock_guard lock(mutex_);
            isShutDown_ = true;
            ended.swap(transfers_);
        }
        for (const auto& [id, transfer] : ended) transfer->owed.complete(cancelled());
    }

private:
    using Transfers = std::map<std::uint64_t, std::shared_ptr<MemoryTransfer>>;  // in the order of sending

    std::uint64_t add(std::shared_ptr<MemoryTransfer> transfer) {
        const std::lock_guard lock(mutex_);
        transfers_.emplace(++lastId_, std::move(transfer));
        return lastId_;
    }

    std::shared_ptr<MemoryTransfer> find(std::uint64_t id) const {
        const std::lock_guard lock(mutex_);
        const auto found = transfers_.find(id);
        return found == transfers_.end() ? nullptr : found->second;
    }

    std::shared_ptr<MemoryTransfer> take(std::uint64_t id) {
        const std::lock_guard lock(mutex_);
        auto node = transfers_.extract(id);
        return node ? std::move(node.mapped()) : nullptr;
    }

    Transfers takeOf(std::size_t session) {
        const std::lock_guard lock(mutex_);
        Transfers taken;
        for (auto next = transfers_.begin(); next != transfers_.end();) {
            const auto current = next++;
            if (current->second->session->index == session) taken.insert(transfers_.extract(current));
        }
        return taken;
    }

    void arrive(std::uint64_t id) {
        const auto transfer = find(id);
        if (!transfer) return;
        auto answer = withinLimits(answerTo(*transfer), *transfer);
        if (answer.delay <= nanoseconds::zero()) return complete(id, std::move(*answer.outcome));
        transfer->end = queue_->after(answer.delay, [weak = weak_from_this(), id, outcome = *answer.outcome] {
            if (const auto site = weak.lock()) site->complete(id, outcome);
        });
    }

    void complete(std::uint64_t id, HttpOutcome outcome) {
        if (const auto transfer = take(id)) transfer->owed.complete(std::move(outcome));
    }

    /// The handler's answer, or why the request does not reach the server.
    ScriptedAnswer answerTo(const MemoryTransfer& transfer) {
        const auto& url = transfer.request.url;
        if (isShutDown()) return {.outcome = cancelled()};
        if (!isSupported(url)) return failure(HttpErrorKind::unsupportedUrl, "unsupported URL");
        if (platform::isGetWithBody(transfer.request)) {
            return failure(HttpErrorKind::bodyNotAllowed, "A GET cannot have a body.");
        }
        const auto host = *url.host();
        if (hasScheme(url, "https") && isUntrusted(host) && !isAccepted(*transfer.session, host)) {
            return failure(HttpErrorKind::untrustedCertificate,
                           "The certificate of \"" + host + "\" is not trusted.");
        }
        note(transfer);
        return handlerFor(pathOf(url))(transfer.request);
    }

    bool isShutDown() const {
        const std::lock_guard lock(mutex_);
        return isShutDown_;
    }

    bool isUntrusted(const std::string& host) const {
        const std::lock_guard lock(mutex_);
        return untrustedHosts_.contains(host);
    }

    RequestHandler handlerFor(const std::string& path) const {
        const std::lock_guard lock(mutex_);
        const auto found = pathHandlers_.find(path);
        return found == pathHandlers_.end() ? handler_ : found->second;
    }

    void note(const MemoryTransfer& transfer) {
        const auto at = queue_->now();
        const std::lock_guard lock(mutex_);
        if (keepsRequests_) seen_.push_back({transfer.session->index, at, transfer.request});
    }

    const std::shared_ptr<VirtualMainQueue> queue_;

    mutable std::mutex mutex_;
    RequestHandler handler_ = always(reply(404));
    std::map<std::string, RequestHandler> pathHandlers_;
    std::set<std::string> untrustedHosts_;
    bool keepsRequests_ = true;
    std::vector<SeenRequest> seen_;
    std::size_t sessionCount_ = 0;
    bool isShutDown_ = false;
    std::uint64_t lastId_ = 0;
    Transfers transfers_;
};

namespace {

class MemorySession final : public HttpSession {
public:
    MemorySession(std::shared_ptr<MemorySite> site, SessionInfo info)
        : site_(std::move(site)), info_(std::make_shared<const SessionInfo>(std::move(info))) {}
    ~MemorySession() override { site_->endSession(info_->index); }
    MemorySession(const MemorySession&) = delete;
    MemorySession& operator=(const MemorySession&) = delete;

    void send(HttpRequest request, Completion completion) override {
        site_->send(info_, std::move(request), std::move(completion));
    }

private:
    const std::shared_ptr<MemorySite> site_;
    const std::shared_ptr<const SessionInfo> info_;
};

}  // namespace

MemoryServer::MemoryServer(std::shared_ptr<VirtualMainQueue> queue)
    : site_(std::make_shared<MemorySite>(std::move(queue))) {}

MemoryServer::~MemoryServer() { site_->shutDown(); }

void MemoryServer::onRequest(RequestHandler handler) { site_->setHandler(std::move(handler)); }

void MemoryServer::onPath(std::string path, RequestHandler handler) {
    site_->setHandler(std::move(path), std::move(handler));
}

void MemoryServer::setUntrusted(std::string host) { site_->setUntrusted(std::move(host)); }

void MemoryServer::keepRequests(bool keep) { site_->keepRequests(keep); }

std::vector<SeenRequest> MemoryServer::requests() const { return site_->requests(); }

void MemoryServer::shutDown() { site_->shutDown(); }

std::unique_ptr<HttpSession> MemoryServer::makeSession(
    const HttpSessionConfiguration& configuration, std::shared_ptr<platform::HttpSessionDelegate> delegate) {
    return std::make_unique<MemorySession>(
        site_, SessionInfo{site_->addSession(), configuration, std::move(delegate)});
}

}  // namespace oska::virtual_world
