#include "oska/tovan/tovan_service_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <latch>
#include <thread>

#include "adapters/virtual/virtual_platform.h"
#include "tests/fakes/fake_navigation_manager.h"

namespace oska {
namespace {

using fakes::FakeNavigationHost;
using fakes::FakeNavigationManager;
using platform::InitErrorCode;
using platform::TovanServiceResult;
using Delegate = std::weak_ptr<platform::NavigationManagerDelegate>;
using testing::_;
using testing::Eq;
using testing::Field;
using testing::HasSubstr;
using testing::InSequence;
using testing::NiceMock;
using testing::Property;
using testing::Ref;
using testing::Return;
using testing::SaveArg;
using testing::StrictMock;

/// Whatever a test does not expect the host to hear fails it.
class TovanService : public testing::Test {
protected:
    explicit TovanService(bool hasFramework = true) {
        auto parts = world_.platform();
        if (hasFramework) {
            parts.makeNavigationManager = [this](const platform::NavigationOptions& options) {
                options_ = options;
                if (!manager_) throw 1;
                return manager_;
            };
        }
        platform::install(std::move(parts));
    }

    std::shared_ptr<TovanServiceManager> create() {
        return TovanServiceManager::create({.id = "demo", .region = "KOREA", .delegate = host_});
    }

    virtual_world::VirtualPlatform world_{{}};
    const TovanServiceResult result_{"as it came"};
    std::shared_ptr<StrictMock<FakeNavigationHost>> host_ =
        std::make_shared<StrictMock<FakeNavigationHost>>();
    std::shared_ptr<FakeNavigationManager> manager_ = std::make_shared<NiceMock<FakeNavigationManager>>();
    platform::NavigationOptions options_;
};

TEST_F(TovanService, CreatesOneNavigationServiceFromUncheckedOptions) {
    const auto service = TovanServiceManager::create({.id = "no id!",
                                                      .region = "MOON",
                                                      .sectorId = -12,
                                                      .debugOption = true,
                                                      .onPremiseBaseURL = " not a url"});
    EXPECT_EQ(options_.id, "no id!");
    EXPECT_EQ(options_.region, "MOON");
    EXPECT_EQ(options_.sectorId, -12);
    EXPECT_TRUE(options_.debugOption);
    EXPECT_EQ(options_.onPremiseBaseURL, " not a url");
    EXPECT_EQ(options_.cloud, "GCP");
    EXPECT_FALSE(options_.uploadOption);
    EXPECT_TRUE(options_.dev);
}

TEST_F(TovanService, InitialisesOnceWhenTheDelegateIsSetSoThatAnAnswerAtOnceReachesTheHost) {
    const InSequence order;
    EXPECT_CALL(*manager_, setDelegate(_));
    EXPECT_CALL(*manager_, initialize()).WillOnce([this] {
        manager_->notify([this](auto& d) { d.onInitSuccess(false, InitErrorCode::UNKNOWN, result_); });
    });
    EXPECT_CALL(*host_, onInitSuccess(false, Eq(InitErrorCode::UNKNOWN), Ref(result_)));
    const auto service = create();
    EXPECT_CALL(*manager_, setDelegate(_));  // at its end
}

TEST_F(TovanService, PassesCallsOnUnchanged) {
    const auto service = create();
    const platform::Point dest{.level_id = 3, .x = 1.5, .y = -2};
    EXPECT_CALL(*manager_, startService(platform::UserMode::VEHICLE));
    EXPECT_CALL(*manager_, setNaviDestination(Ref(dest), true));
    EXPECT_CALL(*manager_, setNaviDestination(Ref(dest), false));
    service->startService(platform::UserMode::VEHICLE);
    service->setNaviDestination(dest, true);
    service->setNaviDestination(dest, false);

    EXPECT_CALL(*manager_, getBuildingName(7)).WillOnce(Return("Hall"));
    EXPECT_CALL(*manager_, getBuildingId("Hall")).WillOnce(Return(7));
    EXPECT_CALL(*manager_, getLevelName(9)).WillOnce(Return(std::nullopt));
    EXPECT_CALL(*manager_, getLevelId(12, "Hall", "B1")).WillOnce(Return(9));
    EXPECT_CALL(*manager_, getScaleOffset(12, "Hall", "B1"))
        .WillOnce(Return(std::vector{1.0F, -0.5F}))
        .WillOnce(Return(std::nullopt));
    EXPECT_EQ(service->getBuildingName(7), "Hall");
    EXPECT_EQ(service->getBuildingId("Hall"), 7);
    EXPECT_EQ(service->getLevelName(9), std::nullopt);
    EXPECT_EQ(service->getLevelId(12, "Hall", "B1"), 9);
    EXPECT_EQ(service->getScaleOffset(12, "Hall", "B1"), (std::vector{1.0F, -0.5F}));
    EXPECT_EQ(service->getScaleOffset(12, "Hall", "B1"), std::nullopt);
}

TEST_F(TovanService, PassesCompletionsOnUnchanged) {
    const auto service = create();
    const platform::RoutingStart start{};
    const platform::Point end{};
    const std::vector<platform::Point> waypoints{{}, {}};
    for (const bool isVehicle : {true, false}) {
        platform::NavigationManager::RoutingCompletion routed;
        EXPECT_CALL(*manager_, requestRouting(Ref(start), Ref(end), Ref(waypoints), isVehicle, _))
            .WillOnce(SaveArg<4>(&routed));
        const std::optional<platform::RoutingResult> found{{.distance = 4, .time = 2}};
        const std::vector<platform::NavigationLevelRoute> routes(2);
        int calls = 0;
        service->requestRouting(start, end, waypoints, isVehicle,
                                [&](const auto& gotResult, const auto& gotRoutes, auto reason) {
                                    ++calls;
                                    EXPECT_EQ(&gotResult, &found);
                                    EXPECT_EQ(&gotRoutes, &routes);
                                    EXPECT_EQ(reason, platform::NavigationRouteFailureReason::UNKNOWN);
                                });
        EXPECT_EQ(calls, 0);
        routed(found, routes, platform::NavigationRouteFailureReason::UNKNOWN);
        EXPECT_EQ(calls, 1);
    }

    EXPECT_CALL(*manager_, stopService(_)).Times(2).WillRepeatedly([this](auto completion) {
        completion(true, "stopped", result_);
    });
    std::string text;
    service->stopService([&](bool success, const std::string& words, const TovanServiceResult& result) {
        text = words;
        EXPECT_TRUE(success);
        EXPECT_EQ(&result, &result_);
    });
    EXPECT_EQ(text, "stopped");
}

TEST_F(TovanService, RelaysEveryNotificationButOne) {
    const auto service = create();
    const platform::TovanResult position;
    const std::string report = "report";
    const std::vector<platform::NavigationRouteEntry> route{{"Hall", "B1", 0.1F, -2.0F}};
    const std::vector<std::vector<double>> waypoints{{0.1, 2}, {}};
    EXPECT_CALL(*host_, onInitSuccess(true, Eq(std::nullopt), Ref(result_)));
    EXPECT_CALL(*host_, onTovanSuccess(false, Eq(platform::TovanErrorCode::UNKNOWN), Ref(result_)));
    EXPECT_CALL(*host_, onTovanResult(Ref(position)));
    EXPECT_CALL(*host_, onTovanReport(platform::TovanServiceCode{77}, Ref(report)));
    EXPECT_CALL(*host_, isTovanInOutStateChanged(platform::InOutState::OUTDOOR));
    EXPECT_CALL(*host_, isUserArrived());
    EXPECT_CALL(*host_, isNavigationRouteChanged(Ref(route)));
    EXPECT_CALL(*host_, isNavigationRouteFailed(platform::NavigationRouteFailureReason{5}));
    EXPECT_CALL(*host_, isUserGuidanceOut());
    EXPECT_CALL(*host_, isWaypointChanged(Ref(waypoints)));

    EXPECT_TRUE(manager_->notify([&](auto& d) {
        d.onInitSuccess(true, std::nullopt, result_);
        d.onTovanSuccess(false, platform::TovanErrorCode::UNKNOWN, result_);
        d.onTovanResult(position);
        d.onTovanReport(platform::TovanServiceCode{77}, report);
        d.isTovanInOutStateChanged(platform::InOutState::OUTDOOR);
        d.isUserArrived();
        d.isNavigationRouteChanged(route);
        d.isNavigationRouteFailed(platform::NavigationRouteFailureReason{5});
        d.isUserGuidanceOut();
        d.isWaypointChanged(waypoints);
        d.onBuildingLevelChangeStateChanged(platform::BuildingLevelChangeState::UNKNOWN, "a", "b", "c", "d",
                                            1);
    }));
}

TEST_F(TovanService, TellsTheDelegateOfTheMomentAndKeepsNoneAlive) {
    const auto service = create();
    const auto arrive = [](auto& d) { d.isUserArrived(); };
    const auto second = std::make_shared<StrictMock<FakeNavigationHost>>();
    service->setDelegate(second);
    EXPECT_EQ(service->delegate(), second);
    EXPECT_CALL(*second, isUserArrived());
    manager_->notify(arrive);

    service->setDelegate(host_);
    host_.reset();
    EXPECT_EQ(service->delegate(), nullptr);
    EXPECT_TRUE(manager_->notify(arrive));
}

TEST_F(TovanService, ItsEndStopsTheNavigationServiceAndNothingReachesTheHost) {
    auto service = create();
    platform::NavigationManager::StopCompletion stopped;
    {
        const InSequence order;
        EXPECT_CALL(*manager_, setDelegate(Property(&Delegate::expired, true)));
        EXPECT_CALL(*manager_, stopService(_)).WillOnce(SaveArg<0>(&stopped));
    }
    service.reset();
    stopped(true, "stopped", result_);
    EXPECT_FALSE(manager_->notify([](auto& d) { d.isUserArrived(); }));
    EXPECT_EQ(manager_.use_count(), 1);
}

TEST_F(TovanService, TheLastReferenceMayGoInsideANotification) {
    auto service = create();
    EXPECT_CALL(*host_, isUserArrived()).WillOnce([&] { service.reset(); });
    EXPECT_CALL(*manager_, stopService(_)).WillOnce(testing::Throw(1));
    manager_->notify([](auto& d) { d.isUserArrived(); });
    EXPECT_FALSE(manager_->notify([](auto& d) { d.isUserArrived(); }));
}

TEST_F(TovanService, MayChangeItsDelegateAndEndWhileAnotherThreadNotifies) {
    const auto countDownOnce = [](FakeNavigationHost& host, std::latch& heard) {
        EXPECT_CALL(host, isUserArrived())
            .WillOnce([&heard] { heard.count_down(); })
            .WillRepeatedly(Return());
    };
    for (int round = 0; round < 100; ++round) {
        manager_ = std::make_shared<NiceMock<FakeNavigationManager>>();
        EXPECT_CALL(*manager_, stopService(_));
        const auto first = std::make_shared<FakeNavigationHost>();
        const auto second = std::make_shared<FakeNavigationHost>();
        std::latch firstHeard{1};
        std::latch secondHeard{1};
        countDownOnce(*first, firstHeard);
        countDownOnce(*second, secondHeard);
        auto service = TovanServiceManager::create({.id = "demo", .region = "KOREA", .delegate = first});
        std::thread notifier([manager = manager_] {
            while (manager->notify([](auto& d) { d.isUserArrived(); })) {
            }
        });
        firstHeard.wait();
        service->setDelegate(second);
        secondHeard.wait();
        service.reset();
        notifier.join();
    }
}

// ---- no navigation framework

auto namesTheFramework() { return Field(&TovanServiceResult::message, HasSubstr("QuenloTovan is missing")); }

TEST_F(TovanService, AFactoryThatThrowsCountsAsNoFramework) {
    manager_.reset();
    EXPECT_CALL(*host_, onTovanSuccess(false, _, namesTheFramework()));
    create()->startService(platform::UserMode::PEDESTRIAN);
}

class TovanServiceWithoutFramework : public TovanService {
protected:
    TovanServiceWithoutFramework() : TovanService(false) {}
};

TEST_F(TovanServiceWithoutFramework, InitialisationAndStartFailInWordsThatNameIt) {
    const auto service = TovanServiceManager::create({.id = "demo", .region = "KOREA"});
    service->setDelegate(host_);
    EXPECT_CALL(*host_, onInitSuccess(false, Eq(InitErrorCode::UNKNOWN), namesTheFramework()));
    world_.time().runDue();
    EXPECT_CALL(*host_, onTovanSuccess(false, Eq(platform::TovanErrorCode::UNKNOWN), namesTheFramework()));
    service->startService(platform::UserMode::PEDESTRIAN);
}

TEST_F(TovanServiceWithoutFramework, CompletionsFailAndGettersAnswerNone) {
    const auto service = create();
    int completed = 0;
    service->stopService([&](bool success, const std::string& text, const TovanServiceResult& result) {
        ++completed;
        EXPECT_FALSE(success);
        EXPECT_THAT(text, HasSubstr("QuenloTovan is missing"));
        EXPECT_THAT(result, namesTheFramework());
    });
    service->requestRouting({}, {}, {}, true, [&](const auto& found, const auto& routes, auto reason) {
        ++completed;
        EXPECT_FALSE(found);
        EXPECT_TRUE(routes.empty());
        EXPECT_TRUE(reason);
    });
    EXPECT_EQ(completed, 2);
    EXPECT_CALL(*host_, isNavigationRouteFailed(_));
    service->setNaviDestination({}, false);

    EXPECT_FALSE(service->getBuildingName(1) || service->getBuildingId("") || service->getLevelName(1) ||
                 service->getLevelId(1, "", "") || service->getScaleOffset(1, "", ""));
}

TEST_F(TovanServiceWithoutFramework, AnAdapterThatIsGoneIsNotReportedOn) {
    create().reset();
    world_.time().runDue();
}

}  // namespace
}  // namespace oska
