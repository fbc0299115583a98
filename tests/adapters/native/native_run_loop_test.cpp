#include "adapters/native/run_loop.h"

#include "adapters/native/system_wall_clock.h"
#include "tests/contract/main_queue_contract.h"

namespace oska::native {
namespace {

using std::chrono::nanoseconds;
using namespace std::chrono_literals;

struct NativeDriver : platform::SteadyDriver {
    platform::MainQueue& queue() { return loop; }
    void stop() { loop.stop(); }
    void runUntil(const std::function<bool()>& isDone) { (void)loop.runUntil(isDone); }

    RunLoop loop;
};

}  // namespace
}  // namespace oska::native

namespace oska::platform {
INSTANTIATE_TYPED_TEST_SUITE_P(Native, MainQueueContract, native::NativeDriver);
}  // namespace oska::platform

namespace oska::native {
namespace {

TEST(RunLoop, RunsUntilThePredicateHoldsOrItIsStopped) {
    RunLoop loop;
    EXPECT_TRUE(loop.runUntil([] { return true; }));
    std::thread other([&] { loop.async([&] { loop.stop(); }); });
    loop.run();
    other.join();
    EXPECT_FALSE(loop.runUntil([] { return false; }));
}

TEST(RunLoop, PumpAnswersWhenToComeBack) {
    RunLoop loop;
    EXPECT_EQ(loop.pump(), std::nullopt);
    const auto before = RunLoop::Clock::now();
    const auto later = loop.after(1h, [] {});
    const auto muchLater = loop.after(nanoseconds::max(), [] {});
    EXPECT_GE(loop.pump(), before + 1h);
    EXPECT_LT(loop.pump(), before + 2h);

    // A job that posts itself again must not keep the host's loop from its other work.
    int runs = 0;
    std::function<void()> again = [&] {
        ++runs;
        EXPECT_EQ(loop.pump(), std::nullopt) << "inside a job nothing runs";
        loop.async(again);
    };
    loop.async(again);
    const auto next = loop.pump();
    EXPECT_LE(next, RunLoop::Clock::now());
    EXPECT_EQ(runs, 1);
}

TEST(RunLoop, WakesTheHostOnlyForWhatItWouldMiss) {
    int wakes = 0;
    std::unique_ptr<platform::ScheduledWork> own;
    std::optional<RunLoop> loop;
    loop.emplace([&] {
        ++wakes;
        own = loop->after(2h, [] {});  // the hook is called without a lock
    });
    const auto far = loop->after(1h, [] {});
    const auto farther = loop->after(2h, [] {});
    EXPECT_EQ(wakes, 1);
    loop->async([&] { loop->async([] {}); });
    EXPECT_EQ(wakes, 2);
    loop->pump();
    EXPECT_EQ(wakes, 2);
    loop->pump();
}

TEST(RunLoopDeathTest, StopsTheProcessWhenMisused) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    RunLoop loop;
    EXPECT_DEATH((void)loop.every(0ns, [] {}), "interval above zero");
    EXPECT_DEATH(std::thread([&] { loop.pump(); }).join(), "another thread than the main one");
}

TEST(SystemWallClock, TellsTheSystemsTime) {
    using std::chrono::system_clock;
    const auto before = system_clock::now();
    const auto now = SystemWallClock().now();
    const auto told = std::chrono::milliseconds(now.milliseconds) + nanoseconds(now.nanoseconds);
    EXPECT_GE(told, before.time_since_epoch());
    EXPECT_LE(told, system_clock::now().time_since_epoch());
    EXPECT_LT(now.nanoseconds, 1'000'000);
}

}  // namespace
}  // namespace oska::native
