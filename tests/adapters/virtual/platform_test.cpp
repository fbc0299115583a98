#include "adapters/virtual/virtual_platform.h"

#include <gtest/gtest.h>

namespace oska::virtual_world {
namespace {

using platform::BluetoothAuthorizationState;
using platform::TokenFailure;
using platform::TokenResult;
using namespace std::chrono_literals;

TEST(VirtualPlatform, EndsEveryRequestAndJobWithItsWorld) {
    platform::Platform installed;
    std::unique_ptr<platform::HttpSession> session;
    std::optional<platform::HttpErrorKind> error;
    auto job = std::make_shared<int>();
    const std::weak_ptr watch = job;
    {
        VirtualPlatform world({1000, 0});
        installed = world.platform();
        world.time().advanceBy(5ms);
        EXPECT_EQ(installed.clock->now(), (platform::WallTime{1005, 0}));
        EXPECT_EQ(installed.bluetooth->authorization(), BluetoothAuthorizationState::allowedAlways);
        world.bluetooth().set(BluetoothAuthorizationState::denied);
        EXPECT_EQ(installed.bluetooth->authorization(), BluetoothAuthorizationState::denied);
        EXPECT_TRUE(installed.makeRFDGenerator());
        session = installed.http->makeSession({}, nullptr);
        session->send({.url = Url::parse("http://host/").value()},
                      [&](platform::HttpOutcome outcome) { error = outcome.error.value().kind; });
        installed.mainQueue->async([job = std::move(job)] {});
    }
    EXPECT_EQ(error, platform::HttpErrorKind::cancelled);
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(installed.makeRFDGenerator(), nullptr);
}

TEST(FixedToken, CompletesInsideTheCallOrInAJobAndFailsWithAStoppedQueue) {
    const auto time = std::make_shared<VirtualMainQueue>(platform::WallTime{});
    FixedToken token(std::string("one"));
    std::vector<TokenResult> heard;
    const auto ask = [&] {
        token.getAccessToken(true, [&](TokenResult result) { heard.push_back(std::move(result)); });
    };
    ask();
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_EQ(std::get<std::string>(heard[0]), "one");

    token.answerOn(time);
    token.setResult(TokenFailure{platform::TokenFailureReason::notSignedIn, 401, "signed out"});
    ask();
    EXPECT_EQ(heard.size(), 1U);
    time->runDue();
    ASSERT_EQ(heard.size(), 2U);
    EXPECT_EQ(std::get<TokenFailure>(heard[1]).statusCode, 401);

    ask();
    time->stop();
    ASSERT_EQ(heard.size(), 3U);
    EXPECT_EQ(std::get<TokenFailure>(heard[2]).reason, platform::TokenFailureReason::unknown);
}

}  // namespace
}  // namespace oska::virtual_world
