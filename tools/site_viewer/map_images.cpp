#include "tools/site_viewer/map_images.h"

#include <QFileInfo>
#include <QUrl>
#include <utility>

#include "oska/platform/platform.h"

namespace viewer {
namespace {

using oska::platform::HttpOutcome;

// Without the image a grid is drawn, so a long wait is not worth it.
constexpr std::chrono::seconds PATIENCE(5);
constexpr std::size_t LARGEST_IMAGE = std::size_t{64} << 20;  // bytes of its file
// Each download takes a thread of the site's server, which has few.
constexpr std::size_t AT_A_TIME = 4;

std::string problemOf(const HttpOutcome& outcome) {
    if (outcome.error) return outcome.error->description;
    const auto status = outcome.reply ? outcome.reply->status.value_or(0) : 0;
    return oska::platform::isSuccess(status) ? std::string() : oska::platform::describe(*outcome.reply);
}

}  // namespace

MapImages::MapImages(std::string siteFolder, std::string serverUrl)
    : siteFolder_(std::move(siteFolder)),
      serverUrl_(std::move(serverUrl)),
      session_(oska::platform::current().http->makeSession(
          {.timeoutForRequest = PATIENCE, .timeoutForResource = PATIENCE, .maximumReplyBytes = LARGEST_IMAGE},
          nullptr)) {}

std::string MapImages::addressOf(const std::string& url) const {
    const QUrl parsed(QString::fromStdString(url));
    const bool isServed =
        !parsed.path().isEmpty() && QFileInfo(QString::fromStdString(siteFolder_) + parsed.path()).isFile();
    return isServed ? serverUrl_ + parsed.path(QUrl::FullyEncoded).toStdString() : url;
}

void MapImages::load(const std::string& url, Completion completion) {
    waiting_.push_back({url, std::move(completion)});
    startSome();
}

void MapImages::startSome() {
    while (underWay_ < AT_A_TIME && !waiting_.empty()) {
        auto job = std::move(waiting_.front());
        waiting_.pop_front();
        ++underWay_;
        start(std::move(job));
    }
}

void MapImages::start(Job job) {
    const auto answer = [this, queue = oska::platform::current().mainQueue, isAlive = std::weak_ptr(isAlive_),
                         completion = std::move(job.completion)](HttpOutcome outcome) {
        queue->async([this, outcome = std::move(outcome), completion, isAlive] {
            if (isAlive.lock()) end(outcome, completion);
        });
    };
    const auto address = oska::Url::parse(addressOf(job.url));
    if (!address) return answer({.error = oska::platform::HttpError{.description = "this is no URL"}});
    session_->send({.url = *address}, answer);
}

void MapImages::end(const HttpOutcome& outcome, const Completion& completion) {
    --underWay_;
    startSome();
    if (const auto problem = problemOf(outcome); !problem.empty()) return completion({}, problem);
    auto image = QImage::fromData(QByteArray::fromStdString(outcome.body.value_or("")));
    completion(image, image.isNull() ? "not an image that Qt reads" : "");
}

}  // namespace viewer
