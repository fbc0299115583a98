#include "adapters/virtual/replay_generator.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

namespace oska::virtual_world {
namespace {

using platform::ReceivedForce;
using platform::RFDGenerator;

ReceivedForce sampleAt(std::int64_t time) { return {time, {{"lobby", -20.0}}}; }

struct Listener : platform::RFDGeneratorDelegate {
    void onRfdResult(RFDGenerator& generator, ReceivedForce sample) override {
        times.push_back(sample.mobile_time);
        if (onSample) onSample(generator);
    }
    void onRfdError(RFDGenerator&, int code, const std::string& msg) override {
        errors.push_back(std::to_string(code) + msg);
    }
    void onRfdEmptyMillis(RFDGenerator&, double time) override { empty.push_back(time); }

    std::function<void(RFDGenerator&)> onSample;
    std::vector<std::int64_t> times;
    std::vector<std::string> errors;
    std::vector<double> empty;
};

class Replay : public testing::Test {
protected:
    std::shared_ptr<RFDGenerator> startedFor(const std::shared_ptr<Listener>& listener) {
        auto generator = make_();
        generator->setDelegate(listener);
        generator->generateReplayRfd();
        return generator;
    }

    ReplaySource source_;
    platform::RFDGeneratorFactory make_ = source_.factory();
    std::shared_ptr<Listener> listener_ = std::make_shared<Listener>();
};

TEST_F(Replay, OnlyRunningGeneratorsHearAndTheSenderIsTold) {
    const auto generator = make_();
    generator->setDelegate(listener_);
    EXPECT_FALSE(source_.send(sampleAt(1)));
    generator->generateReplayRfd();
    EXPECT_TRUE(source_.send(sampleAt(2)));
    EXPECT_TRUE(source_.sendError(7, "x"));
    EXPECT_TRUE(source_.sendEmptyMillis(1.5));
    generator->stopRfdGeneration();
    EXPECT_FALSE(source_.send(sampleAt(3)));
    EXPECT_FALSE(source_.sendError(8, "y"));
    generator->generateRfd({});
    EXPECT_TRUE(source_.send(sampleAt(4)));
    generator->setDelegate({});
    EXPECT_FALSE(source_.send(sampleAt(5)));
    generator->setDelegate(listener_);
    EXPECT_TRUE(source_.send(sampleAt(6)));
    EXPECT_EQ(listener_->times, (std::vector<std::int64_t>{2, 4, 6}));
    EXPECT_EQ(listener_->errors, std::vector<std::string>{"7x"});
    EXPECT_EQ(listener_->empty, std::vector<double>{1.5});
    listener_.reset();
    EXPECT_FALSE(source_.send(sampleAt(7)));
}

TEST_F(Replay, OneGeneratorsCallbackMaySilenceAnother) {
    const auto first = startedFor(listener_);
    const auto other = std::make_shared<Listener>();
    auto released = startedFor(other);
    const auto stopped = startedFor(other);
    listener_->onSample = [&](RFDGenerator&) {
        released.reset();
        stopped->stopRfdGeneration();
    };
    EXPECT_TRUE(source_.send(sampleAt(1)));
    EXPECT_TRUE(other->times.empty());
}

TEST_F(Replay, TheLastReferenceMayGoInsideACallback) {
    auto generator = startedFor(listener_);
    listener_->onSample = [&](RFDGenerator& calling) {
        generator.reset();
        calling.stopRfdGeneration();  // still there while its callback runs
        listener_.reset();            // and so is the delegate
    };
    EXPECT_TRUE(source_.send(sampleAt(1)));
    EXPECT_FALSE(source_.send(sampleAt(2)));
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
    std::thread feeding([&] { EXPECT_TRUE(source_.send(sampleAt(1))); });
    while (!isInside) std::this_thread::yield();
    generator->stopRfdGeneration();
    generator->setDelegate({});
    generator.reset();
    lock.unlock();
    feeding.join();
    EXPECT_FALSE(source_.send(sampleAt(2)));
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
        for (std::int64_t time = 0; time < 50; ++time) EXPECT_TRUE(source_.send(sampleAt(time)));
    };
    std::thread one(feed);
    std::thread two(feed);
    for (int i = 0; i < 200; ++i) {
        auto listener = std::make_shared<Listener>();
        const auto passing = startedFor(listener);
        std::this_thread::yield();
        if (i % 3 == 0) listener.reset();
        if (i % 3 == 1) passing->stopRfdGeneration();
    }
    one.join();
    two.join();
    EXPECT_EQ(listener_->times.size(), 100U);
}

TEST_F(Replay, RecordsWhatTheLastGeneratorWasTold) {
    EXPECT_EQ(source_.last(), std::nullopt);
    auto generator = make_();
    generator->setScanMode(platform::ScanMode::ONLY_WARD_SCAN);
    generator->setPressureProvider([] { return 1013.25F; });
    generator->setDelegate(listener_);
    generator->generateRfd({.rfdIntervalMillis = 0.5, .minRssiThreshold = -90, .maxRssiThreshold = -40});
    auto record = source_.last().value();
    EXPECT_TRUE(record.isRunning && record.hasDelegate);
    EXPECT_EQ(record.scanMode, platform::ScanMode::ONLY_WARD_SCAN);
    EXPECT_EQ(record.options.value().minRssiThreshold, -90);
    EXPECT_EQ(record.pressureProvider(), 1013.25F);
    generator->generateReplayRfd();
    generator->stopRfdGeneration();
    generator.reset();
    record = source_.last().value();
    EXPECT_FALSE(record.isRunning || record.options || record.pressureProvider);
    EXPECT_EQ(record.starts, 2U);
    EXPECT_EQ(record.stops, 1U);
    EXPECT_EQ(source_.made(), 1U);
}

TEST_F(Replay, AvailabilityAndSupplyAreScriptedAndEndWithTheSource) {
    auto source = std::make_unique<ReplaySource>();
    const auto make = source->factory();
    const auto generator = make();
    EXPECT_TRUE(generator->checkIsAvailableRfd().available);
    source->setAvailability({false, "bluetooth is off"});
    EXPECT_EQ(generator->checkIsAvailableRfd().message, "bluetooth is off");
    source->setSupply(false);
    EXPECT_EQ(make(), nullptr);
    source->setSupply(true);
    EXPECT_NE(make(), nullptr);
    source.reset();
    generator->generateReplayRfd();
    EXPECT_FALSE(generator->checkIsAvailableRfd().available);
    EXPECT_EQ(make(), nullptr);
}

TEST_F(Replay, SendingFromInsideACallbackStopsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto generator = startedFor(listener_);
    listener_->onSample = [&](RFDGenerator&) { source_.send(sampleAt(2)); };
    EXPECT_DEATH(source_.send(sampleAt(1)), "from inside a generator's callback");
}

}  // namespace
}  // namespace oska::virtual_world
