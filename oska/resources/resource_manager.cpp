#include "oska/resources/resource_manager.h"

#include <utility>

#include "oska/foundation/network_constants.h"
#include "oska/foundation/server_trust.h"
#include "oska/platform/quenlo_resource.h"
#include "oska/resources/bundle_load.h"
#include "oska/resources/logged_decoding.h"
#include "oska/resources/resource_log.h"

namespace oska {
const std::shared_ptr<OskaResourceManager>& OskaResourceManager::shared() {
    static const auto* manager = new std::shared_ptr<OskaResourceManager>(
        std::make_shared<OskaResourceManager>(platform::current(), OskaNetworkManager::shared()));
    return *manager;
}

OskaResourceManager::OskaResourceManager(const platform::Platform& platform,
                                         std::shared_ptr<OskaNetworkManager> network)
    : mainQueue_(platform.mainQueue),
      network_(std::move(network)),
      downloader_(platform.mainQueue, platform.http, std::make_shared<OskaOnPremiseServerTrustDelegate>()) {
    platform::QuenloResourceNetworkConstants::setServerURL(rawValue(platform::ResourceCloud::AWS),
                                                           rawValue(platform::ResourceRegion::KOREA), false);
    OskaOnPremiseNetworkConstants::resetOnPremiseBaseURLIfDisabled();
}

template <>
BundleShelf<DapoKind>& OskaResourceManager::shelf<DapoKind>() {
    return dapo_;
}

template <>
BundleShelf<PelioKind>& OskaResourceManager::shelf<PelioKind>() {
    return pelio_;
}

void OskaResourceManager::loadDapoResources(std::int64_t sectorId, bool forceUpdate,
                                            LoadCompletion completion) {
    load<DapoKind>(sectorId, forceUpdate, std::move(completion));
}

void OskaResourceManager::loadPelioResources(std::int64_t sectorId, bool forceUpdate,
                                             LoadCompletion completion) {
    load<PelioKind>(sectorId, forceUpdate, std::move(completion));
}

void OskaResourceManager::loadDapoBundle(std::int64_t sectorId, bool forceUpdate,
                                         FetchCompletion completion) {
    fetch<DapoKind>(sectorId, forceUpdate, std::move(completion));
}

void OskaResourceManager::loadPelioBundle(std::int64_t sectorId, bool forceUpdate,
                                          FetchCompletion completion) {
    fetch<PelioKind>(sectorId, forceUpdate, std::move(completion));
}

// ---- the fetch step

namespace {

/// What the endpoint's answer comes to, and the lines that say so.
template <class Kind>
std::optional<BundleOutput> fetchedOutput(std::int64_t sectorId, int status, std::string_view text,
                                          std::optional<BundleOutput> fallback) {
    const auto tag = kindOperation<Kind>("Bundle");
    if (status != 200) {
        RESOURCE_LOG.error(tag, "failed to fetch BundleOutput", {{"sectorId", sectorId}, {"status", status}});
        if (fallback) {
            RESOURCE_LOG.warn(tag, "use cached BundleOutput because server request failed",
                              {{"sectorId", sectorId}, {"versionId", fallback->version_id}});
        }
        return fallback;
    }
    auto output = decodeJSONString<BundleOutput>(text);
    if (!output) {
        RESOURCE_LOG.error(tag, "failed to decode BundleOutput", {{"sectorId", sectorId}});
        return fallback;
    }
    RESOURCE_LOG.info(tag, "fetched BundleOutput",
                      {{"sectorId", sectorId}, {"versionId", output->version_id}});
    return output;
}

}  // namespace

template <class Kind>
void OskaResourceManager::fetch(std::int64_t sectorId, bool forceUpdate, FetchCompletion completion) {
    auto fallback = shelf<Kind>().outputFor(sectorId);
    if (forceUpdate) fallback.reset();
    network_->getSectorBundle(
        Kind::bundleUrlTemplate(), {.sector_id = sectorId, .operating_system = "iOS"}, forceUpdate,
        [weak = weak_from_this(), queue = mainQueue_, sectorId, fallback = std::move(fallback),
         completion = std::move(completion)](int status, const std::string& text,
                                             const SectorIdOsInput&) mutable {
            const auto self = weak.lock();
            if (!self) {
                RESOURCE_LOG.error(kindOperation<Kind>("Bundle"),
                                   "self is nil before handling BundleOutput response",
                                   {{"sectorId", sectorId}, {"status", status}});
                return queue->async([completion = std::move(completion)] { completion(std::nullopt); });
            }
            self->template deliver<Kind>(fetchedOutput<Kind>(sectorId, status, text, std::move(fallback)),
                                         std::move(completion));
        });
}

template <class Kind>
void OskaResourceManager::deliver(std::optional<BundleOutput> output, FetchCompletion completion) {
    mainQueue_->async(
        [weak = weak_from_this(), output = std::move(output), completion = std::move(completion)] {
            if (const auto self = weak.lock(); self && output)
                self->shelf<Kind>().versionId = output->version_id;
            completion(output);
        });
}

// ---- the load

template <class Kind>
void OskaResourceManager::load(std::int64_t sectorId, bool forceUpdate, LoadCompletion completion) {
    // Shares ownership with the manager: a load that locks it keeps the manager, and so its shelf, alive.
    const std::shared_ptr<ResourceDownloader> downloader(shared_from_this(), &downloader_);
    const auto load = std::make_shared<BundleLoad<Kind>>(downloader, shelf<Kind>(), mainQueue_, sectorId,
                                                         forceUpdate, std::move(completion));
    fetch<Kind>(sectorId, forceUpdate,
                [load](std::optional<BundleOutput> output) { load->decide(std::move(output)); });
}

}  // namespace oska
