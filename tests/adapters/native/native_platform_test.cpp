#include "adapters/native/native_platform.h"

#include <atomic>
#include <thread>

#include "tests/adapters/native/native_http_fixture.h"

namespace oska::native {
namespace {

TEST(NativePlatform, SaysWhatTheHostLeftOut) {
    const NativePlatform native;
    const auto platform = native.platform();
    EXPECT_EQ(platform.bluetooth->authorization(), platform::BluetoothAuthorizationState::allowedAlways);
    platform::TokenResult token;
    platform.auth->getAccessToken(true, [&](platform::TokenResult result) { token = std::move(result); });
    EXPECT_EQ(std::get<platform::TokenFailure>(token).reason, platform::TokenFailureReason::notSignedIn);
    const auto availability = platform.makeRFDGenerator()->checkIsAvailableRfd();
    EXPECT_FALSE(availability.available);
    EXPECT_EQ(availability.message, "no radio is attached to the platform");
}

TEST(NativePlatform, LetsThoseWhoAskedHearOfTheEndBeforeTheQueueStops) {
    LoopbackServer server([](WireConnection& connection) { connection.awaitHangUp(); });
    NativePlatform native;
    const auto platform = native.platform();
    const auto session = platform.http->makeSession({}, nullptr);
    int cancelled = 0;
    for (int i = 0; i < 3; ++i) {
        session->send(get(server.url("/")), [&](const HttpOutcome& outcome) {
            EXPECT_EQ(kindOf(outcome), HttpErrorKind::cancelled);
            EXPECT_FALSE(platform.mainQueue->isMainThread());
            platform.mainQueue->async([&] { ++cancelled; });
        });
    }
    for (int i = 0; i < 2; ++i) native.shutDown();
    EXPECT_EQ(cancelled, 3);
    platform.mainQueue->async([] { ADD_FAILURE() << "the queue has stopped"; });
    native.runLoop().pump();
}

TEST(CurlHttpSessionFactory, MayBeDestroyedInsideACompletionAndLongBeforeItsSessions) {
    auto factory = std::make_unique<CurlHttpSessionFactory>();
    auto session = factory->makeSession({}, nullptr);
    const auto outcomeThat = [&](const std::function<void()>& destroys) {
        std::promise<HttpOutcome> ended;
        session.get()->send(get("http:///"), [&](const HttpOutcome& outcome) {
            destroys();
            ended.set_value(outcome);
        });
        return kindOf(ended.get_future().get());
    };
    EXPECT_EQ(outcomeThat([&] { factory.reset(); }), HttpErrorKind::unsupportedUrl);
    EXPECT_EQ(kindOf(fetch(*session, get("http://127.0.0.1/"))), HttpErrorKind::cancelled);
    // The last user of the network, too, may be destroyed on the network thread.
    EXPECT_EQ(outcomeThat([&] { session.reset(); }), HttpErrorKind::cancelled);
}

TEST(CurlHttpSessionFactory, TakesRequestsFromManyThreadsWhileItShutsDown) {
    LoopbackServer server(ok);
    constexpr int THREADS = 4;
    constexpr int REQUESTS = 50;
    std::atomic<int> ended{0};
    CurlHttpSessionFactory factory;
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i) {
        threads.emplace_back([&] {
            const auto session = factory.makeSession({}, nullptr);
            for (int sent = 0; sent < REQUESTS; ++sent) {
                session->send(get(server.url("/")), [&](const HttpOutcome& outcome) {
                    EXPECT_TRUE(outcome.body == "ok" || kindOf(outcome) == HttpErrorKind::cancelled);
                    ++ended;
                });
            }
        });
    }
    while (ended < REQUESTS) std::this_thread::yield();
    factory.shutDown();
    for (auto& thread : threads) thread.join();
    factory.shutDown();  // waits for what was sent after the first one
    EXPECT_EQ(ended, THREADS * REQUESTS);
}

}  // namespace
}  // namespace oska::native
