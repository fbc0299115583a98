#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "oska/platform/main_queue.h"
#include "oska/resources/bundle_shelf.h"
#include "oska/resources/logged_decoding.h"
#include "oska/resources/resource_downloader.h"
#include "oska/resources/resource_log.h"

namespace oska {

/// One load of a bundle, after its descriptor has arrived: decide, download, use, complete. Each step runs on
/// the main queue and calls the next; the load keeps itself alive until it has posted its completion.
template <class Kind>
class BundleLoad : public std::enable_shared_from_this<BundleLoad<Kind>> {
public:
    using Completion = std::function<void(bool success)>;

    /// `downloader` and `shelf` belong to the manager: `shelf` is used only while `downloader` is locked.
    BundleLoad(std::weak_ptr<ResourceDownloader> downloader, BundleShelf<Kind>& shelf,
               std::shared_ptr<platform::MainQueue> queue, std::int64_t sectorId, bool forceUpdate,
               Completion completion)
        : downloader_(std::move(downloader)),
          shelf_(shelf),
          queue_(std::move(queue)),
          sectorId_(sectorId),
          forceUpdate_(forceUpdate),
          completion_(std::move(completion)) {}

    /// The first step: uses the cached bundle when its version is still the same, else downloads.
    void decide(std::optional<BundleOutput> output) {
        const auto downloader = downloader_.lock();
        if (!downloader) return failBefore("self is nil before processing BundleOutput");
        if (!output) return failBefore("serverBundleOutput is nil");
        output_ = std::move(*output);
        cachedOutput_ = shelf_.outputFor(sectorId_);
        cachedBundle_ = shelf_.bundleFor(sectorId_);
        if (isUnchanged()) return reuse();
        downloader->downloadResourceData(output_.url,
                                         [load = this->shared_from_this()](std::optional<std::string> data) {
                                             load->take(std::move(data));
                                         });
    }

private:
    using Bundle = typename Kind::Bundle;

    bool isUnchanged() const {
        return !forceUpdate_ && cachedOutput_ && cachedBundle_ &&
               cachedOutput_->version_id == output_.version_id;
    }

    void reuse() {
        shelf_.versionId = output_.version_id;
        shelf_.current = cachedBundle_;
        RESOURCE_LOG.info(tag(), kindBundle<Kind>("version unchanged, use cached "),
                          {{"sectorId", sectorId_}, {"versionId", output_.version_id}});
        finish(true);
    }

    void take(std::optional<std::string> data) {
        const auto downloader = downloader_.lock();
        if (Kind::LOGS_EACH_STEP && !downloader) {
            RESOURCE_LOG.error(tag(), kindBundle<Kind>("self is nil before decoding "),
                               {{"sectorId", sectorId_}, {"versionId", output_.version_id}});
            return finish(false);
        }
        const auto dataSize = data ? std::optional(data->size()) : std::nullopt;
        std::optional<Bundle> bundle;
        if (downloader && data) bundle = decodeJSONData<Bundle>(std::move(*data));
        if (bundle) return use(std::make_shared<const Bundle>(std::move(*bundle)));
        logUnusable(dataSize);
        fallBack(downloader != nullptr, dataSize ? "decode failed" : "downloaded data is nil");
    }

    void use(std::shared_ptr<const Bundle> bundle) {
        shelf_.put(sectorId_, output_, bundle);
        shelf_.versionId = output_.version_id;
        shelf_.current = std::move(bundle);
        RESOURCE_LOG.info(tag(), kindBundle<Kind>(forceUpdate_ ? "force updated " : "updated "),
                          {{"sectorId", sectorId_}, {"versionId", output_.version_id}});
        finish(true);
    }

    void logUnusable(std::optional<std::size_t> dataSize) const {
        if (Kind::LOGS_EACH_STEP && dataSize) {
            RESOURCE_LOG.error(
                tag(), kindBundle<Kind>("failed to decode "),
                {{"sectorId", sectorId_}, {"versionId", output_.version_id}, {"dataSize", *dataSize}});
        } else {
            RESOURCE_LOG.error(
                tag(), "downloadResourceData returned nil",
                {{"sectorId", sectorId_}, {"versionId", output_.version_id}, {"url", output_.url}});
        }
    }

    void fallBack(bool isManaged, std::string_view reason) {
        if (forceUpdate_ || !cachedBundle_) return finish(false);
        if (Kind::LOGS_EACH_STEP) {
            RESOURCE_LOG.warn(tag(), kindBundle<Kind>("use cached ", " because ") + std::string(reason),
                              {{"sectorId", sectorId_},
                               {"cachedVersionId", cachedOutput_ ? cachedOutput_->version_id : "unknown"}});
        }
        if (isManaged) shelf_.current = cachedBundle_;
        finish(true);
    }

    void failBefore(std::string_view text) {
        if (Kind::LOGS_EACH_STEP)
            RESOURCE_LOG.error(tag(), text, {{"sectorId", sectorId_}, {"forceUpdate", forceUpdate_}});
        finish(false);
    }

    void finish(bool success) {
        queue_->async([completion = std::move(completion_), success] { completion(success); });
    }

    static std::string tag() { return kindOperation<Kind>("Resources"); }

    std::weak_ptr<ResourceDownloader> downloader_;
    BundleShelf<Kind>& shelf_;
    std::shared_ptr<platform::MainQueue> queue_;
    std::int64_t sectorId_;
    bool forceUpdate_;
    Completion completion_;
    BundleOutput output_;                         // what is being loaded
    std::optional<BundleOutput> cachedOutput_;    // of the sector, when the load decided
    std::shared_ptr<const Bundle> cachedBundle_;  // the same
};

}  // namespace oska
