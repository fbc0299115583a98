#include "adapters/virtual/virtual_platform.h"

#include <gtest/gtest.h>

namespace oska::virtual_world {
namespace {

using platform::BluetoothAuthorizationState;
using namespace std::chrono_literals;

TEST(VirtualPlatform, IsWhatTheKitFindsInstalled) {
    VirtualPlatform world({1000, 0});
    platform::install(world.platform());
    const auto& platform = platform::current();

    world.time().advanceBy(5ms);
    EXPECT_EQ(platform.clock->now(), (platform::WallTime{1005, 0}));
    EXPECT_TRUE(platform.mainQueue->isMainThread());
    EXPECT_EQ(platform.bluetooth->authorization(), BluetoothAuthorizationState::allowedAlways);
    world.bluetooth().set(BluetoothAuthorizationState::denied);
    EXPECT_EQ(platform.bluetooth->authorization(), BluetoothAuthorizationState::denied);
    const auto generator = platform.makeRFDGenerator();
    EXPECT_EQ(world.source().made(), 1U);
}

TEST(VirtualPlatform, EndsEveryRequestAndJobWithItsWorld) {
    platform::Platform installed;
    std::unique_ptr<platform::HttpSession> session;
    std::optional<platform::HttpErrorKind> error;
    auto job = std::make_shared<int>();
    const std::weak_ptr watch = job;
    {
        VirtualPlatform world({});
        installed = world.platform();
        session = installed.http->makeSession({}, nullptr);
        platform::HttpRequest request;
        request.url = Url::parse("http://host/").value();
        session->send(request, [&](platform::HttpOutcome outcome) { error = outcome.error.value().kind; });
        installed.mainQueue->async([job = std::move(job)] {});
    }
    EXPECT_EQ(error, platform::HttpErrorKind::cancelled);
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(installed.makeRFDGenerator(), nullptr);
}

}  // namespace
}  // namespace oska::virtual_world
