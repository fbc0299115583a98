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

/// Method, URL and headers in one text.
std::string textOf(const platform::HttpRequest& request) {
    std::string text = request.method + " " + request.url.absoluteString();
    for (const auto& [name, value] : request.headers) text += ", " + name + ": " + value;
    return text;
}

using TokenAnswer = std::function<void(platform::TokenResult)>;

struct FaultyTokens : platform::QuenloAuthManager {
    void getAccessToken(bool, TokenAnswer answer) override { behave(answer); }
    std::function<void(const TokenAnswer&)> behave;
};

class NetworkManager : public testing::Test {
protected:
    NetworkManager() { answerWith(reply(200, "")); }

    void answerWith(const virtual_world::ScriptedAnswer& answer) {
        world_.server().onRequest(virtual_world::always(answer));
    }

    auto noting() {
        return
            [this](int status, const std::string& text, const auto&) { answers_.emplace_back(status, text); };
    }

    Answer get(const std::string& url = TEMPLATE, bool forceUpdate = false) {
        manager_->getSectorBundle(url, {12, "iOS"}, forceUpdate, noting());
        return settled();
    }

    Answer post(const std::string& url, std::vector<platform::ReceivedForce> batch) {
        manager_->postReceivedForces(url, std::move(batch), noting());
        return settled();
    }

    Answer settled() {
        EXPECT_TRUE(answers_.empty()) << "answered inside the call";
        world_.time().advanceBy(std::chrono::minutes(5));
        EXPECT_EQ(answers_.size(), 1u);
        return std::exchange(answers_, {}).at(0);
    }

    platform::HttpRequest lastRequest() { return world_.server().requests().back().request; }

    void useProvider(std::function<void(const TokenAnswer&)> behaviour) {
        const auto provider = std::make_shared<FaultyTokens>();
        provider->behave = std::move(behaviour);
        auto platform = world_.platform();
        platform.auth = provider;
        manager_ = std::make_shared<OskaNetworkManager>(platform);
    }

    virtual_world::VirtualPlatform world_{{1'700'000'000'123, 0}};
    std::shared_ptr<OskaNetworkManager> manager_ = std::make_shared<OskaNetworkManager>(world_.platform());
    fakes::OutputCapture output_;
    std::vector<Answer> answers_;
};

TEST_F(NetworkManager, SendsTheTokenAndForcedNoCaches) {
    const std::string json = ", Content-Type: application/json";
    const std::string token = ", Authorization: Bearer token";
    get("http://server/{pk}/{pk}?old=1#part");
    EXPECT_EQ(textOf(lastRequest()), "GET http://server/12/12?operating_system=iOS#part" + json + token);
    EXPECT_EQ(lastRequest().timeout, std::chrono::seconds(60));
    EXPECT_EQ(output_.take().front(),
              "(QuenloResource) getSectorBundle : http://server/12/12?operating_system=iOS#part");

    world_.time().advanceTo({1'800'000'000'123, 0});
    get(TEMPLATE, true);
    EXPECT_EQ(textOf(lastRequest()),
              "GET http://server/v2/dapo/sectors/12/bundle?operating_system=iOS&_rt=1800000000123" + json +
                  token + ", Cache-Control: no-cache, Pragma: no-cache");
    EXPECT_EQ(lastRequest().cachePolicy, platform::HttpCachePolicy::reloadIgnoringLocalCache);

    post("http://server/rfds", {{5, {{"b/\"", -60.5}, {"a", -70}}}, {6, {}}});
    const std::string body =
        R"([{"mobile_time":5,"rfs":{"a":-70,"b\/\"":-60.5}},{"mobile_time":6,"rfs":{}}])";
    EXPECT_EQ(lastRequest().body, body);
    EXPECT_EQ(textOf(lastRequest()),
              "POST http://server/rfds" + json + ", Content-Length: " + std::to_string(body.size()) + token);
}

TEST_F(NetworkManager, SendsNothingWithoutUrlTokenOrBody) {
    const Answer getFailed{406, "Invalid URL or failed to get token"};
    const Answer postFailed{406, "Invalid URL or failed to encode JSON"};
    EXPECT_EQ(get("http://h st/{pk}"), getFailed);
    EXPECT_EQ(post("", {}), postFailed);
    output_.take();
    EXPECT_EQ(post("http://server/", {{1, {{"a", std::nan("")}}}}), postFailed);
    EXPECT_TRUE(output_.take().at(0).starts_with("Error encoding JSON: "));
    world_.auth().setResult(platform::TokenFailure{});
    EXPECT_EQ(get(), getFailed);
    EXPECT_EQ(post("http://server/", {}), postFailed);
    EXPECT_TRUE(world_.server().requests().empty());
}

TEST_F(NetworkManager, TurnsEveryOutcomeIntoAStatusAndAText) {
    const std::string longest(1 << 20, 'x');
    const std::vector<std::pair<virtual_world::ScriptedAnswer, Answer>> table{
        {reply(200, std::nullopt), {200, ""}},
        {reply(299, "x"), {299, "x"}},
        {reply(200, "caf\xC3"), {200, ""}},
        {reply(404, "secret"), {404, "HTTP status 404 (Not Found)"}},
        {reply(200, "late").delayedBy(std::chrono::seconds(6)), {500, "Timed out"}},
        {virtual_world::failureAfter(200, HttpErrorKind::timedOut, "late"), {200, "Timed out"}},
        {virtual_world::failureAfter(200, HttpErrorKind::connectionLost, "cut off"), {200, "cut off"}},
        {reply(200, longest), {200, longest}},
        {reply(200, longest + "x"), {200, "The reply is larger than the session allows."}},
        {virtual_world::nothing(), {500, "Request failed"}},
        {virtual_world::replyBeyondHttp("x"), {500, "Request failed"}},
    };
    for (const auto& [answer, expected] : table) {
        answerWith(answer);
        EXPECT_EQ(get(), expected);
    }
}

TEST_F(NetworkManager, UsesTheSessionsOfEachPoolInTurn) {
    for (int i = 0; i < 4; ++i) get();
    post("http://server/", {});
    get();
    std::vector<std::size_t> sessions;
    for (const auto& seen : world_.server().requests()) sessions.push_back(seen.session);
    EXPECT_EQ(sessions, (std::vector<std::size_t>{3, 4, 5, 3, 0, 4}))
        << "three for uploads, three for all else";
}

TEST_F(NetworkManager, TakesTheTokenProvidersFirstAnswer) {
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
        EXPECT_TRUE(textOf(lastRequest()).ends_with(", Authorization: Bearer cached"));
    }
}

TEST_F(NetworkManager, KeepsEightUploadsWaitingForATokenThatNeverComes) {
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
    OskaOnPremiseNetworkConstants::setBaseURL("no url");
    EXPECT_EQ(delegate.didReceiveChallenge({.host = ""}), performDefaultHandling);
    OskaOnPremiseNetworkConstants::setBaseURL("https://10.0.0.2:8443");
    EXPECT_EQ(delegate.trustBasis("10.0.0.2"), "https://10.0.0.2:8443");
    EXPECT_EQ(delegate.trustBasis("10.0.0.3"), std::nullopt);
    for (const auto& challenge :
         {Challenge{.host = "10.0.0.3"}, Challenge{.method = Challenge::Method::other, .host = "10.0.0.2"},
          Challenge{.host = "10.0.0.2", .hasServerTrust = false}})
        EXPECT_EQ(delegate.didReceiveChallenge(challenge), performDefaultHandling);
    EXPECT_TRUE(output.take().empty());
    EXPECT_EQ(delegate.didReceiveChallenge({.host = "10.0.0.2"}), useCredential);
    EXPECT_EQ(output.take(),
              std::vector<std::string>{
                  "(OskaOnPremiseServerTrustDelegate) accepting server trust for on-premise host= 10.0.0.2"});
}

using Cloud = OskaNetworkConstants;
using OnPremise = OskaOnPremiseNetworkConstants;

TEST(CloudEndpoints, FollowTheRegionWhichIsKoreaUntilOneIsChosen) {
    const std::string path = "/2026-04-27/sectors/{pk}/bundle";
    EXPECT_EQ(Cloud::getUserDapoURL(), "https://ap-northeast-2.user.dapo.quenlo.com" + path);
    EXPECT_EQ(Cloud::getUserTovanURL(), "https://ap-northeast-2.user.tovan.quenlo.com" + path);
    EXPECT_EQ(Cloud::getUserPelioURL(), Cloud::getUserTovanURL() + "/lite");
    Cloud::setServerURL("CANADA");
    EXPECT_EQ(Cloud::getUserTovanURL(), "https://ca-central-1.user.tovan.quenlo.com" + path);
    Cloud::setServerURL("canada");
    EXPECT_TRUE(Cloud::getUserTovanURL().starts_with("https://ap-northeast-2.user."));
}

TEST(OnPremiseEndpoints, DropBlanksAndTrailingSlashesOfTheBaseUrlAndKeepIt) {
    OnPremise::setBaseURL(" \n ");
    EXPECT_FALSE(OnPremise::isEnabled());
    EXPECT_EQ(OnPremise::getUserDapoURL(), "http://localhost:5050/v2/dapo/sectors/{pk}/bundle");
    OnPremise::setBaseURL(" https://10.0.0.2:8443///\n");
    OnPremise::setBaseURL("  ");
    OnPremise::resetOnPremiseBaseURLIfDisabled();
    EXPECT_TRUE(OnPremise::isEnabled());
    EXPECT_EQ(OnPremise::serviceBaseURL(OskaService::pelio), "https://10.0.0.2:8443/v2/pelio");
    EXPECT_EQ(OnPremise::getUserPelioURL(), "https://10.0.0.2:8443/v2/pelio/sectors/{pk}/bundle");
}

}  // namespace
}  // namespace oska
