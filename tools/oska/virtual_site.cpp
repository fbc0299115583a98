#include "tools/oska/virtual_site.h"

#include <utility>

#include "oska/platform/json.h"
#include "oska/resources/bundle.h"

namespace oska::tool {
namespace {

constexpr auto BUNDLE_PATH = "/bundle.json";

// One version for the whole run: initialising again finds the bundle unchanged, unless it forces the update.
std::string descriptor() {
    const BundleOutput output{.url = "http://localhost" + std::string(BUNDLE_PATH), .version_id = "1"};
    return *platform::json::encode(output);
}

}  // namespace

VirtualSite::VirtualSite(std::string bundle, platform::WallTime start) : world_(start) {
    platform::install(world_.platform());
    auto& server = world_.server();
    server.keepRequests(false);
    server.onPath(BUNDLE_PATH, virtual_world::always(virtual_world::reply(200, std::move(bundle))));
    server.onRequest(virtual_world::always(virtual_world::reply(200, descriptor())));
}

}  // namespace oska::tool
