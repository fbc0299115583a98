#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "oska/platform/http_session.h"
#include "oska/platform/main_queue.h"

namespace oska {

/// Downloads bundle files: plain GETs without token, header or time-out of their own, over one session that
/// is made on first use.
///
/// Threads: any. Lifetime: destroying it ends the downloads under way; each of them still completes.
class ResourceDownloader {
public:
    using Completion = std::function<void(std::optional<std::string> body)>;

    ResourceDownloader(std::shared_ptr<platform::MainQueue> mainQueue,
                       std::shared_ptr<platform::HttpSessionFactory> http,
                       std::shared_ptr<platform::HttpSessionDelegate> trustDelegate);

    /// Calls `completion` once, later, on the main queue: with the body of a reply whose status is a success,
    /// which may be empty, or with nullopt after logging why there is none.
    void downloadResourceData(std::string_view url, Completion completion);

private:
    platform::HttpSession* session();  // null where the factory made none

    std::shared_ptr<platform::MainQueue> mainQueue_;
    std::shared_ptr<platform::HttpSessionFactory> http_;
    std::shared_ptr<platform::HttpSessionDelegate> trustDelegate_;
    std::once_flag sessionMade_;
    std::unique_ptr<platform::HttpSession> session_;  // on first use
};

}  // namespace oska
