#include "examples/site_viewer/map_images.h"

#include <QFileInfo>
#include <QUrl>
#include <utility>

#include "oska/platform/platform.h"

namespace viewer {
namespace {

using oska::platform::HttpOutcome;

// The longest silence of an image's server: a plan drawn from the wards will do as well.
constexpr std::chrono::seconds PATIENCE(5);

std::string problemOf(const HttpOutcome& outcome) {
    if (outcome.error) return outcome.error->description;
    const auto status = outcome.reply ? outcome.reply->status.value_or(0) : 0;
    return status >= 200 && status < 300 ? std::string() : oska::platform::describe(*outcome.reply);
}

void finish(const HttpOutcome& outcome, const MapImages::Completion& completion) {
    if (const auto problem = problemOf(outcome); !problem.empty()) return completion({}, problem);
    auto image = QImage::fromData(QByteArray::fromStdString(outcome.body.value_or("")));
    completion(image, image.isNull() ? "not an image that Qt reads" : "");
}

}  // namespace

MapImages::MapImages(std::string siteFolder, std::string serverUrl)
    : siteFolder_(std::move(siteFolder)),
      serverUrl_(std::move(serverUrl)),
      session_(oska::platform::current().http->makeSession({}, nullptr)) {}

std::string MapImages::addressOf(const std::string& url) const {
    const QUrl parsed(QString::fromStdString(url));
    const bool isServed =
        !parsed.path().isEmpty() && QFileInfo(QString::fromStdString(siteFolder_) + parsed.path()).isFile();
    return isServed ? serverUrl_ + parsed.path(QUrl::FullyEncoded).toStdString() : url;
}

void MapImages::load(const std::string& url, Completion completion) {
    auto address = oska::platform::Url::parse(addressOf(url));
    const auto queue = oska::platform::current().mainQueue;
    if (!address) {
        queue->async([completion = std::move(completion)] { completion({}, "not a URL"); });
        return;
    }
    session_->send(
        {.url = *std::move(address), .timeout = PATIENCE},
        [queue, completion = std::move(completion), isAlive = std::weak_ptr(isAlive_)](HttpOutcome outcome) {
            queue->async([outcome = std::move(outcome), completion, isAlive] {
                if (isAlive.lock()) finish(outcome, completion);
            });
        });
}

}  // namespace viewer
