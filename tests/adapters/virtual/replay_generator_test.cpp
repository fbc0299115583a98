#include "adapters/virtual/replay_generator.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <mutex>
#include <thread>
#include <vector>

#include "adapters/virtual/recorded_radio.h"
#include "adapters/virtual/virtual_platform.h"

namespace oska::virtual_world {
namespace {

using platform::RFDGenerator;
using Heard = std::vector<std::string>;

platform::ReceivedForce sampleAt(std::int64_t time) { return {time, {{"lobby", -20.0}}}; }

struct Listener : platform::RFDGeneratorDelegate {
    void onRfdResult(RFDGenerator& generator, platform::ReceivedForce sample) override {
        heard.push_back(std::to_string(sample.mobile_time));
        onSample(generator);
    }
    void onRfdError(RFDGenerator&, int code, const std::string& msg) override {
        heard.push_back(std::to_string(code) + msg);
    }
    void onRfdEmptyMillis(RFDGenerator&, double time) override {
        heard.push_back("empty " + std::to_string(static_cast<int>(time)));
    }

    std::function<void(RFDGenerator&)> onSample = [](auto&) {};
    Heard heard;
};

class Replay : public testing::Test {
protected:
    std::shared_ptr<RFDGenerator> startedFor(const std::shared_ptr<Listener>& listener) {
        auto generator = source_->factory()();
        generator->setDelegate(listener);
        generator->generateReplayRfd();
        return generator;
    }

    std::unique_ptr<ReplaySource> source_ = std::make_unique<ReplaySource>();
    std::shared_ptr<Listener> listener_ = std::make_shared<Listener>();
};

TEST_F(Replay, OnlyRunningGeneratorsHearAndTheSenderIsTold) {
    EXPECT_EQ(source_->last(), std::nullopt);
    auto generator = source_->factory()();
    generator->setDelegate(listener_);
    EXPECT_FALSE(source_->send(sampleAt(1)));
    generator->generateReplayRfd();
    EXPECT_TRUE(source_->send(sampleAt(2)));
    EXPECT_TRUE(source_->sendError(7, "x"));
    EXPECT_TRUE(source_->sendEmptyMillis(15));
    generator->stopRfdGeneration();
    EXPECT_FALSE(source_->send(sampleAt(3)));
    generator->generateRfd({});
    EXPECT_TRUE(source_->send(sampleAt(6)));
    EXPECT_EQ(listener_->heard, (Heard{"2", "7x", "empty 15", "6"}));
    EXPECT_TRUE(source_->last()->hasDelegate);
    listener_.reset();
    EXPECT_FALSE(source_->send(sampleAt(7)));
    generator.reset();
    const auto record = source_->last().value();
    EXPECT_FALSE(record.isRunning || record.hasDelegate || record.pressureProvider);
    EXPECT_EQ(std::tuple(record.starts, record.stops, source_->made()), std::tuple(2, 1, 1));
}

TEST_F(Replay, ACallbackMaySilenceOthersAndDropTheLastReferenceToItsOwn) {
    auto generator = startedFor(listener_);
    const auto other = std::make_shared<Listener>();
    auto released = startedFor(other);
    const auto stopped = startedFor(other);
    listener_->onSample = [&](RFDGenerator& calling) {
        released.reset();
        stopped->stopRfdGeneration();
        generator.reset();
        calling.stopRfdGeneration();  // still there while its callback runs
        listener_.reset();            // and so is the delegate
    };
    EXPECT_TRUE(source_->send(sampleAt(1)));
    EXPECT_FALSE(source_->send(sampleAt(2)));
    EXPECT_EQ(other->heard, Heard{});
}

TEST_F(Replay, AStopDoesNotWaitForACallbackOnAnotherThread) {
    std::mutex hosts;
    std::atomic<bool> isInside{false};
    auto generator = startedFor(listener_);
    listener_->onSample = [&](RFDGenerator&) {
        isInside = true;
        const std::lock_guard lock(hosts);
    };
    std::unique_lock lock(hosts);
    std::thread feeding([&] { EXPECT_TRUE(source_->send(sampleAt(1))); });
    while (!isInside) std::this_thread::yield();
    generator->stopRfdGeneration();
    generator->setDelegate({});
    generator.reset();
    lock.unlock();
    feeding.join();
}

TEST_F(Replay, FeedingThreadsTakeTurnsWhileServicesComeAndGo) {
    int inside = 0;
    listener_->onSample = [&](RFDGenerator&) {
        EXPECT_EQ(++inside, 1);
        for (int i = 0; i < 20; ++i) std::this_thread::yield();
        --inside;
    };
    const auto generator = startedFor(listener_);
    const auto feed = [&] {
        for (int i = 0; i < 50; ++i) EXPECT_TRUE(source_->send(sampleAt(i)));
    };
    std::thread one(feed);
    std::thread two(feed);
    for (int i = 0; i < 200; ++i) {
        const auto passing = startedFor(std::make_shared<Listener>());
        std::this_thread::yield();
        if (i % 2 == 0) passing->stopRfdGeneration();
    }
    one.join();
    two.join();
    EXPECT_EQ(listener_->heard.size(), 100U);
}

TEST_F(Replay, AvailabilityAndSupplyAreScriptedAndEndWithTheSource) {
    const auto make = source_->factory();
    source_->setSupply(false);
    EXPECT_EQ(make(), nullptr);
    source_->setSupply(true);
    const auto generator = make();
    EXPECT_TRUE(generator->checkIsAvailableRfd().available);
    source_->setAvailability({false, "bluetooth is off"});
    EXPECT_EQ(generator->checkIsAvailableRfd().message, "bluetooth is off");
    source_.reset();
    generator->generateReplayRfd();
    EXPECT_FALSE(generator->checkIsAvailableRfd().available);
    EXPECT_EQ(make(), nullptr);
}

TEST_F(Replay, SendingFromInsideACallbackStopsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto generator = startedFor(listener_);
    listener_->onSample = [&](RFDGenerator&) { source_->send(sampleAt(2)); };
    EXPECT_DEATH(source_->send(sampleAt(1)), "from inside a generator's callback");
}

TEST(RecordedRadio, PlaysAtTheWalksOwnPaceOrSaysWhyNot) {
    struct Case {
        std::string text;
        std::string reason;
        Heard heard = {};  // within two seconds
    };
    VirtualPlatform world({});
    platform::install(world.platform());
    const auto path = testing::TempDir() + "recorded_radio.jsonl";
    for (const auto& [text, reason, heard] :
         {Case{"{\"mobile_time\": 7, \"action\": \"tap\"}\n \n", ": holds no sample"},
          Case{"\n{\"mobile_time\": 1.5}", ":2: mobile_time: expected an integer, found 1.5"},
          Case{"{\"mobile_time\": 5000, \"rfs\": {\"a\": -60.5}}\n\n{\"mobile_time\": 6000, \"rfs\": {}}\n"
               "{\"mobile_time\": 5500, \"rfs\": {}}\n{\"mobile_time\": 6501, \"rfs\": {}}",
               "",
               {"5000", "6000", "5500"}}}) {
        std::ofstream(path) << text;
        const RecordedRadio radio(path);
        world.time().advanceBy(std::chrono::hours(1));  // the walk waits for the first generator
        const auto generator = radio.factory()();
        const auto listener = std::make_shared<Listener>();
        generator->setDelegate(listener);
        generator->generateRfd({});
        EXPECT_EQ(generator->checkIsAvailableRfd().message, reason.empty() ? "" : path + reason);
        world.time().advanceBy(std::chrono::seconds(2));
        EXPECT_EQ(listener->heard, heard);
    }
}

}  // namespace
}  // namespace oska::virtual_world
