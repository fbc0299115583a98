#include "oska/resources/resource_downloader.h"

#include <utility>

#include "oska/foundation/http_send.h"
#include "oska/resources/resource_log.h"

namespace oska {
namespace {

using platform::HttpOutcome;

std::optional<std::string> downloadedBody(HttpOutcome outcome) {
    if (outcome.error) {
        RESOURCE_LOG.error("downloadResourceData", "request failed = " + outcome.error->description);
        return std::nullopt;
    }
    const int status = outcome.reply && outcome.reply->status ? *outcome.reply->status : -1;
    if (!platform::isSuccess(status)) {
        RESOURCE_LOG.error("downloadResourceData", "invalid status = " + std::to_string(status));
        return std::nullopt;
    }
    if (!outcome.body) RESOURCE_LOG.error("downloadResourceData", "empty response data");
    return std::move(outcome.body);
}

}  // namespace

ResourceDownloader::ResourceDownloader(std::shared_ptr<platform::MainQueue> mainQueue,
                                       std::shared_ptr<platform::HttpSessionFactory> http,
                                       std::shared_ptr<platform::HttpSessionDelegate> trustDelegate)
    : mainQueue_(std::move(mainQueue)), http_(std::move(http)), trustDelegate_(std::move(trustDelegate)) {}

platform::HttpSession* ResourceDownloader::session() {
    std::call_once(sessionMade_, [this] { session_ = makeHttpSession(*http_, {}, trustDelegate_); });
    return session_.get();
}

void ResourceDownloader::downloadResourceData(std::string_view url, Completion completion) {
    const auto parsed = Url::parse(url);
    if (!parsed) {
        RESOURCE_LOG.error("downloadResourceData", "invalid url = " + std::string(url));
        return mainQueue_->async([completion = std::move(completion)] { completion(std::nullopt); });
    }
    sendHttp(session(), {.url = *parsed},
             [queue = mainQueue_, completion = std::move(completion)](HttpOutcome outcome) {
                 queue->async([completion, body = downloadedBody(std::move(outcome))]() mutable {
                     completion(std::move(body));
                 });
             });
}

}  // namespace oska
