// The process-wide state of the maker's frameworks, one mutex each: hosts set it, network threads read it.
#include <mutex>

#include "oska/platform/quenlo_common.h"
#include "oska/platform/quenlo_resource.h"
#include "oska/platform/quenlo_tovan.h"
#include "oska/text/text.h"

namespace oska::platform {
namespace {

template <class Value>
struct Guarded {
    std::mutex mutex;
    Value value;
};

Guarded<QuenloResourceNetworkConstants::Server>& resourceServer() {
    static auto* server = new Guarded<QuenloResourceNetworkConstants::Server>;
    return *server;
}

Guarded<std::string>& tovanBaseUrl() {
    static auto* url = new Guarded<std::string>{{}, "http://localhost:5050"};
    return *url;
}

}  // namespace

TovanReplayer& TovanReplayer::shared() {
    static TovanReplayer replayer;
    return replayer;
}

std::string_view rawValue(ResourceCloud) { return "AWS"; }
std::string_view rawValue(ResourceRegion) { return "KOREA"; }

void QuenloResourceNetworkConstants::setServerURL(std::string_view cloud, std::string_view region, bool dev) {
    auto& server = resourceServer();
    const std::lock_guard lock(server.mutex);
    server.value = {std::string(cloud), std::string(region), dev};
}

QuenloResourceNetworkConstants::Server QuenloResourceNetworkConstants::server() {
    auto& server = resourceServer();
    const std::lock_guard lock(server.mutex);
    return server.value;
}

void TovanNetworkConstants::setOnPremise(std::string_view baseURL) {
    auto base = text::trimmed(baseURL);
    while (base.ends_with('/')) base.remove_suffix(1);
    if (base.empty()) return;
    auto& url = tovanBaseUrl();
    const std::lock_guard lock(url.mutex);
    url.value = base;
}

std::string TovanNetworkConstants::getRecRfdURL() {
    auto& url = tovanBaseUrl();
    const std::lock_guard lock(url.mutex);
    return url.value + "/v2/recordings/rfds";
}

}  // namespace oska::platform
