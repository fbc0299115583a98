#include "tools/oska/hosts/virtual_site.h"

#include <utility>

#include "oska/json/json.h"
#include "oska/platform/quenlo_tovan.h"
#include "oska/resources/bundle.h"

namespace oska::tool {
namespace {

constexpr auto BUNDLE_PATH = "/bundle.json";

// One version for the whole run: initialising again finds the bundle unchanged, unless it forces the update.
std::string descriptor() {
    const BundleOutput output{.url = "http://localhost" + std::string(BUNDLE_PATH), .version_id = "1"};
    return *json::encode(output);
}

// Behind scheme and authority, which a recording endpoint always has.
std::string pathOf(const Url& url) {
    const auto& text = url.absoluteString();
    return text.substr(text.find('/', text.find("//") + 2));
}

}  // namespace

VirtualSite::VirtualSite(std::string bundle, platform::WallTime start) : world_(start) {
    platform::install(world_.platform());
    auto& server = world_.server();
    server.keepRequests(false);
    server.onPath(BUNDLE_PATH, virtual_world::always(virtual_world::reply(200, std::move(bundle))));
    server.onRequest(virtual_world::always(virtual_world::reply(200, descriptor())));
}

void VirtualSite::onUpload(std::function<void(const std::vector<platform::ReceivedForce>&)> receive) {
    const auto recordings = Url::parse(platform::TovanNetworkConstants::getRecRfdURL());
    world_.server().onPath(pathOf(*recordings),
                           [receive = std::move(receive)](const platform::HttpRequest& request) {
                               using Batch = std::vector<platform::ReceivedForce>;
                               const auto batch = json::decode<Batch>(request.body.value_or(""));
                               if (!batch) return virtual_world::reply(400);
                               receive(*batch);
                               return virtual_world::reply(200);
                           });
}

}  // namespace oska::tool
