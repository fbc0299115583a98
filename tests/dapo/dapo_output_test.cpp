#include "oska/dapo/dapo_output.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace oska {
namespace {

using namespace std::chrono_literals;
using platform::WallTime;
using std::chrono::nanoseconds;

constexpr auto INFINITE = std::numeric_limits<double>::infinity();

/// Runs an output on a clock of the test's, and carries out what it asks for.
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
            release();
        }
        now_ = end;
    }

    /// What is scheduled comes as if it had not been.
    void setClockBack(nanoseconds span) {
        now_ = now_ + -span;
        if (releaseAt_) releaseAt_ = *releaseAt_ + -span;
    }

    std::string detect(const std::vector<std::string>& names) {
        std::vector<DapoWard> wards;
        for (const auto& name : names) wards.push_back({.id = std::ssize(wards), .name = name});
        return perform(output_.handleDetectedWards(std::move(wards), now_));
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

TEST_F(Output, HoldsASelectionForFiveSecondsAfterTheLastDetectionAndEndsItSilently) {
    EXPECT_EQ(detect({"a"}), "-") << "a detection alone delivers nothing";
    EXPECT_EQ(tick(), "a");
    pass(3s);
    detect({"b", "c"});
    pass(4999ms);
    EXPECT_EQ(tick(), "bc");
    release();  // a sample without detection
    EXPECT_EQ(releaseAt_, now_ + 1ms);
    EXPECT_TRUE(isVisible_ && isSelected());
    pass(1ms);
    EXPECT_FALSE(isVisible_ || isSelected() || releaseAt_);
    EXPECT_EQ(tick(), "-");
    detect({"b", "c"});
    EXPECT_EQ(tick(), "bc") << "the delivery history has gone with the selection";
    reset();
    EXPECT_FALSE(isVisible_ || isSelected() || releaseAt_);
}

TEST_F(Output, DeliversWhenTheSetOfNamesChangesAndOnlyThen) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"a", "b"}, "ab"},
        {{"b", "a"}, "-"},
        {{"b", "a", "a"}, "-"},
        {{"a", "b", "caf\u00e9"}, "abcaf\u00e9"},
        {{"a", "b", "cafe\u0301"}, "-"},
        {{"A", "b", "cafe\u0301"}, "Abcafe\u0301"},
    };
    for (const auto& [detected, delivered] : cases) {
        detect(detected);
        EXPECT_EQ(tick(), delivered);
    }
}

TEST_F(Output, DeliversAnUnchangedSetAtTheFirstTickAfterTheInterval) {
    for (const auto& [interval, period, due] : std::vector<std::tuple<double, nanoseconds, int>>{
             {3, 1s, 3}, {0.3, 100ms, 3}, {0.3, 1ms, 300}, {2.5, 1s, 3}, {0, 1s, 1}}) {
        output_.setUnchangedDeliveryInterval(acceptedUnchangedInterval(interval));
        reset();
        detect({"a"});
        ASSERT_EQ(tick(), "a") << "a reset forgets what was delivered, and keeps the interval";
        for (int i = 1; i <= due; ++i) {
            pass(period);
            detect({"a"});
            EXPECT_EQ(tick(), i == due ? "a" : "-") << interval << " s, tick " << i;
        }
    }
    output_.setUnchangedDeliveryInterval(1s);
    setClockBack(1h);
    EXPECT_EQ(tick(), "a") << "a delivery that lies ahead counts as none";
    EXPECT_EQ(tick(), "-");
    output_.setUnchangedDeliveryInterval(std::nullopt);
    pass(4s);
    EXPECT_EQ(tick(), "-");
}

TEST_F(Output, AHoldLastsFiveSecondsFromWhenAClockThatWasSetBackIsNoticed) {
    for (const bool ticks : {true, false}) {
        detect({"a"});
        pass(3s);
        setClockBack(1h);
        if (ticks) tick();
        pass((ticks ? 0s : 2s) + 4999ms);  // else the release notices, with the 2 s of its 5 that are left
        EXPECT_TRUE(isVisible_ && isSelected()) << ticks;
        pass(1ms);
        EXPECT_FALSE(isVisible_ || isSelected()) << ticks;
    }
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

    enterForeground();
    detect({"b"});
    EXPECT_EQ(tick(), "b");
    EXPECT_EQ(tick(), "-") << "a force that met a changed set is used up";
}

TEST_F(Output, StaysVisibleAsLongAsTheLongerHoldAndDelaysAHideUntilThen) {
    detect({"a"});
    pass(3s);
    show();
    pass(3s);
    EXPECT_TRUE(hide());
    EXPECT_TRUE(isVisible_ && !isSelected());
    pass(2s);
    EXPECT_FALSE(isVisible_);
    detect({"a"});
    now_ = now_ + 5s;
    EXPECT_FALSE(hide()) << "the hold is over, though its release is still to come";
    EXPECT_TRUE(!isVisible_ && isSelected());
    pass(0s);
    EXPECT_FALSE(isSelected());
}

TEST(OutputIntervals, TakeNumbersThatATimerCanUse) {
    for (const double refused : {-0.0, -1.0, std::nan(""), INFINITE}) {
        EXPECT_FALSE(acceptedOutputInterval(refused)) << refused;
    }
    EXPECT_EQ(acceptedOutputInterval(5e-324), 0.001);
    for (const double refused : {-1e-9, std::nan("")}) EXPECT_FALSE(acceptedUnchangedInterval(refused));
    EXPECT_EQ(acceptedUnchangedInterval(-0.0), 0ns);
    EXPECT_EQ(acceptedUnchangedInterval(INFINITE), nanoseconds::max()) << "never";
    EXPECT_EQ(nanosecondsOf(1.0 / 3), 333'333'333ns);
    EXPECT_EQ(nanosecondsOf(1e300), nanoseconds::max());
}

}  // namespace
}  // namespace oska
