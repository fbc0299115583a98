#include "oska/foundation/network_manager.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>

#include "adapters/virtual/virtual_platform.h"
#include "oska/foundation/network_constants.h"
#include "oska/foundation/server_trust.h"
#include "tests/fakes/output_capture.h"

namespace oska {
namespace {

using platform::HttpErrorKind;
using virtual_world::reply;

constexpr auto TEMPLATE = "http://server/v2/dapo/sectors/{pk}/bundle";

using Answer = std::pair<int, std::string>;

std::string header(const platform::HttpRequest& request, std::string_view name) {
    std::string values;
    for (const auto& entry : request.headers) {
        if (entry.name == name) values += entry.value + ";";
    }
    return values;
}

class NetworkManager : public testing::Test {
protected:
    Answer get(const std::string& url = TEMPLATE, bool forceUpdate = false) {
        std::optional<Answer> answer;
        manager_->getSectorBundle(url, {12, "iOS"}, forceUpdate,
                                  [&](int status, std::string text, SectorIdOsInput in) {
                                      EXPECT_FALSE(answer);
                                      EXPECT_EQ(in.sector_id, 12);
                                      answer = Answer(status, std::move(text));
                                  });
        return settled(answer);
    }

    Answer post(const std::string& url, std::vector<platform::ReceivedForce> batch) {
        std::optional<Answer> answer;
        const auto size = batch.size();
        manager_->postReceivedForces(url, std::move(batch), [&](int status, std::string text, auto input) {
            EXPECT_FALSE(answer);
            EXPECT_EQ(input.size(), size);
            answer = Answer(status, std::move(text));
        });
        return settled(answer);
    }

    Answer settled(std::optional<Answer>& answer) {
        EXPECT_FALSE(answer) << "answered inside the call";
        world_.time().advanceBy(std::chrono::minutes(5));
        EXPECT_TRUE(answer);
        return answer.value_or(Answer());
    }

    platform::HttpRequest lastRequest() { return world_.server().requests().back().request; }

    virtual_world::VirtualPlatform world_{{1'700'000'000'123, 0}};
    std::shared_ptr<OskaNetworkManager> manager_ = std::make_shared<OskaNetworkManager>(world_.platform());
    fakes::OutputCapture output_;
};

TEST_F(NetworkManager, AsksForABundleWithTokenAndWithoutCachesWhenForced) {
    world_.server().onRequest(virtual_world::always(reply(200, "body")));
    EXPECT_EQ(get("http://server/{pk}/{pk}?old=1#part"), (Answer{200, "body"}));
    auto request = lastRequest();
    EXPECT_EQ(request.url.absoluteString(), "http://server/12/12?operating_system=iOS#part");
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.timeout, std::chrono::seconds(60));
    EXPECT_EQ(header(request, "Authorization"), "Bearer token;");
    EXPECT_EQ(header(request, "Content-Type"), "application/json;");
    EXPECT_EQ(header(request, "Content-Length") + header(request, "Cache-Control"), "");
    EXPECT_EQ(output_.take().front(),
              "(QuenloResource) getSectorBundle : http://server/12/12?operating_system=iOS#part");

    world_.time().advanceTo({1'800'000'000'123, 0});
    get(TEMPLATE, true);
    request = lastRequest();
    EXPECT_EQ(request.url.absoluteString(),
              "http://server/v2/dapo/sectors/12/bundle?operating_system=iOS&_rt=1800000000123");
    EXPECT_EQ(request.cachePolicy, platform::HttpCachePolicy::reloadIgnoringLocalCache);
    EXPECT_EQ(header(request, "Cache-Control") + header(request, "Pragma"), "no-cache;no-cache;");
}

TEST_F(NetworkManager, PostsABatchAsOneArray) {
    world_.server().onRequest(virtual_world::always(reply(204, "")));
    EXPECT_EQ(post("http://server/rfds", {{5, {{"b/\"", -60.5}, {"a", -70}}}, {6, {}}}), (Answer{204, ""}));
    const auto request = lastRequest();
    const std::string body =
        R"([{"mobile_time":5,"rfs":{"a":-70,"b\/\"":-60.5}},{"mobile_time":6,"rfs":{}}])";
    EXPECT_EQ(request.body, body);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(header(request, "Content-Length"), std::to_string(body.size()) + ";");
    EXPECT_EQ(header(request, "Authorization"), "Bearer token;");
}

TEST_F(NetworkManager, SendsNothingWithoutUrlTokenOrBody) {
    const Answer getFailed{406, "Invalid URL or failed to get token"};
    const Answer postFailed{406, "Invalid URL or failed to encode JSON"};
    EXPECT_EQ(get("http://h st/{pk}"), getFailed);
    EXPECT_EQ(post("", {}), postFailed);
    output_.take();
    EXPECT_EQ(post("http://server/", {{1, {{"a", std::nan("")}}}}), postFailed);
    const auto lines = output_.take();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0].starts_with("Error encoding JSON: "));
    world_.auth().setResult(platform::TokenFailure{});
    EXPECT_EQ(get(), getFailed);
    EXPECT_EQ(post("http://server/", {}), postFailed);
    EXPECT_TRUE(world_.server().requests().empty());
}

TEST_F(NetworkManager, TurnsEveryOutcomeIntoAStatusAndAText) {
    const std::vector<std::pair<virtual_world::ScriptedAnswer, Answer>> table{
        {reply(200, std::nullopt), {200, ""}},
        {reply(299, "x"), {299, "x"}},
        {reply(200, "caf\xC3"), {200, ""}},
        {reply(404, "secret"), {404, "HTTP status 404 (Not Found)"}},
        {reply(302, ""), {302, "HTTP status 302 (Found)"}},
        {virtual_world::silence(), {500, "Timed out"}},
        {virtual_world::failureAfter(200, HttpErrorKind::timedOut, "late"), {200, "Timed out"}},
        {virtual_world::failureAfter(200, HttpErrorKind::connectionLost, "cut off"), {200, "cut off"}},
        {reply(200, std::string(1 << 20, 'x')), {200, std::string(1 << 20, 'x')}},
        {reply(200, std::string((1 << 20) + 1, 'x')), {200, "The reply is larger than the session allows."}},
        {virtual_world::failure(HttpErrorKind::cannotConnect, "refused"), {500, "refused"}},
        {virtual_world::nothing(), {500, "Request failed"}},
        {virtual_world::replyBeyondHttp("x"), {500, "Request failed"}},
    };
    for (const auto& [answer, expected] : table) {
        world_.server().onRequest(virtual_world::always(answer));
        EXPECT_EQ(get(), expected);
    }
}

TEST_F(NetworkManager, EndsAfterFiveSecondsWhateverTrickles) {
    world_.server().onRequest(virtual_world::always(reply(200, "late").delayedBy(std::chrono::seconds(6))));
    EXPECT_EQ(get(), (Answer{500, "Timed out"}));
}

TEST_F(NetworkManager, UsesTheSessionsOfEachPoolInTurn) {
    for (int i = 0; i < 4; ++i) get();
    post("http://server/", {});
    get();
    std::vector<std::size_t> sessions;
    for (const auto& seen : world_.server().requests()) sessions.push_back(seen.session);
    const auto common = sessions.at(0);
    const auto rec = sessions.at(4);
    EXPECT_EQ(sessions, (std::vector<std::size_t>{common, common + 1, common + 2, common, rec, common + 1}));
    EXPECT_TRUE(rec < common || rec > common + 2);
}

using TokenAnswer = std::function<void(platform::TokenResult)>;

struct FaultyTokens : platform::QuenloAuthManager {
    void getAccessToken(bool, TokenAnswer answer) override { behave(answer); }
    std::function<void(const TokenAnswer&)> behave;
};

class FaultyTokenProvider : public NetworkManager {
protected:
    void useProvider(std::function<void(const TokenAnswer&)> behaviour) {
        const auto provider = std::make_shared<FaultyTokens>();
        provider->behave = std::move(behaviour);
        auto platform = world_.platform();
        platform.auth = provider;
        manager_ = std::make_shared<OskaNetworkManager>(platform);
        world_.server().onRequest(virtual_world::always(reply(200, "")));
    }
};

TEST_F(FaultyTokenProvider, IsTakenAtItsFirstAnswer) {
    const std::pair<std::function<void(const TokenAnswer&)>, int> table[] = {
        {[](auto& answer) { answer("cached"), answer("fresh"); }, 200},
        {[](auto& answer) { answer(platform::TokenFailure{}), answer("fresh"); }, 406},
        {[](auto&) { throw 1; }, 406},
        {[](auto& answer) { answer("cached"), throw 1; }, 200},
        {[](auto& answer) { std::jthread other(answer, "cached"), another(answer, "cached"); }, 200},
    };
    for (const auto& [behaviour, status] : table) {
        useProvider(behaviour);
        const auto expected = world_.server().requests().size() + (status == 200 ? 2 : 0);
        EXPECT_EQ(get().first, status);
        EXPECT_EQ(post("http://server/", {{1, {}}}).first, status);
        ASSERT_EQ(world_.server().requests().size(), expected);
        EXPECT_EQ(header(lastRequest(), "Authorization"), "Bearer cached;");
    }
}

TEST_F(FaultyTokenProvider, KeepsEightUploadsWaitingWhenItNeverAnswers) {
    std::vector<TokenAnswer> kept;
    std::vector<std::string> ended;
    for (const bool keepsAnswers : {false, true}) {
        useProvider([&](auto& answer) { kept.resize(kept.size() + keepsAnswers, answer); });
        ended.clear();
        for (std::int64_t i = 0; i < 10; ++i) {
            manager_->postReceivedForces("http://server/", {{i, {}}}, [&](int status, auto, auto batch) {
                ended.push_back(std::to_string(batch.at(0).mobile_time) + " " + std::to_string(status));
            });
        }
        EXPECT_TRUE(ended.empty()) << "answered inside the call";
        world_.time().advanceBy(std::chrono::minutes(5));
        EXPECT_EQ(ended, (std::vector<std::string>{"0 406", "1 406"}));
        manager_.reset();
        for (const auto& answer : kept) answer("late");
        world_.time().advanceBy(std::chrono::minutes(5));
        ASSERT_EQ(ended.size(), 10u);
        EXPECT_EQ(ended.back(), keepsAnswers ? "9 200" : "9 406");
    }
}

TEST(ServerTrust, AcceptsTheConfiguredHostAloneAndSaysSo) {
    using enum platform::ChallengeDisposition;
    using Challenge = platform::AuthenticationChallenge;
    fakes::OutputCapture output;
    OskaOnPremiseServerTrustDelegate delegate;
    EXPECT_EQ(delegate.didReceiveChallenge({.host = "localhost"}), performDefaultHandling) << "not enabled";
    OskaOnPremiseNetworkConstants::setBaseURL("https://10.0.0.2:8443");
    EXPECT_EQ(delegate.trustBasis("10.0.0.2"), "https://10.0.0.2:8443");
    EXPECT_EQ(delegate.trustBasis("10.0.0.3"), std::nullopt);
    const Challenge refused[] = {{.host = "10.0.0.3"},
                                 {.method = Challenge::Method::other, .host = "10.0.0.2"},
                                 {.host = "10.0.0.2", .hasServerTrust = false}};
    for (const auto& challenge : refused)
        EXPECT_EQ(delegate.didReceiveChallenge(challenge), performDefaultHandling);
    EXPECT_TRUE(output.take().empty());
    EXPECT_EQ(delegate.didReceiveChallenge({.host = "10.0.0.2"}), useCredential);
    EXPECT_EQ(output.take(),
              (std::vector<std::string>{
                  "(OskaOnPremiseServerTrustDelegate) accepting server trust for on-premise host= "
                  "10.0.0.2"}));
    OskaOnPremiseNetworkConstants::setBaseURL("no url");
    EXPECT_EQ(delegate.didReceiveChallenge({.host = "10.0.0.2"}), performDefaultHandling);
}

}  // namespace
}  // namespace oska
