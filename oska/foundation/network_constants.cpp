#include "oska/foundation/network_constants.h"

#include <mutex>

#include "oska/text/text.h"

namespace oska {
namespace {

constexpr std::string_view DAPO_SERVICE_DOMAIN = ".dapo.quenlo.com";
constexpr std::string_view TOVAN_SERVICE_DOMAIN = ".tovan.quenlo.com";
constexpr std::string_view API_VERSION = "2026-04-27";
constexpr std::string_view SECTOR_BUNDLE = "/sectors/{pk}/bundle";
constexpr std::string_view INITIAL_BASE_URL = "http://localhost:5050";
constexpr std::string_view KOREA_PREFIX = "ap-northeast-2.";
constexpr std::string_view CANADA_PREFIX = "ca-central-1.";

/// One mutex for all endpoints: they are set at initialisation and read on network threads.
struct Endpoints {
    std::mutex mutex;
    std::string_view regionPrefix = KOREA_PREFIX;
    std::string onPremiseBaseUrl{INITIAL_BASE_URL};
    bool onPremiseEnabled = false;
};

Endpoints& endpoints() {
    static auto* state = new Endpoints;  // outlives every thread that may still ask
    return *state;
}

std::string cloudBundleUrl(std::string_view domain) {
    auto& state = endpoints();
    const std::lock_guard lock(state.mutex);
    return std::string("https://")
        .append(state.regionPrefix)
        .append("user")
        .append(domain)
        .append("/")
        .append(API_VERSION)
        .append(SECTOR_BUNDLE);
}

}  // namespace

std::string_view rawValue(OskaRegion region) { return region == OskaRegion::KOREA ? "KOREA" : "CANADA"; }
std::string_view rawValue(OskaService service) { return service == OskaService::dapo ? "dapo" : "pelio"; }

std::optional<OskaRegion> oskaRegion(std::string_view text) {
    for (const auto region : {OskaRegion::KOREA, OskaRegion::CANADA}) {
        if (rawValue(region) == text) return region;
    }
    return std::nullopt;
}

void OskaNetworkConstants::setServerURL(std::string_view region) {
    auto& state = endpoints();
    const std::lock_guard lock(state.mutex);
    state.regionPrefix = oskaRegion(region) == OskaRegion::CANADA ? CANADA_PREFIX : KOREA_PREFIX;
}

std::string OskaNetworkConstants::getUserDapoURL() { return cloudBundleUrl(DAPO_SERVICE_DOMAIN); }
std::string OskaNetworkConstants::getUserPelioURL() { return cloudBundleUrl(TOVAN_SERVICE_DOMAIN) + "/lite"; }
std::string OskaNetworkConstants::getUserTovanURL() { return cloudBundleUrl(TOVAN_SERVICE_DOMAIN); }

bool OskaOnPremiseNetworkConstants::isEnabled() {
    auto& state = endpoints();
    const std::lock_guard lock(state.mutex);
    return state.onPremiseEnabled;
}

void OskaOnPremiseNetworkConstants::setBaseURL(std::string_view url) {
    auto base = text::trimmed(url);
    if (base.empty()) return;
    while (base.ends_with('/')) base.remove_suffix(1);
    auto& state = endpoints();
    const std::lock_guard lock(state.mutex);
    state.onPremiseBaseUrl = base;
    state.onPremiseEnabled = true;
}

std::string OskaOnPremiseNetworkConstants::baseURL() {
    auto& state = endpoints();
    const std::lock_guard lock(state.mutex);
    return state.onPremiseBaseUrl;
}

std::string OskaOnPremiseNetworkConstants::serviceBaseURL(OskaService service) {
    return baseURL().append("/v2/").append(rawValue(service));
}

std::string OskaOnPremiseNetworkConstants::getUserDapoURL() {
    return serviceBaseURL(OskaService::dapo).append(SECTOR_BUNDLE);
}

std::string OskaOnPremiseNetworkConstants::getUserPelioURL() {
    return serviceBaseURL(OskaService::pelio).append(SECTOR_BUNDLE);
}

void OskaOnPremiseNetworkConstants::resetOnPremiseBaseURLIfDisabled() {
    auto& state = endpoints();
    const std::lock_guard lock(state.mutex);
    if (!state.onPremiseEnabled) state.onPremiseBaseUrl = INITIAL_BASE_URL;
}

}  // namespace oska
