#include "oska/tovan/tovan_service_manager.h"

#include <gtest/gtest.h>

#include <mutex>
#include <sstream>
#include <thread>

#include "adapters/virtual/virtual_platform.h"
#include "tests/fakes/recording_hosts.h"

namespace oska {
namespace {

using namespace platform;
using fakes::Events;

template <class... Values>
std::string line(const Values&... values) {
    std::ostringstream text;
    text << std::boolalpha;
    const char* blank = "";
    ((text << std::exchange(blank, " ") << values), ...);
    return text.str();
}

std::string text(const Point& point) { return line(point.level_id, point.x, point.y); }

template <class Code>
std::string text(std::optional<Code> code) {
    return code ? line(static_cast<int>(*code)) : "nil";
}

/// A navigation service that records its calls.
class RecordingNavigation : public NavigationManager, public fakes::HostEvents {
public:
    /// Returns whether there was a delegate to notify. Threads: any.
    template <class Notify>
    bool notify(Notify notify) {
        std::unique_lock lock(mutex_);
        const auto delegate = delegate_.lock();
        lock.unlock();
        if (delegate) notify(*delegate);
        return delegate != nullptr;
    }

    void setDelegate(std::weak_ptr<NavigationManagerDelegate> delegate) override {
        hear(line("setDelegate", delegate.expired() ? "nil" : "some"));
        const std::lock_guard lock(mutex_);
        delegate_ = std::move(delegate);
    }
    void initialize() override {
        hear("initialize");
        notify([](auto& host) { host.onInitSuccess(true, std::nullopt, {"at once"}); });
    }
    void startService(UserMode mode) override { hear(line("start", static_cast<int>(mode))); }
    void stopService(StopCompletion completion) override {
        hear("stop");
        if (throwsInStop) throw 1;
        stopped = std::move(completion);
    }
    std::optional<std::string> getBuildingName(std::int64_t id) override {
        return line("name of building", id);
    }
    std::optional<std::int64_t> getBuildingId(const std::string& name) override { return std::ssize(name); }
    std::optional<std::string> getLevelName(std::int64_t id) override { return line("name of level", id); }
    std::optional<std::int64_t> getLevelId(std::int64_t sector, const std::string& building,
                                           const std::string& level) override {
        return 100 * sector + 10 * std::ssize(building) + std::ssize(level);
    }
    std::optional<std::vector<float>> getScaleOffset(std::int64_t sector, const std::string& building,
                                                     const std::string& level) override {
        return {{static_cast<float>(sector), static_cast<float>(building.size() - level.size())}};
    }
    void setNaviDestination(const Point& dest, bool isVehicle) override {
        hear(line("destination", text(dest), isVehicle));
    }
    void requestRouting(const RoutingStart& start, const Point& end, const std::vector<Point>& waypoints,
                        bool isVehicle, RoutingCompletion completion) override {
        hear(line("routing", text(start.point), start.heading, text(end), text(waypoints.at(0)), isVehicle));
        routed = std::move(completion);
    }

    bool throwsInStop = false;
    StopCompletion stopped;
    RoutingCompletion routed;

private:
    std::mutex mutex_;
    std::weak_ptr<NavigationManagerDelegate> delegate_;
};

/// A host that records what it is notified of.
class RecordingNavigationHost : public NavigationManagerDelegate, public fakes::HostEvents {
public:
    void onInitSuccess(bool success, std::optional<InitErrorCode> code,
                       const TovanServiceResult& result) override {
        hear(line("init", success, text(code), result.message));
    }
    void onTovanSuccess(bool success, std::optional<TovanErrorCode> code,
                        const TovanServiceResult& result) override {
        hear(line("start", success, text(code), result.message));
    }
    void onTovanResult(const TovanResult& result) override {
        hear(line("result", result.mobile_time, result.building_name, result.level_name, result.x, result.y));
    }
    void onTovanReport(TovanServiceCode code, const std::string& report) override {
        hear(line("report", static_cast<int>(code), report));
    }
    void isTovanInOutStateChanged(InOutState state) override { hear(line("inOut", static_cast<int>(state))); }
    void isUserArrived() override { hear("arrived"); }
    void isNavigationRouteChanged(const std::vector<NavigationRouteEntry>& route) override {
        hear(line("route", route.size()));
    }
    void isNavigationRouteFailed(NavigationRouteFailureReason reason) override {
        hear(line("failed", static_cast<int>(reason)));
    }
    void isUserGuidanceOut() override { hear("guidanceOut"); }
    void isWaypointChanged(const std::vector<std::vector<double>>& waypoints) override {
        hear(line("waypoints", waypoints.size()));
    }
    void onBuildingLevelChangeStateChanged(BuildingLevelChangeState, const std::string&, const std::string&,
                                           const std::string&, const std::string&, std::int64_t) override {
        hear("levelChange");
    }
};

class TovanService : public testing::Test {
protected:
    TovanService() {
        auto parts = world_.platform();
        parts.makeNavigationManager = [this](const NavigationOptions& o) {
            made_.push_back(line("make", o.id, o.cloud, o.region, o.sectorId, o.debugOption, o.uploadOption,
                                 o.dev, o.onPremiseBaseURL.value_or("nil")));
            if (!manager_) throw 1;
            return manager_;
        };
        install(std::move(parts));
    }

    std::shared_ptr<TovanServiceManager> create() {
        auto service = TovanServiceManager::create({.id = "demo", .region = "KOREA", .delegate = host_});
        if (manager_) manager_->take();
        host_->take();
        return service;
    }
    bool notifyArrival() {
        return manager_->notify([](auto& delegate) { delegate.isUserArrived(); });
    }
    static void awaitArrival(RecordingNavigationHost& host) {
        while (host.take().empty()) std::this_thread::yield();
    }

    virtual_world::VirtualPlatform world_{{}};
    Events made_;  // navigation services
    std::shared_ptr<RecordingNavigationHost> host_ = std::make_shared<RecordingNavigationHost>();
    std::shared_ptr<RecordingNavigation> manager_ = std::make_shared<RecordingNavigation>();
};

TEST_F(TovanService, MakesOneNavigationServiceFromUncheckedOptionsAndThenInitialisesIt) {
    const auto service = TovanServiceManager::create({.id = "no id!",
                                                      .region = "MOON",
                                                      .sectorId = -12,
                                                      .debugOption = true,
                                                      .onPremiseBaseURL = " not a url",
                                                      .delegate = host_});
    EXPECT_EQ(made_, Events{"make no id! GCP MOON -12 true false true  not a url"});
    EXPECT_EQ(manager_->take(), (Events{"setDelegate some", "initialize"}));
    EXPECT_EQ(host_->take(), Events{"init true nil at once"});
}

TEST_F(TovanService, PassesCallsAndCompletionsOnUnchanged) {
    const auto service = create();
    Events completed;
    service->startService(UserMode::VEHICLE);
    EXPECT_EQ(service->getBuildingName(7), "name of building 7");
    EXPECT_EQ(service->getBuildingId("Hall"), 4);
    EXPECT_EQ(service->getLevelName(9), "name of level 9");
    EXPECT_EQ(service->getLevelId(12, "Hall", "B1"), 1242);
    EXPECT_EQ(service->getScaleOffset(12, "Hall", "B1"), (std::vector{12.0F, 2.0F}));
    for (const bool isVehicle : {true, false}) {
        service->setNaviDestination({3, 1.5, -2}, isVehicle);
        service->requestRouting({{1, 2, 3}, 90}, {4, 5, 6}, {{7, 8, 9}}, isVehicle,
                                [&](const auto& found, const auto& routes, auto reason) {
                                    completed.push_back(line(found->time, routes.size(), text(reason)));
                                });
    }
    service->stopService([&](bool success, const std::string& text, const TovanServiceResult& result) {
        completed.push_back(line(success, text, result.message));
    });
    EXPECT_EQ(manager_->take(),
              (Events{"start 1", "destination 3 1.5 -2 true", "routing 1 2 3 90 4 5 6 7 8 9 true",
                      "destination 3 1.5 -2 false", "routing 1 2 3 90 4 5 6 7 8 9 false", "stop"}));
    EXPECT_TRUE(completed.empty()) << "it is the navigation service that completes";
    manager_->routed({{.distance = 4, .time = 2}}, {{}, {}}, NavigationRouteFailureReason{5});
    manager_->stopped(true, "stopped", {"as it came"});
    EXPECT_EQ(completed, (Events{"2 2 5", "true stopped as it came"}));
}

TEST_F(TovanService, RelaysEveryNotificationButOne) {
    const auto service = create();
    manager_->notify([](NavigationManagerDelegate& d) {
        d.onInitSuccess(false, InitErrorCode::UNKNOWN, {"a"});
        d.onTovanSuccess(false, TovanErrorCode{4}, {"c"});
        d.onTovanResult({1, "Hall", "B1", 2, 3});
        d.onTovanReport(TovanServiceCode{77}, "d");
        d.isTovanInOutStateChanged(InOutState::OUTDOOR);
        d.isUserArrived();
        d.isNavigationRouteChanged({{"Hall", "B1", 0.5F, -2.0F}});
        d.isNavigationRouteFailed(NavigationRouteFailureReason{5});
        d.isUserGuidanceOut();
        d.isWaypointChanged({{0.5, 2}, {}});
        d.onBuildingLevelChangeStateChanged({}, "a", "b", "c", "d", 1);
    });
    EXPECT_EQ(host_->take(),
              (Events{"init false -1 a", "start false 4 c", "result 1 Hall B1 2 3", "report 77 d", "inOut 1",
                      "arrived", "route 1", "failed 5", "guidanceOut", "waypoints 2"}));
}

TEST_F(TovanService, NotifiesTheDelegateThatIsSetWhichItDoesNotKeepAndNoneAfterItsEnd) {
    auto service = create();
    service->setDelegate(std::make_shared<RecordingNavigationHost>());
    EXPECT_EQ(service->delegate(), nullptr);
    EXPECT_TRUE(notifyArrival());
    service->setDelegate(host_);
    EXPECT_EQ(service->delegate(), host_);
    host_->reaction = [&](const auto&) { service.reset(); };  // inside a notification
    notifyArrival();
    EXPECT_EQ(manager_->take(), (Events{"setDelegate nil", "stop"}));
    manager_->stopped(true, "stopped", {});
    EXPECT_FALSE(notifyArrival());
    EXPECT_EQ(host_->take(), Events{"arrived"});
    EXPECT_EQ(manager_.use_count(), 1);
    manager_->throwsInStop = true;
    create().reset();
}

TEST_F(TovanService, MayChangeItsDelegateAndEndWhileAnotherThreadNotifies) {
    for (int round = 0; round < 100; ++round) {
        const auto second = std::make_shared<RecordingNavigationHost>();
        auto service = create();
        std::thread notifier([this] {
            while (notifyArrival()) continue;
        });
        awaitArrival(*host_);
        service->setDelegate(second);
        awaitArrival(*second);
        service.reset();
        notifier.join();
    }
}

TEST_F(TovanService, FailsWithATextThatNamesTheFrameworkWhenThereIsNone) {
    const std::string missing =
        "The navigation framework QuenloTovan is missing: the installed platform makes no NavigationManager";
    manager_.reset();  // the factory throws
    const auto service = create();
    Events completed;
    world_.time().runDue();
    service->startService(UserMode::PEDESTRIAN);
    service->setNaviDestination({}, false);
    EXPECT_EQ(host_->take(), (Events{"init false -1 " + missing, "start false -1 " + missing, "failed -1"}));
    service->stopService([&](bool success, const std::string& text, const TovanServiceResult& result) {
        completed.push_back(line(success, text == missing, result.message == missing));
    });
    service->requestRouting({}, {}, {}, true, [&](const auto& found, const auto& routes, auto reason) {
        completed.push_back(line(found.has_value(), routes.empty(), text(reason)));
    });
    EXPECT_EQ(completed, (Events{"false true true", "false true -1"}));
    EXPECT_FALSE(service->getBuildingName(1) || service->getBuildingId("") || service->getLevelName(1) ||
                 service->getLevelId(1, "", "") || service->getScaleOffset(1, "", ""));
    create().reset();
    world_.time().runDue();
    EXPECT_TRUE(host_->take().empty()) << "nothing is reported for a service that has gone";
}

}  // namespace
}  // namespace oska
