#include "tools/oska/hosts/pending_requests.h"

#include <atomic>
#include <utility>

#include "tools/oska/hosts/watched_sessions.h"

namespace oska::tool {

using platform::HttpSessionFactory;
using platform::MainQueue;

struct PendingRequests::Counts {
    std::atomic<std::size_t> all{0};
    std::atomic<std::size_t> uploads{0};
};

PendingRequests::PendingRequests() : counts_(std::make_shared<Counts>()) {}

std::shared_ptr<HttpSessionFactory> PendingRequests::countIn(std::shared_ptr<HttpSessionFactory> factory,
                                                             std::shared_ptr<MainQueue> mainQueue) const {
    using Completion = platform::HttpSession::Completion;
    return watchedSessions(std::move(factory),
                           [counts = counts_, mainQueue = std::move(mainQueue)](
                               const platform::HttpRequest& request, Completion completion) -> Completion {
                               const std::size_t upload = request.body ? 1 : 0;
                               counts->all += 1;
                               counts->uploads += upload;
                               return [completion = std::move(completion), mainQueue, counts,
                                       upload](platform::HttpOutcome outcome) {
                                   completion(std::move(outcome));
                                   mainQueue->async([counts, upload] {
                                       counts->all -= 1;
                                       counts->uploads -= upload;
                                   });
                               };
                           });
}

std::size_t PendingRequests::count() const { return counts_->all; }

std::size_t PendingRequests::uploads() const { return counts_->uploads; }

}  // namespace oska::tool
