#include "oska/platform/notification_center.h"

#include <gtest/gtest.h>

#include <string>

namespace oska::platform {
namespace {

using enum Notification;

class NotificationCenterTest : public testing::Test {
protected:
    std::unique_ptr<Observation> observe(std::string name) {
        return center_.addObserver(willEnterForeground, [this, name = std::move(name)] { heard_ += name; });
    }
    std::string post() {
        center_.post(willEnterForeground);
        return std::exchange(heard_, "");
    }

    NotificationCenter center_;
    std::string heard_;
};

TEST_F(NotificationCenterTest, TellsObserversAtOnceInTheOrderOfRegistrationUntilTheyEnd) {
    EXPECT_EQ(post(), "");
    auto first = observe("a");
    const auto second = observe("b");
    const auto again = observe("a");
    EXPECT_EQ(post(), "aba");
    first.reset();
    EXPECT_EQ(post(), "ba");
}

TEST_F(NotificationCenterTest, OneThatComesDuringAPostIsNotCalledForIt) {
    std::unique_ptr<Observation> late;
    const auto adding = center_.addObserver(willEnterForeground, [&] {
        if (!late) late = observe("late");
    });
    EXPECT_EQ(post(), "");
    EXPECT_EQ(post(), "late");
}

TEST_F(NotificationCenterTest, OneThatEndsDuringAPostIsNotCalledAnyMore) {
    std::unique_ptr<Observation> itself;
    auto victim = std::unique_ptr<Observation>();
    itself = center_.addObserver(willEnterForeground, [&] { victim.reset(), itself.reset(); });
    victim = observe("victim");
    EXPECT_EQ(post() + post(), "");
}

TEST_F(NotificationCenterTest, AnObserverMayPost) {
    bool isNested = false;
    const auto posting = center_.addObserver(willEnterForeground, [&] {
        if (!std::exchange(isNested, true)) center_.post(willEnterForeground);
    });
    const auto other = observe("x");
    EXPECT_EQ(post(), "xx");
}

}  // namespace
}  // namespace oska::platform
