#include "oska/platform/quenlo_resource.h"

#include <mutex>

namespace oska::platform {
namespace {

struct GuardedServer {
    std::mutex mutex;
    QuenloResourceNetworkConstants::Server value;
};

GuardedServer& guardedServer() {
    static auto* server = new GuardedServer;  // outlives every thread that may still read it
    return *server;
}

}  // namespace

std::string_view rawValue(ResourceCloud) { return "AWS"; }
std::string_view rawValue(ResourceRegion) { return "KOREA"; }

void QuenloResourceNetworkConstants::setServerURL(std::string_view cloud, std::string_view region, bool dev) {
    auto& server = guardedServer();
    const std::lock_guard lock(server.mutex);
    server.value = {std::string(cloud), std::string(region), dev};
}

QuenloResourceNetworkConstants::Server QuenloResourceNetworkConstants::server() {
    auto& server = guardedServer();
    const std::lock_guard lock(server.mutex);
    return server.value;
}

}  // namespace oska::platform
