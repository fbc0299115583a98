#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "oska/platform/main_queue.h"

/// The tests that every main queue must pass. An adapter needs a driver and one line:
///
///     INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, MainQueueContract, VirtualDriver);
///
/// A driver is made on the test's thread, which is the queue's main thread, and has:
///
///     static constexpr std::chrono::nanoseconds UNIT;  // the shortest delay that tests use
///     static constexpr bool CAN_BE_LATE;               // whether time may pass while no job runs
///     platform::MainQueue& queue();
///     std::chrono::nanoseconds elapsed();           // on the clock by which the queue measures delays
///     void runUntil(std::function<bool()> isDone);  // runs jobs until a job has made it true
///     void stall(std::chrono::nanoseconds span);    // lets time pass without jobs; only with CAN_BE_LATE
///     void stop();                                  // ends the queue
///
/// No test depends on speed: that something does not happen is tested by what must happen later.
namespace oska::platform {

/// A token for a job to hold; it shows whether the job was destroyed.
class Held {
public:
    [[nodiscard]] std::shared_ptr<int> give() { return std::exchange(token_, nullptr); }
    [[nodiscard]] bool isAlive() const { return !watch_.expired(); }

private:
    std::shared_ptr<int> token_ = std::make_shared<int>();
    std::weak_ptr<int> watch_ = token_;
};

/// Calls a function when the last copy of it is destroyed.
inline std::shared_ptr<void> whenDestroyed(std::function<void()> action) {
    return {nullptr, [action = std::move(action)](void*) { action(); }};
}

template <class Driver>
class MainQueueContract : public testing::Test {
protected:
    static constexpr auto UNIT = Driver::UNIT;
    using Handle = std::unique_ptr<ScheduledWork>;

    MainQueue& queue() { return driver_.queue(); }

    void runUntil(const bool& isDone) {
        driver_.runUntil([&] { return isDone; });
    }

    /// Runs jobs until `span` has passed, and all that was due by then has run.
    void runFor(std::chrono::nanoseconds span) {
        bool isOver = false;
        const auto end = queue().after(span, [&] { isOver = true; });
        runUntil(isOver);
    }

    Task note(std::string name) {
        return [this, name = std::move(name)] { ran_.push_back(name); };
    }

    Driver driver_;
    std::vector<std::string> ran_;
};

/// What drivers of queues on the steady clock have in common.
struct SteadyDriver {
    static constexpr std::chrono::nanoseconds UNIT = std::chrono::milliseconds(2);
    static constexpr bool CAN_BE_LATE = true;

    static std::chrono::nanoseconds elapsed() { return std::chrono::steady_clock::now().time_since_epoch(); }
    static void stall(std::chrono::nanoseconds span) {
        for (const auto begin = elapsed(); elapsed() - begin < span;) std::this_thread::yield();
    }
};

TYPED_TEST_SUITE_P(MainQueueContract);

TYPED_TEST_P(MainQueueContract, RunsJobsByDeadlineThenInTheOrderOfSchedulingAndNoneEarlyOrInsideTheCall) {
    constexpr auto DELAY = 4 * TestFixture::UNIT;
    std::chrono::nanoseconds before{};
    std::vector<typename TestFixture::Handle> handles;
    do {  // once more when making the schedule took so long that it became another one
        handles.clear();
        before = this->driver_.elapsed();
        handles.push_back(this->queue().after(2 * DELAY, this->note("late")));
        handles.push_back(this->queue().after(DELAY, [&] {
            EXPECT_GE(this->driver_.elapsed() - before, DELAY);
            this->ran_.push_back("first soon");
        }));
        handles.push_back(this->queue().after(DELAY, this->note("second soon")));
        handles.push_back(this->queue().after(std::chrono::nanoseconds(0), this->note("first now")));
        handles.push_back(this->queue().after(std::chrono::nanoseconds(-5), this->note("second now")));
        handles.push_back(this->queue().every(std::chrono::hours(1), this->note("tick")));
    } while (this->driver_.elapsed() - before >= DELAY);
    this->queue().async(this->note("third now"));
    EXPECT_TRUE(this->ran_.empty());
    this->runFor(3 * DELAY);
    this->queue().async([&] {
        this->queue().async(this->note("nested"));
        this->ran_.push_back("outer ends");
    });
    this->driver_.runUntil([&] { return this->ran_.size() == 9; });

    EXPECT_EQ(this->ran_,
              (std::vector<std::string>{"first now", "second now", "tick", "third now", "first soon",
                                        "second soon", "late", "outer ends", "nested"}));
}

TYPED_TEST_P(MainQueueContract, AJobIsDestroyedOnceItRanAndMayDestroyItsOwnHandle) {
    Held held[4];
    typename TestFixture::Handle once;
    typename TestFixture::Handle repeating;
    int ticks = 0;
    this->queue().async([token = held[0].give()] {});
    const auto kept = this->queue().after(std::chrono::nanoseconds(0), [token = held[1].give()] {});
    this->queue().async([&] { EXPECT_FALSE(held[0].isAlive() || held[1].isAlive()); });
    once = this->queue().after(TestFixture::UNIT, [&, token = held[2].give()] {
        once.reset();
        EXPECT_TRUE(held[2].isAlive());
    });
    repeating = this->queue().every(TestFixture::UNIT, [&, token = held[3].give()] {
        if (++ticks == 3) repeating.reset();
        EXPECT_TRUE(held[3].isAlive());
    });
    for (const auto& job : held) EXPECT_TRUE(job.isAlive());
    this->driver_.runUntil([&] { return ticks == 3; });
    this->runFor(3 * TestFixture::UNIT);
    EXPECT_EQ(ticks, 3);
    for (const auto& job : held) EXPECT_FALSE(job.isAlive());
}

TYPED_TEST_P(MainQueueContract, AnEndedJobNeverRunsEvenWhenItWasDue) {
    Held held;
    std::vector<typename TestFixture::Handle> due;
    auto pending =
        this->queue().after(TestFixture::UNIT, [this, token = held.give()] { this->note("pending")(); });
    this->queue().async([&] { due.clear(); });
    due.push_back(this->queue().after(std::chrono::nanoseconds(0), this->note("due")));
    due.push_back(this->queue().every(TestFixture::UNIT, this->note("due timer")));
    pending.reset();
    EXPECT_FALSE(held.isAlive());
    this->runFor(3 * TestFixture::UNIT);
    EXPECT_TRUE(this->ran_.empty());
}

TYPED_TEST_P(MainQueueContract, ARepeatingTimerIsNeverEarlyAndIsScheduledBeforeItsHandlersOwnWork) {
    constexpr auto INTERVAL = 2 * TestFixture::UNIT;
    const auto before = this->driver_.elapsed();
    typename TestFixture::Handle work;
    int ticks = 0;
    const auto timer = this->queue().every(INTERVAL, [&] {
        EXPECT_GE(this->driver_.elapsed() - before, ticks * INTERVAL);
        this->ran_.push_back("tick");
        if (++ticks == 5) work = this->queue().after(INTERVAL, this->note("work"));
    });
    this->driver_.runUntil([&] { return this->ran_.size() >= 7; });
    EXPECT_EQ(this->ran_[5], "tick");
}

TYPED_TEST_P(MainQueueContract, TicksThatWereMissedAreMergedIntoOne) {
    if constexpr (!TypeParam::CAN_BE_LATE) {
        GTEST_SKIP() << "this queue is never late";
    } else {
        constexpr auto INTERVAL = 4 * TestFixture::UNIT;
        int ticks = 0;
        const auto before = this->driver_.elapsed();
        const auto timer = this->queue().every(INTERVAL, [&] {
            if (++ticks == 1) this->driver_.stall(3 * INTERVAL + INTERVAL / 2);
        });
        this->driver_.runUntil([&] { return ticks >= 4; });
        const auto instantsOfGrid = (this->driver_.elapsed() - before) / INTERVAL + 1;
        EXPECT_LE(ticks, instantsOfGrid - 2);
    }
}

TYPED_TEST_P(MainQueueContract, SyncRunsTheTaskOnTheMainThreadAndWaits) {
    std::atomic<bool> isDestroyed{false};
    // Slow, so that a caller that does not wait for it is caught.
    auto held = whenDestroyed([&] {
        for (int i = 0; i < 1000; ++i) std::this_thread::yield();
        isDestroyed = true;
    });
    bool isDone = false;
    std::thread other([&] {
        EXPECT_FALSE(this->queue().isMainThread());
        EXPECT_TRUE(this->queue().sync(
            [this, token = std::move(held)] { EXPECT_TRUE(this->queue().isMainThread()); }));
        EXPECT_TRUE(isDestroyed);
        this->queue().async([&] { isDone = true; });
    });
    this->runUntil(isDone);
    other.join();
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH((void)this->queue().sync([] {}), "sync.*main thread");
}

TYPED_TEST_P(MainQueueContract, StoppingDestroysJobsWithoutRunningThemAndAnswersWaitingSyncs) {
    Held running;
    std::atomic<int> callers{0};
    std::vector<std::future<bool>> answers;
    auto victim = this->queue().after(std::chrono::hours(1), this->note("victim"));
    // A job's destruction may use the queue, also while that stops.
    const auto user = this->queue().every(TestFixture::UNIT,
                                          [this, end = whenDestroyed([&] {
                                                     victim.reset();
                                                     this->queue().async(this->note("from a destructor"));
                                                 })] { this->note("user")(); });
    const auto stopper = this->queue().every(TestFixture::UNIT, [&, token = running.give()] {
        for (int i = 0; i < 4; ++i) {
            answers.push_back(std::async(std::launch::async, [&] {
                ++callers;
                return this->queue().sync([] { ADD_FAILURE() << "ran after the stop"; });
            }));
        }
        while (callers < 4) std::this_thread::yield();
        this->driver_.stop();
        EXPECT_TRUE(running.isAlive());
    });
    this->driver_.runUntil([&] { return answers.size() == 4; });
    for (auto& answer : answers) EXPECT_FALSE(answer.get());
    EXPECT_EQ(this->ran_, std::vector<std::string>{"user"});
    EXPECT_FALSE(running.isAlive());
    EXPECT_EQ(victim, nullptr);
}

TYPED_TEST_P(MainQueueContract, AStoppedQueueDestroysWhatItIsGivenAndHandlesMayOutliveIt) {
    Held jobs[5];
    std::vector<typename TestFixture::Handle> handles;
    auto driver = std::make_unique<TypeParam>();
    auto& queue = driver->queue();
    handles.push_back(queue.after(TestFixture::UNIT, [token = jobs[0].give()] {}));
    driver->stop();
    queue.async([token = jobs[1].give()] {});
    handles.push_back(queue.after(TestFixture::UNIT, [token = jobs[2].give()] {}));
    handles.push_back(queue.every(TestFixture::UNIT, [token = jobs[3].give()] {}));
    std::thread([&] {
        EXPECT_FALSE(queue.sync([token = jobs[4].give()] { ADD_FAILURE() << "ran"; }));
    }).join();
    for (const auto& job : jobs) EXPECT_FALSE(job.isAlive());
    driver.reset();
}

TYPED_TEST_P(MainQueueContract, TakesJobsFromManyThreadsAndKeepsEachOnesOrder) {
    constexpr int JOBS = 250;
    int next[4] = {};
    std::vector<std::thread> threads;
    for (int& count : next) {
        threads.emplace_back([&] {
            for (int i = 0; i < JOBS; ++i) {
                const auto ended = this->queue().after(TestFixture::UNIT, [] {});
                const auto endedTimer = this->queue().every(TestFixture::UNIT, [] {});
                this->queue().async([&count, i] { EXPECT_EQ(count++, i); });
            }
        });
    }
    this->driver_.runUntil([&] { return std::count(std::begin(next), std::end(next), JOBS) == 4; });
    for (auto& thread : threads) thread.join();
}

REGISTER_TYPED_TEST_SUITE_P(
    MainQueueContract, RunsJobsByDeadlineThenInTheOrderOfSchedulingAndNoneEarlyOrInsideTheCall,
    AJobIsDestroyedOnceItRanAndMayDestroyItsOwnHandle, AnEndedJobNeverRunsEvenWhenItWasDue,
    ARepeatingTimerIsNeverEarlyAndIsScheduledBeforeItsHandlersOwnWork, TicksThatWereMissedAreMergedIntoOne,
    SyncRunsTheTaskOnTheMainThreadAndWaits, StoppingDestroysJobsWithoutRunningThemAndAnswersWaitingSyncs,
    AStoppedQueueDestroysWhatItIsGivenAndHandlesMayOutliveIt, TakesJobsFromManyThreadsAndKeepsEachOnesOrder);

}  // namespace oska::platform
