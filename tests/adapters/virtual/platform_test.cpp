#include "adapters/virtual/virtual_platform.h"

#include "tests/contract/main_queue_contract.h"

namespace oska::virtual_world {
namespace {

using platform::TokenFailure;
using platform::TokenResult;

TEST(VirtualPlatform, EndsEveryRequestAndJobWithItsWorld) {
    auto world = std::make_unique<VirtualPlatform>(platform::WallTime{1000, 0});
    const auto installed = world->platform();
    const auto session = installed.http->makeSession({}, nullptr);
    std::optional<platform::HttpErrorKind> error;
    session->send({.url = Url::parse("http://host/").value()},
                  [&](platform::HttpOutcome outcome) { error = outcome.error.value().kind; });
    bool isDestroyed = false;
    installed.mainQueue->async([end = platform::whenDestroyed([&] { isDestroyed = true; })] {});
    world.reset();
    EXPECT_EQ(error, platform::HttpErrorKind::cancelled);
    EXPECT_TRUE(isDestroyed);
}

TEST(FixedToken, CompletesInsideTheCallOrInAJobAndFailsWithAStoppedQueue) {
    const auto time = std::make_shared<VirtualMainQueue>(platform::WallTime{});
    FixedToken token(std::string("one"));
    std::vector<TokenResult> heard;
    const auto ask = [&] {
        token.getAccessToken(true, [&](TokenResult result) { heard.push_back(std::move(result)); });
    };
    ask();
    EXPECT_EQ(std::get<std::string>(heard.at(0)), "one");
    token.answerOn(time);
    ask();
    EXPECT_EQ(heard.size(), 1U);
    time->runDue();
    ASSERT_EQ(heard.size(), 2U);
    ask();
    time->stop();
    EXPECT_EQ(std::get<TokenFailure>(heard.at(2)).reason, platform::TokenFailureReason::unknown);
}

}  // namespace
}  // namespace oska::virtual_world
