// What is Pelio's own; the life that it shares with Dapo is in contract/service_life_test.cpp.
#include "oska/pelio/pelio_service_manager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "oska/foundation/logger.h"
#include "oska/foundation/network_constants.h"
#include "oska/platform/quenlo_resource.h"
#include "tests/fakes/output_capture.h"
#include "tests/fakes/recording_hosts.h"
#include "tests/fakes/scripted_generator.h"
#include "tests/fakes/site_server.h"

namespace oska {
namespace {

using fakes::Events;

/// A service for a site with the ward "lobby-a", whose place is (60, 30), and "rival", whose place is (10,
/// 10).
class PelioService : public testing::Test {
protected:
    explicit PelioService(platform::RFDGeneratorFactory makeRFDGenerator = {}) {
        auto platform = world_.platform();
        if (makeRFDGenerator) platform.makeRFDGenerator = std::move(makeRFDGenerator);
        platform::install(std::move(platform));
        auto document = fakes::PELIO_DOCUMENT;
        document.insert(document.find(R"({"id":17)"), R"({"id":18,"name":"rival","x":0,"y":0,"rssi":-80},)");
        site_.publish("v1", document);
    }

    void makeReady() {
        service_ =
            PelioServiceManager::create({.id = "demo", .region = "KOREA", .sectorId = 12, .delegate = host_});
        world_.time().advanceBy(std::chrono::minutes(2));
        EXPECT_EQ(host_->take(), (Events{"map 10", "init true"}));
    }

    bool hear(std::int64_t time, double strength = -60, const std::string& name = "Lobby-A ") {
        return world_.source().send({time, {{name, strength}}});
    }

    virtual_world::VirtualPlatform world_{{1'700'000'000'000, 0}};
    fakes::SiteServer site_{world_.server()};
    std::shared_ptr<fakes::PelioHost> host_ = std::make_shared<fakes::PelioHost>();
    std::shared_ptr<PelioServiceManager> service_;
    fakes::OutputCapture output_;
};

TEST(ServiceCodes, ConvertFromTheRawValuesThatTheyHave) {
    const auto beyond32Bits = (std::int64_t{1} << 32) + 1;
    EXPECT_EQ(serviceErrorCode(-1), PelioErrorCode::UNKNOWN);
    EXPECT_EQ(static_cast<int>(*serviceErrorCode(3)), 3);
    EXPECT_FALSE(serviceErrorCode(-2) || serviceErrorCode(4) || serviceErrorCode(beyond32Bits));
    EXPECT_EQ(static_cast<int>(*serviceInitErrorCode(1)), 1);
    EXPECT_FALSE(serviceInitErrorCode(-2) || serviceInitErrorCode(2) || serviceInitErrorCode(beyond32Bits));
    EXPECT_EQ(caseName(PelioErrorCode::BLE_NOT_AUTHORIZED), "BLE_NOT_AUTHORIZED");
}

TEST_F(PelioService, InitialisesStartsAndReportsPositions) {
    platform::TovanReplayer::shared().setReplayMode(true);
    makeReady();
    EXPECT_EQ(output_.take().back(),
              "[INFO]  [PelioServiceManager] (initialize) : success // id = demo, sectorId = 12, "
              "forceUpdate = false, wardCount = 2, levelCount = 1");
    EXPECT_EQ(service_->getPelioMapImages().size(), 1u);
    EXPECT_EQ(service_->getPelioMapImage(10)->building_name, "main");

    service_->startService();
    EXPECT_EQ(output_.take(),
              Events{"[INFO]  [PelioServiceManager] (startGenerator) : success // id = demo, replayMode = "
                     "true"});
    EXPECT_EQ(world_.source().last()->scanMode, platform::ScanMode::ONLY_WARD_SCAN);
    EXPECT_EQ(world_.source().last()->pressureProvider(), 0.0F);
    hear(7);
    hear(8, -80.6);
    EXPECT_EQ(host_->take(), (Events{"start true", "result 7 at 60", "result 8 at 60"}));
    service_->stopService();
    service_->startService();
    hear(9, -100);
    EXPECT_EQ(host_->take(), Events{"start true"}) << "the samples were forgotten";
}

TEST_F(PelioService, PointsTheEndpointsAtItsRegion) {
    const auto first = PelioServiceManager::create({.id = "demo", .region = "CANADA", .sectorId = 12});
    EXPECT_EQ(platform::QuenloResourceNetworkConstants::server().region, "KOREA")
        << "set by the first use of the shared resource manager";
    EXPECT_TRUE(OskaNetworkConstants::getUserTovanURL().starts_with("https://ca-central-1."));
    const auto second = PelioServiceManager::create({.id = "demo", .region = "CANADA", .sectorId = 12});
    const auto server = platform::QuenloResourceNetworkConstants::server();
    EXPECT_EQ(server.cloud + server.region, "AWSCANADA");
    EXPECT_FALSE(server.dev);
}

TEST_F(PelioService, MayBeUsedAndKeptInsideCreate) {
    std::shared_ptr<PelioServiceManager> kept;
    host_->reaction = [&](const std::string& event) {
        if (event != "init INVALID_ID") return;
        kept = host_->sender->shared_from_this();
        kept->startService();
    };
    const auto refused = PelioServiceManager::create({.id = "de mo", .delegate = host_});
    EXPECT_EQ(host_->take(), (Events{"init INVALID_ID", "start NOT_INITIALIZED"}));
    EXPECT_EQ(kept, refused);
}

TEST_F(PelioService, StartsLiveWithTheLimitsOfTheKitAndReportsToTheDelegateThatIsSet) {
    makeReady();
    service_->startService();
    EXPECT_EQ(host_->take(), Events{"start true"});
    const auto options = world_.source().last()->options;
    ASSERT_TRUE(options) << "live";
    EXPECT_EQ(options->rfdIntervalMillis, 0.5);
    EXPECT_EQ(options->minRssiThreshold, -100);
    EXPECT_EQ(options->maxRssiThreshold, -40);
    const auto second = std::make_shared<fakes::PelioHost>();
    host_->reaction = [&](const auto&) { service_->setDelegate(second); };
    hear(0);
    hear(1);
    EXPECT_EQ(host_->take(), Events{"result 0 at 60"});
    EXPECT_EQ(second->take(), Events{"result 1 at 60"});
    service_->setDelegate(std::make_shared<fakes::PelioHost>());  // destroyed at once
    hear(2);
    service_->setDelegate(second);
    second->reaction = [&](const auto&) { service_.reset(); };
    hear(3);
    EXPECT_EQ(second->take(), Events{"result 3 at 60"});
    EXPECT_FALSE(hear(4)) << "the last reference was released inside the report";
}

class EagerPelioService : protected fakes::ScriptedGenerators, public PelioService {
protected:
    EagerPelioService() : PelioService(factory()) {}
};

TEST_F(EagerPelioService, IsStillRunningForWhatItHearsInsideItsStop) {
    inGenerate = [](auto& generator) { generator.send({1, {{"lobby-a", -60}}}); };
    inStop = [](auto& generator) { generator.send({2, {{"rival", -50}}}); };
    makeReady();
    for (const auto& [inside, heard] : std::vector<std::pair<std::function<void()>, Events>>{
             {[] {}, {"result 2 at 60"}},
             {[&] { service_->stopService(), service_->startService(); },
              {"result 2 at 60", "result 1 at 60", "start true"}},
         }) {
        service_->startService();
        EXPECT_EQ(host_->take(), (Events{"result 1 at 60", "start true"}));
        host_->reaction = [&inside = inside](const std::string& event) {
            if (event.starts_with("result 2")) inside();
        };
        service_->stopService();
        EXPECT_EQ(host_->take(), heard) << "a ward stays for five seconds";
        host_->reaction = [](const auto&) {};
    }
}

TEST_F(PelioService, IsSafeBetweenTheGeneratorsThreadAndTheHosts) {
    OskaLogger::setDebugOption(false);
    makeReady();
    std::atomic<bool> isOver{false};
    std::thread generator([&] {
        for (std::int64_t time = 0; !isOver; time += 250) hear(time);
    });
    const auto restart = [&] {
        for (int i = 0; i < 200; ++i) {
            service_->startService();
            service_->setDelegate(i % 2 ? host_ : nullptr);
            EXPECT_EQ(service_->getPelioMapImages().size(), 1u);
            service_->stopService();
        }
    };
    std::thread other(restart);
    restart();
    other.join();
    host_->take();
    service_->startService();
    const auto events = host_->take();
    EXPECT_EQ(std::count(events.begin(), events.end(), "start true"), 1);
    service_.reset();
    isOver = true;
    generator.join();
    EXPECT_FALSE(hear(0)) << "no generator is left";
}

}  // namespace
}  // namespace oska
