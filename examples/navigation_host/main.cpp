// A host of the navigation service: it installs a platform, creates the service, starts it and stops it, and
// prints each callback.
//
// The platform is the one in memory, so the example needs no network and no Bluetooth. It has no navigation
// framework, so each call fails with a message that says so. The platform of a phone sets
// `makeNavigationManager`.
#include <cstdio>
#include <memory>

#include "adapters/virtual/virtual_platform.h"
#include "oska/tovan/tovan_service_manager.h"

namespace {

using namespace oska;

void say(const char* what, bool success, const std::string& words) {
    std::printf("%s: %s%s%s\n", what, success ? "success" : "failure", words.empty() ? "" : ": ",
                words.c_str());
}

class Host : public platform::NavigationManagerDelegate {
public:
    void onInitSuccess(bool success, std::optional<platform::InitErrorCode>,
                       const platform::TovanServiceResult& result) override {
        say("initialisation", success, result.message);
    }
    void onTovanSuccess(bool success, std::optional<platform::TovanErrorCode>,
                        const platform::TovanServiceResult& result) override {
        say("start", success, result.message);
    }
    void onTovanResult(const platform::TovanResult& result) override {
        std::printf("position: %s %s (%g, %g)\n", result.building_name.c_str(), result.level_name.c_str(),
                    result.x, result.y);
    }
    void onTovanReport(platform::TovanServiceCode, const std::string& text) override {
        std::printf("report: %s\n", text.c_str());
    }
    void isTovanInOutStateChanged(platform::InOutState state) override {
        std::printf("in or out: %d\n", static_cast<int>(state));
    }
    void isUserArrived() override { std::puts("arrived"); }
    void isNavigationRouteChanged(const std::vector<platform::NavigationRouteEntry>& route) override {
        std::printf("new route: %zu entries\n", route.size());
    }
    void isNavigationRouteFailed(platform::NavigationRouteFailureReason reason) override {
        std::printf("no route: %d\n", static_cast<int>(reason));
    }
    void isUserGuidanceOut() override { std::puts("off the route"); }
    void isWaypointChanged(const std::vector<std::vector<double>>& waypoints) override {
        std::printf("waypoints: %zu\n", waypoints.size());
    }
};

}  // namespace

int main() {
    virtual_world::VirtualPlatform world({});
    platform::install(world.platform());

    // The delegate is one of the options, because onInitSuccess may come inside `create`.
    const auto host = std::make_shared<Host>();
    const auto service =
        TovanServiceManager::create({.id = "demo", .region = "KOREA", .sectorId = 12, .delegate = host});
    world.time().runDue();  // an application does this in its main loop

    service->startService(platform::UserMode::PEDESTRIAN);
    std::printf("building 1: %s\n", service->getBuildingName(1).value_or("none").c_str());
    service->setNaviDestination({.level_id = 1, .x = 10, .y = 20}, false);
    service->stopService([](bool success, const std::string& text, const platform::TovanServiceResult&) {
        say("stop", success, text);
    });
}
