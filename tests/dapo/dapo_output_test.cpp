#include "oska/dapo/dapo_output.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace oska {
namespace {

using namespace std::chrono_literals;
using platform::WallTime;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

constexpr auto INFINITE = std::numeric_limits<double>::infinity();

std::vector<DapoWard> wards(std::initializer_list<const char*> names) {
    std::vector<DapoWard> wards;
    for (const auto* name : names) wards.push_back({.id = std::ssize(wards), .name = name});
    return wards;
}

/// Runs an output on a clock of the test's, and writes down what it asks for.
class Output : public testing::Test {
protected:
    /// Returns the names that are delivered; nothing: "-".
    std::string perform(const DapoOutput::Effects& effects) {
        if (effects.release == DapoOutput::Release::cancel) releaseAt_.reset();
        if (effects.release == DapoOutput::Release::schedule) releaseAt_ = now_ + effects.releaseAfter;
        isVisible_ = effects.visibility.value_or(isVisible_);
        std::string names;
        for (const auto& ward : effects.delivery) names += ward.name;
        return names.empty() ? "-" : names;
    }

    /// Lets time pass, and the release that is scheduled happen.
    void pass(nanoseconds span) {
        const auto end = now_ + span;
        while (releaseAt_ && *releaseAt_ <= end) {
            now_ = *std::exchange(releaseAt_, std::nullopt);
            perform(output_.releaseExpiredHolds(now_));
        }
        now_ = end;
    }

    /// What is scheduled comes as if it had not been.
    void setClockBack(nanoseconds span) {
        now_ = now_ + -span;
        if (releaseAt_) releaseAt_ = *releaseAt_ + -span;
    }

    std::string detect(std::initializer_list<const char*> names) {
        return perform(output_.handleDetectedWards(wards(names), now_));
    }
    /// Returns whether the request has to wait.
    bool hide() {
        const auto effects = output_.setVisibility(false, now_);
        perform(effects);
        return effects.isHideDelayed;
    }
    void show() { perform(output_.setVisibility(true, now_)); }
    void release() { perform(output_.releaseExpiredHolds(now_)); }
    void reset() { perform(output_.reset()); }
    std::string tick() { return perform(output_.deliverCurrentWards(now_)); }
    std::string enterForeground() { return perform(output_.enterForeground(now_)); }
    bool isSelected() { return !output_.currentWards().empty(); }

    WallTime now_{1'700'000'000'000, 0};
    bool isVisible_ = false;
    std::optional<WallTime> releaseAt_;
    DapoOutput output_;
};

TEST_F(Output, HoldsASelectionForFiveSecondsAndEndsItSilently) {
    EXPECT_EQ(detect({"a"}), "-") << "a detection alone delivers nothing";
    EXPECT_TRUE(isVisible_);
    EXPECT_EQ(tick(), "a");
    pass(4999ms);
    EXPECT_TRUE(isVisible_ && isSelected());
    pass(1ms);
    EXPECT_FALSE(isVisible_ || isSelected());
    EXPECT_FALSE(releaseAt_);
    EXPECT_EQ(tick(), "-");
    detect({"a"});
    EXPECT_EQ(tick(), "a") << "the delivery history has gone with the selection";
}

TEST_F(Output, EachDetectionReplacesTheSelectionAndExtendsTheHolds) {
    detect({"a"});
    pass(3s);
    detect({"b", "c"});
    pass(4999ms);
    EXPECT_EQ(tick(), "bc");
    release();  // a sample without detection
    EXPECT_EQ(releaseAt_, now_ + 1ms);
    pass(1ms);
    EXPECT_FALSE(isSelected());
}

TEST_F(Output, DeliversWhenTheSetOfNamesChangesAndOnlyThen) {
    detect({"a", "b"});
    EXPECT_EQ(tick(), "ab");
    EXPECT_EQ(tick(), "-");
    detect({"b", "a"});
    EXPECT_EQ(tick(), "-");
    detect({"b", "a", "a"});
    EXPECT_EQ(tick(), "-");
    detect({"a", "b", "caf\u00e9"});
    EXPECT_EQ(tick(), "abcaf\u00e9");
    detect({"a", "b", "cafe\u0301"});
    EXPECT_EQ(tick(), "-");
    detect({"A", "b", "cafe\u0301"});
    EXPECT_EQ(tick(), "Abcafe\u0301");
}

TEST_F(Output, DeliversAnUnchangedSetAtTheFirstTickAfterTheInterval) {
    struct Case {
        double interval;
        nanoseconds tick;
        int due;  // the number of the tick that delivers again
    };
    for (const auto& [interval, period, due] :
         {Case{3, 1s, 3}, {0.3, 100ms, 3}, {0.3, 1ms, 300}, {2.5, 1s, 3}, {0, 1s, 1}, {1e-9, 1ms, 1}}) {
        reset();
        output_.setUnchangedDeliveryInterval(acceptedUnchangedInterval(interval));
        detect({"a"});
        ASSERT_EQ(tick(), "a");
        for (int i = 1; i <= due; ++i) {
            pass(period);
            detect({"a"});
            EXPECT_EQ(tick(), i == due ? "a" : "-") << interval << " s, tick " << i;
        }
    }
    output_.setUnchangedDeliveryInterval(std::nullopt);
    pass(4s);
    EXPECT_EQ(tick(), "-");
}

TEST_F(Output, AHoldLastsFiveSecondsFromWhenAClockThatWasSetBackIsNoticed) {
    struct Case {
        const char* name;
        std::function<void()> hold;
        std::function<void()> notice;
        nanoseconds lasts;
    };
    for (const auto& [name, hold, notice, lasts] : std::vector<Case>{
             {"sample", [&] { detect({"a"}); }, [&] { release(); }, 5s},
             {"tick", [&] { detect({"a"}); }, [&] { tick(); }, 5s},
             {"refused hide", [&] { show(); }, [&] { hide(); }, 5s},
             {"release", [&] { show(); }, [] {}, 2s + 5s},  // 2 s of its 5 are left
         }) {
        hold();
        pass(3s);
        setClockBack(1h);
        notice();
        pass(lasts - 1ms);
        EXPECT_TRUE(isVisible_) << name;
        pass(1ms);
        EXPECT_FALSE(isVisible_ || isSelected()) << name;
    }
}

TEST_F(Output, ADeliveryThatLiesAheadCountsAsNone) {
    output_.setUnchangedDeliveryInterval(1s);
    detect({"a"});
    tick();
    setClockBack(1h);
    EXPECT_EQ(tick(), "a");
    EXPECT_EQ(tick(), "-");
}

TEST_F(Output, TheForegroundForcesADelivery) {
    detect({"a"});
    tick();
    EXPECT_EQ(enterForeground(), "a") << "at once";
    EXPECT_EQ(tick(), "-");

    output_.setUnchangedDeliveryInterval(100s);
    EXPECT_EQ(enterForeground(), "-") << "at the next tick";
    EXPECT_EQ(tick(), "a");
    EXPECT_EQ(tick(), "-");

    reset();
    enterForeground();
    detect({"a"});
    EXPECT_EQ(tick(), "a");
    EXPECT_EQ(tick(), "-") << "a force that met a changed set is used up";
}

TEST_F(Output, StaysVisibleAsLongAsTheLongerHold) {
    detect({"a"});
    pass(3s);
    show();
    pass(3s);
    EXPECT_TRUE(isVisible_);
    EXPECT_FALSE(isSelected());
    pass(2s);
    EXPECT_FALSE(isVisible_);
}

TEST_F(Output, DelaysAHideWhileTheViewMustShowAndNoLonger) {
    detect({"a"});
    pass(2s);
    EXPECT_TRUE(hide());
    EXPECT_TRUE(isVisible_);
    now_ = now_ + 3s;
    EXPECT_FALSE(hide()) << "the hold is over, though its release is still to come";
    EXPECT_FALSE(isVisible_);
    EXPECT_TRUE(isSelected());
    pass(0s);
    EXPECT_FALSE(isSelected());
}

TEST_F(Output, ResetForgetsAllButIntervalAndForce) {
    output_.setUnchangedDeliveryInterval(1s);
    detect({"a"});
    tick();
    reset();
    EXPECT_FALSE(isVisible_ || isSelected() || releaseAt_);
    detect({"a"});
    EXPECT_EQ(tick(), "a");
    pass(1s);
    EXPECT_EQ(tick(), "a");
}

TEST(OutputIntervals, TakeNumbersThatATimerCanUse) {
    for (const double refused : {0.0, -0.0, -1.0, std::nan(""), INFINITE, -INFINITE}) {
        EXPECT_FALSE(acceptedOutputInterval(refused)) << refused;
    }
    EXPECT_EQ(acceptedOutputInterval(5e-324), 0.001);
    EXPECT_EQ(acceptedOutputInterval(0.25), 0.25);
    for (const double refused : {-1e-9, std::nan(""), -INFINITE})
        EXPECT_FALSE(acceptedUnchangedInterval(refused));
    EXPECT_EQ(acceptedUnchangedInterval(-0.0), 0ns);
    EXPECT_EQ(acceptedUnchangedInterval(INFINITE), nanoseconds::max()) << "never";
    EXPECT_EQ(nanosecondsOf(0.3), 300ms);
    EXPECT_EQ(nanosecondsOf(1.0 / 3), 333'333'333ns);
    EXPECT_EQ(nanosecondsOf(1e300), nanoseconds::max());
}

}  // namespace
}  // namespace oska
