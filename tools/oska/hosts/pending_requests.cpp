#include "tools/oska/hosts/pending_requests.h"

#include <atomic>
#include <utility>

namespace oska::tool {

using platform::HttpOutcome;
using platform::HttpSession;
using platform::HttpSessionConfiguration;
using platform::HttpSessionDelegate;
using platform::HttpSessionFactory;
using platform::MainQueue;

struct PendingRequests::Counts {
    std::atomic<std::size_t> all{0};
    std::atomic<std::size_t> uploads{0};
};

class PendingRequests::Session final : public HttpSession {
public:
    Session(std::unique_ptr<HttpSession> session, std::shared_ptr<MainQueue> mainQueue,
            std::shared_ptr<Counts> counts)
        : session_(std::move(session)), mainQueue_(std::move(mainQueue)), counts_(std::move(counts)) {}

    void send(platform::HttpRequest request, Completion completion) override {
        const std::size_t upload = request.body ? 1 : 0;
        counts_->all += 1;
        counts_->uploads += upload;
        session_->send(std::move(request), [completion = std::move(completion), mainQueue = mainQueue_,
                                            counts = counts_, upload](HttpOutcome outcome) {
            completion(std::move(outcome));
            mainQueue->async([counts, upload] {
                counts->all -= 1;
                counts->uploads -= upload;
            });
        });
    }

private:
    const std::unique_ptr<HttpSession> session_;
    const std::shared_ptr<MainQueue> mainQueue_;
    const std::shared_ptr<Counts> counts_;
};

class PendingRequests::Factory final : public HttpSessionFactory {
public:
    Factory(std::shared_ptr<HttpSessionFactory> factory, std::shared_ptr<MainQueue> mainQueue,
            std::shared_ptr<Counts> counts)
        : factory_(std::move(factory)), mainQueue_(std::move(mainQueue)), counts_(std::move(counts)) {}

    [[nodiscard]] std::unique_ptr<HttpSession> makeSession(
        const HttpSessionConfiguration& configuration,
        std::shared_ptr<HttpSessionDelegate> delegate) override {
        return std::make_unique<Session>(factory_->makeSession(configuration, std::move(delegate)),
                                         mainQueue_, counts_);
    }

private:
    const std::shared_ptr<HttpSessionFactory> factory_;
    const std::shared_ptr<MainQueue> mainQueue_;
    const std::shared_ptr<Counts> counts_;
};

PendingRequests::PendingRequests() : counts_(std::make_shared<Counts>()) {}

std::shared_ptr<HttpSessionFactory> PendingRequests::countIn(std::shared_ptr<HttpSessionFactory> factory,
                                                             std::shared_ptr<MainQueue> mainQueue) const {
    return std::make_shared<Factory>(std::move(factory), std::move(mainQueue), counts_);
}

std::size_t PendingRequests::count() const { return counts_->all; }

std::size_t PendingRequests::uploads() const { return counts_->uploads; }

}  // namespace oska::tool
