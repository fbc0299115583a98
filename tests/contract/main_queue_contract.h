#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
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

TYPED_TEST_P(MainQueueContract, RunsJobsByDeadlineAndThenInTheOrderOfScheduling) {
    constexpr auto DELAY = 4 * TestFixture::UNIT;
    std::chrono::nanoseconds before{};
    std::vector<typename TestFixture::Handle> handles;
    do {  // once more when making the schedule took so long that it became another one
        handles.clear();
        before = this->driver_.elapsed();
        handles.push_back(this->queue().after(2 * DELAY, this->note("late")));
        handles.push_back(this->queue().after(DELAY, this->note("first soon")));
        handles.push_back(this->queue().after(DELAY, this->note("second soon")));
        handles.push_back(this->queue().after(std::chrono::nanoseconds(0), this->note("first now")));
        handles.push_back(this->queue().after(std::chrono::nanoseconds(-5), this->note("second now")));
    } while (this->driver_.elapsed() - before >= DELAY);
    this->queue().async(this->note("third now"));
    this->runFor(3 * DELAY);

    EXPECT_EQ(this->ran_, (std::vector<std::string>{"first now", "second now", "third now", "first soon",
                                                    "second soon", "late"}));
}

TYPED_TEST_P(MainQueueContract, RunsNothingInsideTheCallAndNothingEarly) {
    constexpr auto DELAY = 3 * TestFixture::UNIT;
    bool isDone = false;
    const auto before = this->driver_.elapsed();
    this->queue().async([&] {
        this->queue().async(this->note("nested"));
        this->ran_.push_back("outer ends");
    });
    const auto tick = this->queue().every(std::chrono::hours(1), this->note("tick"));
    const auto delayed = this->queue().after(DELAY, [&] {
        EXPECT_GE(this->driver_.elapsed() - before, DELAY);
        isDone = true;
    });
    EXPECT_TRUE(this->ran_.empty());
    this->runUntil(isDone);

    EXPECT_EQ(this->ran_, (std::vector<std::string>{"outer ends", "tick", "nested"}));
}

TYPED_TEST_P(MainQueueContract, AJobIsDestroyedOnceItRanBeforeTheNextOneRuns) {
    Held posted;
    Held delayed;
    bool isDone = false;
    this->queue().async([token = posted.give()] {});
    const auto kept = this->queue().after(std::chrono::nanoseconds(0), [token = delayed.give()] {});
    this->queue().async([&] {
        EXPECT_FALSE(posted.isAlive());
        EXPECT_FALSE(delayed.isAlive());
        isDone = true;
    });
    EXPECT_TRUE(posted.isAlive() && delayed.isAlive());
    this->runUntil(isDone);
}

TYPED_TEST_P(MainQueueContract, AJobMayDestroyItsOwnHandle) {
    Held once;
    Held repeating;
    typename TestFixture::Handle onceHandle;
    typename TestFixture::Handle repeatingHandle;
    int ticks = 0;
    onceHandle = this->queue().after(TestFixture::UNIT, [&, token = once.give()] {
        onceHandle.reset();
        EXPECT_TRUE(once.isAlive());
    });
    repeatingHandle = this->queue().every(TestFixture::UNIT, [&, token = repeating.give()] {
        if (++ticks < 3) return;
        repeatingHandle.reset();
        EXPECT_TRUE(repeating.isAlive());
    });
    this->driver_.runUntil([&] { return ticks == 3; });
    this->runFor(3 * TestFixture::UNIT);

    EXPECT_EQ(ticks, 3);
    EXPECT_FALSE(once.isAlive());
    EXPECT_FALSE(repeating.isAlive());
}

TYPED_TEST_P(MainQueueContract, AnEndedJobNeverRunsEvenWhenItWasDue) {
    Held held;
    auto pending =
        this->queue().after(TestFixture::UNIT, [this, token = held.give()] { this->note("pending")(); });
    typename TestFixture::Handle due;
    typename TestFixture::Handle dueTimer;
    this->queue().async([&] {
        due.reset();
        dueTimer.reset();
    });
    due = this->queue().after(std::chrono::nanoseconds(0), this->note("due"));
    dueTimer = this->queue().every(TestFixture::UNIT, this->note("due timer"));
    pending.reset();
    EXPECT_FALSE(held.isAlive());
    this->runFor(3 * TestFixture::UNIT);

    EXPECT_TRUE(this->ran_.empty());
}

TYPED_TEST_P(MainQueueContract, ARepeatingTimerStaysOnTheGridOfItsFirstTick) {
    constexpr auto INTERVAL = 2 * TestFixture::UNIT;
    const auto before = this->driver_.elapsed();
    std::vector<std::chrono::nanoseconds> ticks;
    const auto timer =
        this->queue().every(INTERVAL, [&] { ticks.push_back(this->driver_.elapsed() - before); });
    this->driver_.runUntil([&] { return ticks.size() >= 6; });

    for (std::size_t i = 0; i < ticks.size(); ++i) EXPECT_GE(ticks[i], static_cast<int>(i) * INTERVAL) << i;
}

TYPED_TEST_P(MainQueueContract, TheNextTickIsScheduledBeforeTheHandlersOwnWork) {
    constexpr auto INTERVAL = 2 * TestFixture::UNIT;
    typename TestFixture::Handle work;
    const auto timer = this->queue().every(INTERVAL, [&] {
        this->ran_.push_back("tick");
        if (!work) work = this->queue().after(INTERVAL, this->note("work"));
    });
    this->driver_.runUntil([&] { return !this->ran_.empty() && this->ran_.back() == "work"; });

    ASSERT_GE(this->ran_.size(), 3U);
    EXPECT_EQ(this->ran_[1], "tick");
}

TYPED_TEST_P(MainQueueContract, TicksThatWereMissedAreMergedIntoOne) {
    if constexpr (!TypeParam::CAN_BE_LATE) {
        GTEST_SKIP() << "this queue is never late";
    } else {
        constexpr auto INTERVAL = 4 * TestFixture::UNIT;
        constexpr int MISSED = 3;
        int ticks = 0;
        const auto before = this->driver_.elapsed();
        const auto timer = this->queue().every(INTERVAL, [&] {
            if (++ticks == 1) this->driver_.stall(MISSED * INTERVAL + INTERVAL / 2);
        });
        this->driver_.runUntil([&] { return ticks >= 4; });

        const auto instantsOfGrid = (this->driver_.elapsed() - before) / INTERVAL + 1;
        EXPECT_LE(ticks, instantsOfGrid - (MISSED - 1));
    }
}

TYPED_TEST_P(MainQueueContract, SyncRunsTheTaskOnTheMainThreadAndWaits) {
    EXPECT_TRUE(this->queue().isMainThread());
    std::atomic<bool> isDestroyed{false};
    // Slow, so that a caller that does not wait for it is caught.
    auto held = whenDestroyed([&] {
        for (int i = 0; i < 1000; ++i) std::this_thread::yield();
        isDestroyed = true;
    });
    bool isDone = false;
    std::thread::id ranOn;
    std::thread other([&] {
        EXPECT_FALSE(this->queue().isMainThread());
        EXPECT_TRUE(this->queue().sync([&, token = std::move(held)] { ranOn = std::this_thread::get_id(); }));
        EXPECT_TRUE(isDestroyed);
        this->queue().async([&] { isDone = true; });
    });
    this->runUntil(isDone);
    other.join();
    EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TYPED_TEST_P(MainQueueContract, SyncOnTheMainThreadStopsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH((void)this->queue().sync([] {}), "sync.*main thread");
}

TYPED_TEST_P(MainQueueContract, StoppingAnswersWaitingSyncs) {
    std::atomic<int> callers{0};
    std::vector<std::future<bool>> answers;
    this->queue().async([&] {
        for (int i = 0; i < 4; ++i) {
            answers.push_back(std::async(std::launch::async, [&] {
                ++callers;
                return this->queue().sync([] { ADD_FAILURE() << "ran after the stop"; });
            }));
        }
        while (callers < 4) std::this_thread::yield();
        this->driver_.stop();
    });
    this->driver_.runUntil([&] { return answers.size() == 4; });
    for (auto& answer : answers) EXPECT_FALSE(answer.get());
}

TYPED_TEST_P(MainQueueContract, StoppingDestroysJobsWithoutRunningThem) {
    Held waiting;
    Held running;
    auto victim = this->queue().after(std::chrono::hours(1), this->note("victim"));
    const auto kept = this->queue().after(std::chrono::hours(1), [token = waiting.give()] {});
    // A job's destruction may use the queue, also while that stops.
    const auto user = this->queue().every(TestFixture::UNIT,
                                          [this, end = whenDestroyed([&] {
                                                     victim.reset();
                                                     this->queue().async(this->note("from a destructor"));
                                                 })] { this->note("user")(); });
    bool isDone = false;
    const auto stopper = this->queue().every(TestFixture::UNIT, [&, token = running.give()] {
        this->driver_.stop();
        EXPECT_TRUE(running.isAlive());
        isDone = true;
    });
    this->runUntil(isDone);

    EXPECT_EQ(this->ran_, std::vector<std::string>{"user"});
    EXPECT_FALSE(waiting.isAlive());
    EXPECT_FALSE(running.isAlive());
    EXPECT_EQ(victim, nullptr);
}

TYPED_TEST_P(MainQueueContract, AStoppedQueueDestroysWhatItIsGivenAndHandlesMayOutliveIt) {
    typename TestFixture::Handle waiting;
    Held jobs[5];
    {
        TypeParam driver;
        waiting = driver.queue().after(TestFixture::UNIT, [token = jobs[4].give()] {});
        driver.stop();
        driver.queue().async([token = jobs[0].give()] {});
        const auto delayed = driver.queue().after(TestFixture::UNIT, [token = jobs[1].give()] {});
        const auto timer = driver.queue().every(TestFixture::UNIT, [token = jobs[2].give()] {});
        std::thread([&] {
            EXPECT_FALSE(driver.queue().sync([token = jobs[3].give()] { ADD_FAILURE() << "ran"; }));
        }).join();
        for (const auto& job : jobs) EXPECT_FALSE(job.isAlive());
    }
    waiting.reset();
}

TYPED_TEST_P(MainQueueContract, TakesJobsFromManyThreadsAndKeepsEachOnesOrder) {
    constexpr int THREADS = 4;
    constexpr int JOBS = 250;
    std::vector<int> next(THREADS, 0);
    int done = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < THREADS; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < JOBS; ++i) {
                const auto ended = this->queue().after(TestFixture::UNIT, [] {});
                const auto endedTimer = this->queue().every(TestFixture::UNIT, [] {});
                this->queue().async([&, thread, i] {
                    EXPECT_EQ(next[static_cast<std::size_t>(thread)]++, i);
                    ++done;
                });
            }
        });
    }
    this->driver_.runUntil([&] { return done == THREADS * JOBS; });
    for (auto& thread : threads) thread.join();
}

REGISTER_TYPED_TEST_SUITE_P(MainQueueContract, RunsJobsByDeadlineAndThenInTheOrderOfScheduling,
                            RunsNothingInsideTheCallAndNothingEarly,
                            AJobIsDestroyedOnceItRanBeforeTheNextOneRuns, AJobMayDestroyItsOwnHandle,
                            AnEndedJobNeverRunsEvenWhenItWasDue, ARepeatingTimerStaysOnTheGridOfItsFirstTick,
                            TheNextTickIsScheduledBeforeTheHandlersOwnWork,
                            TicksThatWereMissedAreMergedIntoOne, SyncRunsTheTaskOnTheMainThreadAndWaits,
                            SyncOnTheMainThreadStopsTheProcess, StoppingAnswersWaitingSyncs,
                            StoppingDestroysJobsWithoutRunningThem,
                            AStoppedQueueDestroysWhatItIsGivenAndHandlesMayOutliveIt,
                            TakesJobsFromManyThreadsAndKeepsEachOnesOrder);

}  // namespace oska::platform
