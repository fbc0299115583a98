#include "oska/platform/quenlo_tovan.h"

#include <mutex>

#include "oska/text/text.h"

namespace oska::platform {
namespace {

struct GuardedBaseUrl {
    std::mutex mutex;
    std::string value = "http://localhost:5050";
};

GuardedBaseUrl& guardedBaseUrl() {
    static auto* url = new GuardedBaseUrl;  // outlives every thread that may still read it
    return *url;
}

}  // namespace

void TovanNetworkConstants::setOnPremise(std::string_view baseURL) {
    auto base = text::trimmed(baseURL);
    while (base.ends_with('/')) base.remove_suffix(1);
    if (base.empty()) return;
    auto& url = guardedBaseUrl();
    const std::lock_guard lock(url.mutex);
    url.value = base;
}

std::string TovanNetworkConstants::getRecRfdURL() {
    auto& url = guardedBaseUrl();
    const std::lock_guard lock(url.mutex);
    return url.value + "/v2/recordings/rfds";
}

}  // namespace oska::platform
