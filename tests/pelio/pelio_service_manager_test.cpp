#include "oska/pelio/pelio_service_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <utility>

#include "oska/foundation/logger.h"
#include "oska/foundation/network_constants.h"
#include "oska/platform/quenlo_resource.h"
#include "tests/fakes/output_capture.h"
#include "tests/fakes/scripted_generator.h"
#include "tests/fakes/site_server.h"

namespace oska {
namespace {

using Events = std::vector<std::string>;

/// Writes down what it hears, on whatever thread, and does what a test asks for inside a callback.
class Host : public PelioServiceManagerDelegate {
public:
    void onInitSuccess(PelioServiceManager& service, bool success,
                       std::optional<PelioInitErrorCode> code) override {
        sender = &service;
        hear(std::string("init ") + (success ? "true" : std::string(caseName(*code))));
    }
    void onPelioSuccess(PelioServiceManager&, bool success, std::optional<PelioErrorCode> code) override {
        hear(std::string("start ") + (success ? "true" : std::string(caseName(*code))));
    }
    void onPelioResult(PelioServiceManager&, const PelioResult& result) override {
        {
            const std::lock_guard lock(mutex_);
            last_ = result;
        }
        hear("result " + std::to_string(result.mobile_time));
    }
    void onPelioMapImageData(PelioServiceManager&, std::int64_t levelId, const PelioMapImage&) override {
        hear("map " + std::to_string(levelId));
    }

    Events take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(events_, {});
    }

    PelioResult last() {
        const std::lock_guard lock(mutex_);
        return last_;
    }

    PelioServiceManager* sender = nullptr;  // of the last onInitSuccess
    std::function<void(const std::string& event)> reaction = [](const auto&) {};

private:
    void hear(const std::string& event) {
        {
            const std::lock_guard lock(mutex_);
            events_.push_back(event);
        }
        reaction(event);
    }

    std::mutex mutex_;
    Events events_;
    PelioResult last_;
};

class PelioService : public testing::Test {
protected:
    PelioService() {
        platform::install(world_.platform());
        platform::TovanReplayer::shared().setReplayMode(true);
        site_.publish("v1", fakes::PELIO_DOCUMENT);
    }

    std::shared_ptr<PelioServiceManager> create(std::string id = "demo") {
        auto service = PelioServiceManager::create({.id = std::move(id), .region = "KOREA", .sectorId = 12});
        service->setDelegate(host_);
        return service;
    }

    std::shared_ptr<PelioServiceManager> ready() {
        auto service = create();
        settle();
        EXPECT_EQ(host_->take(), (Events{"map 10", "init true"}));
        return service;
    }

    std::shared_ptr<PelioServiceManager> running() {
        auto service = ready();
        service->startService();
        EXPECT_EQ(host_->take(), Events{"start true"});
        output_.take();
        return service;
    }

    void settle() { world_.time().advanceBy(std::chrono::minutes(2)); }
    bool hear(std::int64_t time, double strength = -60) {
        return world_.source().send({time, {{"Lobby-A ", strength}}});
    }

    std::string lastLine() {
        const auto lines = output_.take();
        return lines.empty() ? "" : lines.back();
    }

    virtual_world::VirtualPlatform world_{{1'700'000'000'000, 0}};
    fakes::SiteServer site_{world_.server()};
    std::shared_ptr<Host> host_ = std::make_shared<Host>();
    fakes::OutputCapture output_;
};

TEST_F(PelioService, InitialisesStartsAndReportsPositions) {
    const auto service = create();
    EXPECT_TRUE(service->getPelioMapImages().empty());
    settle();
    EXPECT_EQ(host_->take(), (Events{"map 10", "init true"}));
    EXPECT_EQ(lastLine(),
              "[INFO]  [PelioServiceManager] (initialize) : success // id = demo, sectorId = 12, forceUpdate "
              "= false, "
              "wardCount = 1, levelCount = 1");
    EXPECT_EQ(service->getPelioMapImages().size(), 1u);
    EXPECT_EQ(service->getPelioMapImage(10)->building_name, "main");
    EXPECT_FALSE(service->getPelioMapImage(11));

    service->startService();
    EXPECT_EQ(lastLine(),
              "[INFO]  [PelioServiceManager] (startGenerator) : success // id = demo, replayMode = true");
    EXPECT_EQ(world_.source().last()->scanMode, platform::ScanMode::ONLY_WARD_SCAN);
    EXPECT_EQ(world_.source().last()->pressureProvider(), 0.0F);
    hear(7);
    hear(8, -80.6);
    EXPECT_EQ(host_->take(), (Events{"start true", "result 7", "result 8"}));
    EXPECT_EQ(host_->last().x, 60.0);
    EXPECT_EQ(host_->last().y, 30.0);
}

TEST_F(PelioService, StartsLiveWithTheKitsLimits) {
    platform::TovanReplayer::shared().setReplayMode(false);
    const auto service = running();
    const auto options = world_.source().last()->options;
    ASSERT_TRUE(options);
    EXPECT_EQ(options->rfdIntervalMillis, 0.5);
    EXPECT_EQ(options->minRssiThreshold, -100);
    EXPECT_EQ(options->maxRssiThreshold, -40);
}

TEST_F(PelioService, PointsTheEndpointsAtItsRegion) {
    const auto first = PelioServiceManager::create({.id = "demo", .region = "CANADA", .sectorId = 12});
    EXPECT_EQ(platform::QuenloResourceNetworkConstants::server().region, "KOREA")
        << "the shared manager's first use";
    EXPECT_TRUE(OskaNetworkConstants::getUserTovanURL().starts_with("https://ca-central-1."));
    const auto second = PelioServiceManager::create({.id = "demo", .region = "CANADA", .sectorId = 12});
    const auto server = platform::QuenloResourceNetworkConstants::server();
    EXPECT_EQ(server.cloud + server.region, "AWSCANADA");
    EXPECT_FALSE(server.dev);
}

TEST_F(PelioService, RefusesAnInvalidIdWithoutALoad) {
    const auto service = create("de mo");
    EXPECT_EQ(lastLine(), "[ERROR] [PelioServiceManager] (initialize) : invalid ID // ID = de mo");
    settle();
    EXPECT_TRUE(world_.server().requests().empty());
    service->startService();
    EXPECT_EQ(host_->take(), Events{"start NOT_INITIALIZED"});
}

TEST_F(PelioService, TellsTheDelegateOfItsOptionsEveryOutcome) {
    std::shared_ptr<PelioServiceManager> kept;
    host_->reaction = [&](const std::string& event) {
        if (event != "init INVALID_ID") return;
        kept = host_->sender->shared_from_this();
        kept->startService();
    };
    const auto refused = PelioServiceManager::create({.id = "de mo", .delegate = host_});
    EXPECT_EQ(host_->take(), (Events{"init INVALID_ID", "start NOT_INITIALIZED"}));
    EXPECT_EQ(kept, refused);

    const auto service = PelioServiceManager::create({.id = "demo", .sectorId = 12, .delegate = host_});
    settle();  // as the main thread may before another one that creates the service goes on
    EXPECT_EQ(host_->take(), (Events{"map 10", "init true"}));
}

TEST_F(PelioService, ReportsABundleThatCannotBeLoaded) {
    site_.bundle = virtual_world::reply(404);
    const auto service = create();
    settle();
    service->startService();
    EXPECT_EQ(host_->take(), (Events{"init RESOURCE_FAIL", "start NOT_INITIALIZED"}));
    EXPECT_EQ(
        lastLine(),
        "[ERROR] [PelioServiceManager] (initialize) : resource load failed // id = demo, sectorId = 12, "
        "forceUpdate = false");
}

TEST_F(PelioService, ChecksDuplicateThenBluetoothThenGenerator) {
    using enum platform::BluetoothAuthorizationState;
    const auto service = ready();
    world_.bluetooth().set(denied);
    service->startService();
    world_.bluetooth().set(notDetermined);
    world_.source().setSupply(false);
    service->startService();
    EXPECT_EQ(
        lastLine(),
        "[ERROR] [PelioServiceManager] (startGenerator) : failed because rfdGenerator is nil // id = demo");
    world_.source().setSupply(true);
    world_.source().setAvailability({false, "radio off"});
    service->startService();
    EXPECT_EQ(
        lastLine(),
        "[ERROR] [PelioServiceManager] (startGenerator) : RFD unavailable // id = demo, msg = radio off");
    service->stopService();
    EXPECT_EQ(lastLine(), "") << "a generator that could not start is stored, and stopped without a warning";
    world_.source().setAvailability({true, ""});
    service->startService();
    world_.bluetooth().set(denied);
    service->startService();
    EXPECT_EQ(host_->take(), (Events{"start BLE_NOT_AUTHORIZED", "start GENERATOR_FAIL",
                                     "start GENERATOR_FAIL", "start true", "start DUPLICATE_SERVICE"}));
}

TEST_F(PelioService, StopsForgetsAndStartsAgainWithoutALoad) {
    const auto service = running();
    hear(0);
    service->stopService();
    EXPECT_FALSE(hear(1));
    EXPECT_FALSE(world_.source().last()->isRunning);
    service->stopService();
    EXPECT_EQ(lastLine(),
              "[WARN]  [PelioServiceManager] (stopService) : skipped because rfdGenerator is nil");
    const auto requests = world_.server().requests().size();
    service->startService();
    hear(2, -100);
    EXPECT_EQ(host_->take(), (Events{"result 0", "start true"})) << "the buffer was emptied";
    EXPECT_EQ(world_.server().requests().size(), requests);
}

TEST_F(PelioService, SkipsEverySampleOfASiteWithoutWards) {
    auto document = fakes::PELIO_DOCUMENT;
    const auto wards = document.find("\"wards\":[");
    document.replace(wards, document.find(']', wards) - wards, "\"wards\":[");
    site_.publish("v2", document);
    const auto service = running();
    hear(0);
    EXPECT_EQ(lastLine(),
              "[WARN]  [PelioServiceManager] (handleRfd) : skipped because Pelio bundle is not ready");
}

TEST_F(PelioService, LogsGeneratorErrorsAndKeepsGoing) {
    const auto service = running();
    world_.source().sendError(7, "no scan");
    EXPECT_EQ(lastLine(), "[ERROR] [PelioServiceManager] (onRfdError) : code = 7, msg = no scan");
    hear(0);
    EXPECT_EQ(host_->take(), Events{"result 0"});
}

TEST_F(PelioService, LivesWithADelegateThatGoesComesLateOrIsReplaced) {
    const auto service = running();
    const auto second = std::make_shared<Host>();
    host_->reaction = [&](const auto&) { service->setDelegate(second); };
    hear(0);
    hear(1);
    EXPECT_EQ(host_->take(), Events{"result 0"});
    EXPECT_EQ(second->take(), Events{"result 1"});
    service->setDelegate(std::make_shared<Host>());  // gone at once
    hear(2);
    service->setDelegate(second);
    hear(3);
    EXPECT_EQ(second->take(), Events{"result 3"});
}

TEST_F(PelioService, MayBeStoppedAndStartedInsideAnyCallback) {
    const auto service = create();
    host_->reaction = [&](const std::string& event) {
        if (event == "init true") service->startService();
        if (event == "result 1") {
            service->stopService();
            service->startService();
        }
    };
    settle();
    hear(1);
    hear(2);
    EXPECT_EQ(host_->take(),
              (Events{"map 10", "init true", "start true", "result 1", "start true", "result 2"}));
}

TEST_F(PelioService, DestroyedWhileLoadingIsNeverHeardFromAgain) {
    create();
    settle();
    EXPECT_TRUE(host_->take().empty());
}

TEST_F(PelioService, MayLoseItsLastReferenceInsideItsOwnCallbacks) {
    auto service = create();
    host_->reaction = [&](const std::string& event) {
        if (event == "init true") service.reset();
    };
    settle();
    EXPECT_EQ(host_->take(), (Events{"map 10", "init true"}));

    service = create();
    settle();
    EXPECT_FALSE(service);

    host_->reaction = [&](const std::string& event) {
        if (event == "result 1") service.reset();
    };
    service = create();
    settle();
    service->startService();
    hear(1);
    EXPECT_FALSE(hear(2));
    EXPECT_FALSE(world_.source().last()->isRunning);
}

/// A running service hears of "lobby-a" in each start, and in each stop of its rival, which is stronger.
class EagerPelioService : public testing::Test {
protected:
    EagerPelioService() {
        auto platform = world_.platform();
        platform.makeRFDGenerator = generators_.factory();
        platform::install(std::move(platform));
        auto document = fakes::PELIO_DOCUMENT;
        document.insert(document.find(R"({"id":17)"), R"({"id":18,"name":"rival","x":0,"y":0,"rssi":-80},)");
        site_.publish("v1", document);
        generators_.inGenerate = [](auto& generator) { generator.send({1, {{"lobby-a", -60}}}); };
        generators_.inStop = [](auto& generator) { generator.send({2, {{"rival", -50}}}); };
        service_ = PelioServiceManager::create({.id = "demo", .sectorId = 12, .delegate = host_});
        world_.time().advanceBy(std::chrono::seconds(1));
        host_->take();
    }

    void stop() { service_->stopService(); }
    void start() { service_->startService(); }

    fakes::OutputCapture output_;
    virtual_world::VirtualPlatform world_{{0, 0}};
    fakes::SiteServer site_{world_.server()};
    fakes::ScriptedGenerators generators_;
    std::shared_ptr<Host> host_ = std::make_shared<Host>();
    std::shared_ptr<PelioServiceManager> service_;
};

TEST_F(EagerPelioService, IsStillRunningForWhatItHearsInsideItsStop) {
    struct Case {
        std::function<void()> inside;
        Events heard;
        int running;
    };
    for (const auto& test : std::vector<Case>{
             {[] {}, {"result 2"}, 0},
             {[&] { start(); }, {"result 2", "start DUPLICATE_SERVICE"}, 0},
             {[&] { stop(); }, {"result 2"}, 0},
             {[&] { stop(), start(); }, {"result 2", "result 1", "start true"}, 1},
             {[&] { service_.reset(); }, {"result 2"}, 0},
         }) {
        host_->reaction = [](const auto&) {};
        start();
        host_->take();
        host_->reaction = [&](const std::string& event) {
            if (event != "result 2") return;
            EXPECT_EQ(host_->last().x, 60.0) << "a ward stays for five seconds";
            test.inside();
        };
        stop();
        EXPECT_EQ(host_->take(), test.heard);
        EXPECT_EQ(generators_.running, test.running);
        host_->reaction = [](const auto&) {};
        if (service_) stop();
    }
}

TEST_F(EagerPelioService, StoppedWhileItAsksForAvailabilityStartsNothing) {
    generators_.inCheck = [&](auto&) { stop(); };
    start();
    EXPECT_EQ(host_->take(), Events{"start true"}) << "it tells of the start alone";
    EXPECT_EQ(generators_.running, 0);
    generators_.inCheck = [](auto&) {};
    start();
    EXPECT_EQ(host_->take(), (Events{"result 1", "start true"}));
}

TEST_F(EagerPelioService, StoppedInsideItsStartLeavesNothingRunning) {
    host_->reaction = [&](const std::string& event) {
        if (event == "result 1") service_->stopService();
    };
    service_->startService();
    EXPECT_EQ(generators_.running, 0);
    host_->reaction = [](const auto&) {};
    host_->take();
    service_->startService();
    service_->startService();
    EXPECT_EQ(host_->take(), (Events{"result 1", "start true", "start DUPLICATE_SERVICE"}));
}

TEST_F(EagerPelioService, RestartedInsideItsStartIsRunningOnce) {
    bool isFirst = true;
    host_->reaction = [&](const std::string&) {
        if (!std::exchange(isFirst, false)) return;
        service_->stopService();
        service_->startService();
    };
    service_->startService();
    EXPECT_EQ(generators_.running, 1);
    host_->take();
    service_->startService();
    EXPECT_EQ(host_->take(), Events{"start DUPLICATE_SERVICE"});
    service_->stopService();
    EXPECT_EQ(generators_.running, 0);
}

TEST_F(EagerPelioService, MayLoseItsLastReferenceInsideItsStart) {
    host_->reaction = [&](const std::string&) { service_.reset(); };
    service_->startService();
    EXPECT_EQ(generators_.running, 0);
}

TEST_F(PelioService, IsSafeBetweenTheGeneratorsThreadAndTheHosts) {
    OskaLogger::setDebugOption(false);
    auto service = ready();
    std::atomic<bool> isOver{false};
    std::thread generator([&] {
        for (std::int64_t time = 0; !isOver; time += 250) hear(time);
    });
    std::thread other([&] {
        for (int i = 0; i < 200; ++i) {
            service->stopService();
            service->startService();
        }
    });
    for (int i = 0; i < 200; ++i) {
        service->startService();
        service->setDelegate(i % 2 ? host_ : nullptr);
        EXPECT_EQ(service->getPelioMapImages().size(), 1u);
        service->stopService();
    }
    other.join();
    service->stopService();
    host_->take();
    service->setDelegate(host_);
    service->startService();
    EXPECT_THAT(host_->take(), testing::Contains("start true"));
    service.reset();
    isOver = true;
    generator.join();
    EXPECT_FALSE(hear(0)) << "no generator is left";
}

}  // namespace
}  // namespace oska
