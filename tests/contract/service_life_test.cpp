// The life that both services share: each case runs for Pelio and for Dapo.
#include <gtest/gtest.h>

#include "tests/fakes/output_capture.h"
#include "tests/fakes/recording_hosts.h"
#include "tests/fakes/scripted_generator.h"
#include "tests/fakes/site_server.h"

namespace oska {
namespace {

using namespace std::chrono_literals;
using fakes::Events;

struct Pelio {
    using Host = fakes::PelioHost;
    static constexpr const char* NAME = "Pelio";
    static constexpr const char* TAG = "PelioServiceManager";
    static constexpr const char* STOP = "stopService";
    static constexpr bool STOPS_FAILED_GENERATOR = false;
    static const std::string& document() { return fakes::PELIO_DOCUMENT; }

    void create(const std::shared_ptr<Host>& host, const std::string& id) {
        service = PelioServiceManager::create({.id = id, .sectorId = 12, .delegate = host});
    }

    std::shared_ptr<PelioServiceManager> service;
};

struct Dapo {
    using Host = fakes::DapoHost;
    static constexpr const char* NAME = "Dapo";
    static constexpr const char* TAG = "DapoView";
    static constexpr const char* STOP = "stopGenerator";
    static constexpr bool STOPS_FAILED_GENERATOR = true;
    static const std::string& document() { return fakes::DAPO_DOCUMENT; }

    void create(const std::shared_ptr<Host>& host, const std::string& id) {
        service = DapoView::create();
        service->setDelegate(host);
        service->initialize({.id = id, .sectorId = 12, .baseURL = "http://uploads"});
    }

    std::shared_ptr<DapoView> service;
};

template <class Service>
class ServiceLife : public testing::Test, protected Service, protected fakes::ScriptedGenerators {
protected:
    ServiceLife() {
        auto platform = world_.platform();
        platform.makeRFDGenerator = [this] { return hasGenerators ? factory()() : nullptr; };
        platform::install(std::move(platform));
        site_.publish("v1", Service::document());
        inGenerate = [this](auto& generator) { last_ = &generator; };
    }

    void create(const std::string& id = "demo") { Service::create(host_, id); }
    void settle() { world_.time().advanceBy(2min); }
    void makeReady() {
        create();
        settle();
        EXPECT_EQ(host_->take(), (Events{"map 10", "init true"}));
        output_.take();
    }
    Events start() {
        this->service->startService();
        return host_->take();
    }
    void stop() { this->service->stopService(); }

    /// Runs `action` inside the first of the generator's operations that it is set for.
    static Action once(std::function<void()> action) {
        return [left = std::make_shared<std::function<void()>>(std::move(action))](auto&) {
            if (const auto act = std::exchange(*left, nullptr)) act();
        };
    }

    std::string log(const std::string& level, const std::string& text) {
        return level + " [" + Service::TAG + "] " + text;
    }
    std::string missing() {
        return log("[WARN] ", "(" + std::string(Service::STOP) + ") : skipped because rfdGenerator is nil");
    }
    std::string lastLine() {
        const auto lines = output_.take();
        return lines.empty() ? "" : lines.back();
    }

    virtual_world::VirtualPlatform world_{{1'700'000'000'000, 0}};
    fakes::SiteServer site_{world_.server()};
    fakes::OutputCapture output_;
    std::shared_ptr<typename Service::Host> host_ = std::make_shared<typename Service::Host>();
    bool hasGenerators = true;
    fakes::ScriptedGenerators::Generator* last_ = nullptr;  // the one that was started last
};

using Services = testing::Types<Pelio, Dapo>;
TYPED_TEST_SUITE(ServiceLife, Services);

TYPED_TEST(ServiceLife, SaysWhyItCannotBeInitialised) {
    this->create("de mo");
    EXPECT_EQ(this->output_.take(), Events{this->log("[ERROR]", "(initialize) : invalid ID // ID = de mo")});
    EXPECT_EQ(this->start(), (Events{"init INVALID_ID", "start NOT_INITIALIZED"})) << "inside the call";
    this->settle();
    EXPECT_TRUE(this->world_.server().requests().empty());
    this->create();
    EXPECT_EQ(this->start(), Events{"start NOT_INITIALIZED"});
    this->site_.bundle = virtual_world::reply(404);
    this->settle();
    EXPECT_EQ(this->lastLine(), this->log("[ERROR]",
                                          "(initialize) : resource load failed // id = demo, sectorId = 12, "
                                          "forceUpdate = false"));
    EXPECT_EQ(this->start(), (Events{"init RESOURCE_FAIL", "start NOT_INITIALIZED"}));
}

TYPED_TEST(ServiceLife, ChecksDuplicateThenBluetoothThenGeneratorAndMayStartAgainAfterAStop) {
    using enum platform::BluetoothAuthorizationState;
    this->makeReady();
    this->world_.bluetooth().set(denied);
    EXPECT_EQ(this->start(), Events{"start BLE_NOT_AUTHORIZED"});
    this->world_.bluetooth().set(notDetermined);
    this->output_.take();
    this->hasGenerators = false;
    EXPECT_EQ(this->start(), Events{"start GENERATOR_FAIL"});
    Events expected{
        this->log("[ERROR]", "(startGenerator) : failed because rfdGenerator is nil // id = demo")};
    if (TypeParam::STOPS_FAILED_GENERATOR) expected.push_back(this->missing());
    EXPECT_EQ(this->output_.take(), expected);

    this->hasGenerators = true;
    this->isAvailable = false;
    int stops = 0;
    this->inStop = [&](auto&) { ++stops; };
    EXPECT_EQ(this->start(), Events{"start GENERATOR_FAIL"});
    EXPECT_EQ(this->output_.take(),
              Events{this->log("[ERROR]", "(startGenerator) : RFD unavailable // id = demo, msg = ")});
    EXPECT_EQ(stops, TypeParam::STOPS_FAILED_GENERATOR ? 1 : 0);
    this->stop();
    EXPECT_EQ(stops, 1) << "a generator that is kept is stopped by the next stop";
    this->inStop = [](auto&) {};

    this->isAvailable = true;
    EXPECT_EQ(this->start(), Events{"start true"});
    this->stop();
    this->output_.take();
    this->stop();
    EXPECT_EQ(this->output_.take(), Events{this->missing()});
    const auto requests = this->world_.server().requests().size();
    EXPECT_EQ(this->start(), Events{"start true"});
    EXPECT_EQ(this->world_.server().requests().size(), requests) << "nothing is loaded again";
    this->world_.bluetooth().set(denied);
    EXPECT_EQ(this->start(), Events{"start DUPLICATE_SERVICE"});
}

TYPED_TEST(ServiceLife, LogsGeneratorErrorsAndSkipsTheSamplesOfASiteWithoutWards) {
    auto document = TypeParam::document();
    const auto wards = document.find("\"wards\":[") + 9;
    this->site_.publish("v2", document.substr(0, wards) + "]}]}]}");
    this->makeReady();
    this->start();
    this->last_->send({0, {{"lobby-a", -60}}});
    EXPECT_EQ(this->lastLine(),
              this->log("[WARN] ", "(handleRfd) : skipped because " + std::string(TypeParam::NAME) +
                                       " bundle is not ready"));
    this->service->onRfdError(*this->last_, 7, "no scan");
    EXPECT_EQ(this->lastLine(), this->log("[ERROR]", "(onRfdError) : code = 7, msg = no scan"));
    EXPECT_EQ(this->start(), Events{"start DUPLICATE_SERVICE"}) << "the service goes on";
}

struct Case {
    bool fails;
    std::function<void()> inside;
    Events heard;
    int running;  // generators, afterwards
};

TYPED_TEST(ServiceLife, AStartLeavesWhatTheHostHasDoneInside) {
    const std::vector<Case> cases{
        {false, [&] { this->stop(); }, {"start true"}, 0},
        {false, [&] { this->service->startService(); }, {"start DUPLICATE_SERVICE", "start true"}, 1},
        {false, [&] { this->stop(), this->service->startService(); }, {"start true", "start true"}, 1},
        {true, [&] { this->stop(); }, {"start GENERATOR_FAIL"}, 0},
        {true,
         [&] {
             this->isAvailable = true;
             this->stop();
             this->service->startService();
             this->isAvailable = false;
         },
         {"start true", "start GENERATOR_FAIL"},
         1},
        {false, [&] { this->service.reset(); }, {"start true"}, 0},
    };
    for (const bool isInCheck : {true, false}) {
        for (const auto& [fails, inside, heard, left] : cases) {
            if (fails && !isInCheck) continue;
            if (!this->service) this->makeReady();
            this->host_->take();
            this->inCheck = this->inGenerate = [](auto&) {};
            (isInCheck ? this->inCheck : this->inGenerate) = this->once(inside);
            this->isAvailable = !fails;
            const auto started = this->service.get();
            started->startService();
            this->isAvailable = true;
            EXPECT_EQ(this->running, left);
            EXPECT_EQ(this->host_->take(), heard);
            if (!this->service) continue;
            EXPECT_EQ(this->start(), Events{left ? "start DUPLICATE_SERVICE" : "start true"});
            this->stop();
        }
    }
    EXPECT_EQ(this->running, 0);
}

TYPED_TEST(ServiceLife, AStopLeavesWhatTheHostHasDoneInside) {
    const auto start = [&] { this->service->startService(); };
    for (const auto& [fails, inside, heard, left] : std::vector<Case>{
             {false, start, {"start DUPLICATE_SERVICE"}, 0},
             {false, [&] { this->stop(); }, {}, 0},
             {false, [&] { this->stop(), start(); }, {"start true"}, 1},
             {false, [&] { start(), this->stop(), start(); }, {"start DUPLICATE_SERVICE", "start true"}, 1},
             {false, [&] { this->service.reset(); }, {}, 0},
         }) {
        if (!this->service) this->makeReady();
        EXPECT_EQ(this->start(), Events{"start true"});
        this->inStop = this->once(inside);
        this->service->stopService();
        EXPECT_EQ(this->host_->take(), heard);
        EXPECT_EQ(this->running, left);
        if (this->service) this->stop();
    }
}

TYPED_TEST(ServiceLife, MayLoseItsLastReferenceAtAnyTime) {
    this->create();
    this->service.reset();
    this->settle();
    EXPECT_TRUE(this->host_->take().empty()) << "while it loads";
    for (const std::string last : {"map 10", "init true", "start true"}) {
        this->host_->reaction = [&](const std::string& event) {
            if (event == last) this->service.reset();
        };
        this->create();
        const std::weak_ptr<void> weak = this->service;
        this->settle();
        if (const auto ready = this->service.get()) ready->startService();
        EXPECT_TRUE(weak.expired()) << last;
        EXPECT_EQ(this->running, 0);
    }
}

}  // namespace
}  // namespace oska
