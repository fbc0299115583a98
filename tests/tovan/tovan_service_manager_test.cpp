#include "oska/tovan/tovan_service_manager.h"

#include <gtest/gtest.h>

#include <thread>

#include "adapters/virtual/virtual_platform.h"
#include "tests/tovan/recording_navigation.h"

namespace oska {
namespace {

using fakes::line;
using fakes::Lines;
using fakes::RecordingNavigation;
using fakes::RecordingNavigationHost;
using platform::TovanServiceResult;

class TovanService : public testing::Test {
protected:
    TovanService() {
        auto parts = world_.platform();
        parts.makeNavigationManager = [this](const platform::NavigationOptions& o) {
            calls_.add("make", o.id, o.cloud, o.region, o.sectorId, o.debugOption, o.uploadOption, o.dev,
                       o.onPremiseBaseURL.value_or("nil"));
            if (!manager_) throw 1;
            return manager_;
        };
        platform::install(std::move(parts));
    }

    std::shared_ptr<TovanServiceManager> create() {
        auto service = TovanServiceManager::create({.id = "demo", .region = "KOREA", .delegate = host_});
        calls_.take();
        host_->record.take();
        return service;
    }
    bool notifyArrival() {
        return manager_->notify([](auto& delegate) { delegate.isUserArrived(); });
    }
    static void awaitArrival(RecordingNavigationHost& host) {
        while (host.record.take().empty()) std::this_thread::yield();
    }

    virtual_world::VirtualPlatform world_{{}};
    fakes::Record calls_;  // to the navigation service
    std::shared_ptr<RecordingNavigationHost> host_ = std::make_shared<RecordingNavigationHost>();
    std::shared_ptr<RecordingNavigation> manager_ = std::make_shared<RecordingNavigation>(calls_);
};

TEST_F(TovanService, MakesOneNavigationServiceFromUncheckedOptionsAndThenInitialisesIt) {
    const auto service = TovanServiceManager::create({.id = "no id!",
                                                      .region = "MOON",
                                                      .sectorId = -12,
                                                      .debugOption = true,
                                                      .onPremiseBaseURL = " not a url",
                                                      .delegate = host_});
    EXPECT_EQ(calls_.take(), (Lines{"make no id! GCP MOON -12 true false true  not a url", "setDelegate some",
                                    "initialize"}));
    EXPECT_EQ(host_->record.take(), Lines{"init true nil at once"});
}

TEST_F(TovanService, PassesCallsAndCompletionsOnUnchanged) {
    const auto service = create();
    Lines completed;
    service->startService(platform::UserMode::VEHICLE);
    EXPECT_EQ(service->getBuildingName(7), "name of building 7");
    EXPECT_EQ(service->getBuildingId("Hall"), 4);
    EXPECT_EQ(service->getLevelName(9), "name of level 9");
    EXPECT_EQ(service->getLevelId(12, "Hall", "B1"), 8);
    EXPECT_EQ(service->getScaleOffset(12, "Hall", "B1"), (std::vector{1.5F, -2.0F}));
    for (const bool isVehicle : {true, false}) {
        service->setNaviDestination({3, 1.5, -2}, isVehicle);
        service->requestRouting(
            {{1, 2, 3}, 90}, {4, 5, 6}, {{7, 8, 9}}, isVehicle,
            [&](const auto& found, const auto& routes, auto reason) {
                completed.push_back(line(found->time, routes.size(), fakes::text(reason)));
            });
    }
    service->stopService([&](bool success, const std::string& text, const TovanServiceResult& result) {
        completed.push_back(line(success, text, result.message));
    });
    EXPECT_EQ(
        calls_.take(),
        (Lines{line("start", static_cast<int>(platform::UserMode::VEHICLE)), "levelId 12 Hall B1",
               "scaleOffset 12 Hall B1", "destination 3 1.5 -2 true", "routing 1 2 3 90 4 5 6 7 8 9 true",
               "destination 3 1.5 -2 false", "routing 1 2 3 90 4 5 6 7 8 9 false", "stop"}));
    EXPECT_TRUE(completed.empty()) << "it is the navigation service that completes";
    manager_->routed({{.distance = 4, .time = 2}}, {{}, {}}, platform::NavigationRouteFailureReason{5});
    manager_->stopped(true, "stopped", {"as it came"});
    EXPECT_EQ(completed, (Lines{"2 2 5", "true stopped as it came"}));
}

TEST_F(TovanService, RelaysEveryNotificationButOne) {
    const auto service = create();
    manager_->notify([](platform::NavigationManagerDelegate& d) {
        d.onInitSuccess(false, platform::InitErrorCode::UNKNOWN, {"a"});
        d.onTovanSuccess(false, platform::TovanErrorCode{4}, {"c"});
        d.onTovanResult({1, "Hall", "B1", 2, 3});
        d.onTovanReport(platform::TovanServiceCode{77}, "d");
        d.isTovanInOutStateChanged(platform::InOutState::OUTDOOR);
        d.isUserArrived();
        d.isNavigationRouteChanged({{"Hall", "B1", 0.5F, -2.0F}});
        d.isNavigationRouteFailed(platform::NavigationRouteFailureReason{5});
        d.isUserGuidanceOut();
        d.isWaypointChanged({{0.5, 2}, {}});
        d.onBuildingLevelChangeStateChanged({}, "a", "b", "c", "d", 1);
    });
    EXPECT_EQ(host_->record.take(),
              (Lines{"init false -1 a", "start false 4 c", "result 1 Hall B1 2 3", "report 77 d", "inOut 1",
                     "arrived", "route 1", "failed 5", "guidanceOut", "waypoints 2"}));
}

TEST_F(TovanService, NotifiesTheDelegateThatIsSetWhichItDoesNotKeepAndNoneAfterItsEnd) {
    auto service = create();
    service->setDelegate(std::make_shared<RecordingNavigationHost>());
    EXPECT_EQ(service->delegate(), nullptr);
    EXPECT_TRUE(notifyArrival());
    service->setDelegate(host_);
    EXPECT_EQ(service->delegate(), host_);
    host_->reaction = [&] { service.reset(); };  // inside a notification
    notifyArrival();
    EXPECT_EQ(calls_.take(), (Lines{"setDelegate nil", "stop"}));
    manager_->stopped(true, "stopped", {});
    EXPECT_FALSE(notifyArrival());
    EXPECT_EQ(host_->record.take(), Lines{"arrived"});
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
    Lines completed;
    world_.time().runDue();
    service->startService(platform::UserMode::PEDESTRIAN);
    service->setNaviDestination({}, false);
    EXPECT_EQ(host_->record.take(),
              (Lines{"init false -1 " + missing, "start false -1 " + missing, "failed -1"}));
    service->stopService([&](bool success, const std::string& text, const TovanServiceResult& result) {
        completed.push_back(line(success, text == missing, result.message == missing));
    });
    service->requestRouting({}, {}, {}, true, [&](const auto& found, const auto& routes, auto reason) {
        completed.push_back(line(found.has_value(), routes.empty(), fakes::text(reason)));
    });
    EXPECT_EQ(completed, (Lines{"false true true", "false true -1"}));
    EXPECT_FALSE(service->getBuildingName(1) || service->getBuildingId("") || service->getLevelName(1) ||
                 service->getLevelId(1, "", "") || service->getScaleOffset(1, "", ""));
    create().reset();
    world_.time().runDue();
    EXPECT_TRUE(host_->record.take().empty()) << "nothing is reported for a service that has gone";
}

}  // namespace
}  // namespace oska
