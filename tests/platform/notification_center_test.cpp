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

TEST_F(NotificationCenterTest, OneThatComesDuringAPostIsNotCalledForItNorOneThatEnds) {
    std::unique_ptr<Observation> late;
    std::unique_ptr<Observation> itself;
    std::unique_ptr<Observation> victim;
    itself = center_.addObserver(willEnterForeground, [&] {
        late = observe("late");
        victim.reset(), itself.reset();
    });
    victim = observe("victim");
    EXPECT_EQ(post(), "");
    EXPECT_EQ(post(), "late");
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
