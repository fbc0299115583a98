#include "adapters/virtual/fixed_token.h"

#include <gtest/gtest.h>

#include <vector>

#include "adapters/virtual/virtual_main_queue.h"

namespace oska::virtual_world {
namespace {

using platform::TokenFailure;
using platform::TokenResult;

TEST(FixedToken, AnswersInsideTheCallOrInAJob) {
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
    token.setResult(TokenFailure{platform::TokenFailureReason::notSignedIn, 401, "who?"});
    ask();
    EXPECT_EQ(heard.size(), 1U);
    time->runDue();
    ASSERT_EQ(heard.size(), 2U);
    EXPECT_EQ(std::get<TokenFailure>(heard[1]).statusCode, 401);
}

TEST(FixedToken, AStoppedQueueFailsTheRequest) {
    const auto time = std::make_shared<VirtualMainQueue>(platform::WallTime{});
    FixedToken token(std::string("one"));
    token.answerOn(time);
    std::vector<TokenResult> heard;
    token.getAccessToken(true, [&](TokenResult result) { heard.push_back(std::move(result)); });
    time->stop();
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_EQ(std::get<TokenFailure>(heard[0]).reason, platform::TokenFailureReason::unknown);
}

}  // namespace
}  // namespace oska::virtual_world
