#include "adapters/native/native_platform.h"

#include "tests/adapters/native/native_http_fixture.h"

namespace oska::native {
namespace {

LoopbackServer::Handler silence() {
    return [](WireConnection& connection) { connection.awaitHangUp(); };
}

TEST(NativePlatform, BringsEveryPartAndSaysWhatTheHostLeftOut) {
    NativePlatform native;
    const auto platform = native.platform();
    EXPECT_TRUE(platform.mainQueue && platform.clock && platform.http);
    EXPECT_EQ(platform.bluetooth->authorization(), platform::BluetoothAuthorizationState::allowedAlways);

    std::optional<platform::TokenResult> token;
    platform.auth->getAccessToken(true, [&](platform::TokenResult result) { token = std::move(result); });
    ASSERT_TRUE(token && std::holds_alternative<platform::TokenFailure>(*token));
    EXPECT_EQ(std::get<platform::TokenFailure>(*token).reason, platform::TokenFailureReason::notSignedIn);

    const auto availability = platform.makeRFDGenerator()->checkIsAvailableRfd();
    EXPECT_FALSE(availability.available);
    EXPECT_EQ(availability.message, "no radio is attached to the platform");
}

TEST(NativePlatform, LetsThoseWhoAskedHearOfTheEndBeforeTheQueueStops) {
    LoopbackServer server(silence());
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
    native.shutDown();
    EXPECT_EQ(cancelled, 3);
    native.shutDown();
    platform.mainQueue->async([] { ADD_FAILURE() << "the queue has stopped"; });
    native.runLoop().pump();
}

TEST(CurlHttpSessionFactory, MayBeDestroyedInsideACompletionAndLongBeforeItsSessions) {
    LoopbackServer server(silence());
    auto factory = std::make_unique<CurlHttpSessionFactory>();
    auto session = factory->makeSession({}, nullptr);
    std::promise<void> gone;
    session->send(get("http:///"), [&](const HttpOutcome&) {
        factory.reset();
        gone.set_value();
    });
    gone.get_future().get();
    EXPECT_EQ(kindOf(fetch(*session, get(server.url("/")))), HttpErrorKind::cancelled);
    // The last user of the network may be destroyed on the network thread.
    std::promise<void> ended;
    auto* last = session.get();
    last->send(get(server.url("/")), [&](const HttpOutcome&) {
        session.reset();
        ended.set_value();
    });
    ended.get_future().get();
    EXPECT_EQ(server.connections(), 0U);
}

TEST(CurlHttpSessionFactory, TakesRequestsFromManyThreadsWhileItShutsDown) {
    LoopbackServer server([](const WireRequest&) { return wireReply(200, "ok"); });
    constexpr int THREADS = 4;
    constexpr int REQUESTS = 50;
    std::atomic<int> ended{0};
    CurlHttpSessionFactory factory;
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i) {
        threads.emplace_back([&] {
            auto session = factory.makeSession({}, nullptr);
            for (int sent = 0; sent < REQUESTS; ++sent) {
                if (sent % 10 == 0) session = factory.makeSession({}, nullptr);
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
    factory.shutDown();
    EXPECT_EQ(ended, THREADS * REQUESTS);
}

}  // namespace
}  // namespace oska::native
