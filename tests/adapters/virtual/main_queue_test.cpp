#include "adapters/virtual/virtual_main_queue.h"

#include <limits>

#include "tests/contract/main_queue_contract.h"

namespace oska::virtual_world {
namespace {

using platform::WallTime;
using std::chrono::nanoseconds;
using namespace std::chrono_literals;

constexpr WallTime START{1'700'000'000'000, 0};
constexpr auto LAST_MILLISECOND = std::numeric_limits<std::int64_t>::max();

struct VirtualDriver {
    static constexpr nanoseconds UNIT = 1s;
    static constexpr bool CAN_BE_LATE = false;

    platform::MainQueue& queue() { return time; }
    nanoseconds elapsed() const { return platform::spanBetween(START, time.now()); }
    void stop() { time.stop(); }
    void runUntil(const std::function<bool()>& isDone) {
        for (time.runDue(); !isDone(); time.advanceBy(UNIT)) std::this_thread::yield();
    }

    VirtualMainQueue time{START};
};

class VirtualTime : public testing::Test {
protected:
    platform::Task note(std::string name) {
        return [this, name = std::move(name)] {
            log_.emplace_back(name, platform::millisecondsBetween(START, time_.now()));
        };
    }
    using Log = std::vector<std::pair<std::string, std::int64_t>>;
    VirtualMainQueue time_{START};
    Log log_;
};

TEST_F(VirtualTime, EachJobFindsTheClockAtItsOwnDeadlineAndItNeverGoesBack) {
    const auto late = time_.after(300ms, note("late"));
    const auto tick = time_.every(100ms, note("tick"));
    const auto due = time_.after(100ms, note("due"));
    time_.advanceBy(200ms);
    EXPECT_EQ(log_, (Log{{"tick", 0}, {"due", 100}, {"tick", 100}, {"tick", 200}}));
    log_.clear();
    time_.advanceTo(START + 299ms + 999'999ns);
    EXPECT_EQ(log_, Log{});
    time_.advanceTo(START + 300ms);
    EXPECT_EQ(log_, (Log{{"late", 300}, {"tick", 300}}));

    // What is due runs all the same, and what that schedules for now.
    const std::function<void()> moves[]{[&] { time_.advanceTo(START); }, [&] { time_.advanceBy(-1h); },
                                        [&] { time_.runDue(); }};
    for (const auto& move : moves) {
        log_.clear();
        std::thread([&] { time_.async([&] { time_.async(note("due")); }); }).join();
        move();
        EXPECT_EQ(log_, (Log{{"due", 300}}));
    }
}

// The tick after the ones passed over keeps its instant, and its turn before what is scheduled later.
TEST_F(VirtualTime, IdleTicksAreLeftOutAndNothingElseChanges) {
    const auto play = [](nanoseconds interval, nanoseconds way, bool skips) {
        VirtualMainQueue time(START);
        std::vector<std::pair<std::string, WallTime>> seen;
        const auto note = [&](const char* name) {
            return [&, name] { seen.emplace_back(name, time.now()); };
        };
        const auto late = time.after(3s, note("once"));
        const auto tick = time.every(interval, [&] {
            if (time.now() > START + way) note("tick")();
        });
        time.advanceTo(START + way, [&] { return skips; });
        const auto rest = interval - way % interval;  // until the first tick behind the way
        const auto alike = time.after(rest, note("with the tick"));
        time.advanceBy(2 * interval);
        return seen;
    };
    for (const nanoseconds interval : {nanoseconds(333'333'333), nanoseconds(7ms), nanoseconds(20s)}) {
        for (const nanoseconds way : {nanoseconds(2999ms), nanoseconds(20s), nanoseconds(1h) + 1ns}) {
            EXPECT_EQ(play(interval, way, true), play(interval, way, false)) << interval.count();
        }
    }
    const auto tick = time_.every(1s, [] {});
    time_.advanceTo({LAST_MILLISECOND, 0}, [] { return true; });  // would take for ever otherwise
    EXPECT_EQ(time_.now(), (WallTime{LAST_MILLISECOND, 0}));
}

TEST(VirtualTimeRange, ReachesFromTheFirstMillisecondToTheLastAndNoJobBeyond) {
    VirtualMainQueue time({std::numeric_limits<std::int64_t>::min(), 0});
    std::vector<WallTime> ticks;
    const auto first = time.after(1h, [&] { ticks.push_back(time.now()); });
    time.advanceTo({LAST_MILLISECOND - 1, 500'000});
    EXPECT_EQ(ticks.size(), 1U);

    platform::Held held;
    const auto timer = time.every(1'200us, [&] { ticks.push_back(time.now()); });
    const auto beyond = time.after(1h, [token = held.give()] { ADD_FAILURE() << "ran at the end of time"; });
    time.advanceTo({LAST_MILLISECOND, 999'999});
    time.advanceBy(1h);
    ticks.erase(ticks.begin());
    EXPECT_EQ(ticks, (std::vector<WallTime>{{LAST_MILLISECOND - 1, 500'000}, {LAST_MILLISECOND, 700'000}}));
    EXPECT_TRUE(held.isAlive());
}

TEST_F(VirtualTime, StopsTheProcessWhenMovedWrongly) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(std::thread([&] { time_.runDue(); }).join(), "thread other than the main one");
    time_.async([&] { time_.advanceBy(1s); });
    EXPECT_DEATH(time_.runDue(), "from inside a job");
    EXPECT_DEATH((void)time_.every(0s, [] {}), "interval above zero");
}

}  // namespace
}  // namespace oska::virtual_world

namespace oska::platform {
INSTANTIATE_TYPED_TEST_SUITE_P(Virtual, MainQueueContract, virtual_world::VirtualDriver);
}  // namespace oska::platform
