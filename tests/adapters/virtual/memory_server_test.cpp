#include "adapters/virtual/memory_server.h"

#include <gtest/gtest.h>

#include "tests/contract/http_session_contract.h"

namespace oska::virtual_world {
namespace {

using platform::HttpErrorKind;
using platform::HttpRequest;
using platform::HttpSession;
using namespace std::chrono_literals;

constexpr platform::WallTime START{1'700'000'000'000, 0};

/// What the contract of HTTP sessions leaves open: scripts, instants, and what the server has seen.
class MemoryServerTest : public testing::Test {
protected:
    void send(HttpSession& session, const std::string& url) {
        session.send({.url = Url::parse(url).value()}, hear());
    }
    HttpSession::Completion hear() {
        return heard_.next([this] { instants_.push_back(millisecondsBetween(START, time_->now())); });
    }
    std::optional<HttpErrorKind> errorOf(std::size_t index) const { return kindOf(heard_.all().at(index)); }

    std::shared_ptr<VirtualMainQueue> time_ = std::make_shared<VirtualMainQueue>(START);
    std::unique_ptr<MemoryServer> server_ = std::make_unique<MemoryServer>(time_);
    platform::Outcomes heard_;
    std::vector<std::int64_t> instants_;  // of the outcomes
};

TEST_F(MemoryServerTest, AnswersByPathAndRecordsWhatItSaw) {
    server_->onPath("/a", always(reply(200, "first", {{"ETag", "x"}}).delayedBy(20ms)));
    server_->onRequest([](const HttpRequest& request) { return reply(201, request.url.absoluteString()); });
    const auto one = server_->makeSession({}, nullptr);
    const auto two = server_->makeSession({}, nullptr);
    send(*two, "http://host:80/a?q=1");
    time_->advanceBy(5ms);
    send(*one, "http://host/other?a=/a");
    time_->advanceBy(1s);

    EXPECT_EQ(instants_, (std::vector<std::int64_t>{5, 20}));
    EXPECT_EQ(heard_.all().at(0).body, "http://host/other?a=/a");
    EXPECT_EQ(heard_.all().at(1).body, "first");
    EXPECT_EQ(heard_.all().at(1).reply->headers.at(0).value, "x");
    const auto seen = server_->requests();
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[0].session, 1U);
    EXPECT_EQ(seen[1].session, 0U);
    EXPECT_EQ(seen[1].at, START + 5ms);

    server_->keepRequests(false);
    send(*one, "http://host/");
    time_->runDue();
    EXPECT_EQ(server_->requests().size(), 2U);
}

TEST_F(MemoryServerTest, EveryScriptedAnswerReachesTheClientInTimeOrTimesOut) {
    struct Case {
        const char* name;
        ScriptedAnswer answer;
        std::optional<HttpErrorKind> error;
        std::optional<int> status;
        bool hasReply;
        bool hasBody;
        std::int64_t at = 0;
        std::optional<std::chrono::milliseconds> timeout =
            {};  // of the request; 5 s of the session, 9 s in all
    };
    using enum HttpErrorKind;
    const std::vector<Case> cases{
        {"reply", reply(204), {}, 204, true, true},
        {"no body", reply(200, std::nullopt), {}, 200, true, false},
        {"not HTTP", replyBeyondHttp("x"), {}, {}, true, true},
        {"nothing", nothing(), {}, {}, false, false},
        {"refusal", refusal(), cannotConnect, {}, false, false},
        {"error after the headers", failureAfter(200, connectionLost, "x"), connectionLost, 200, true, false},
        {"in time", reply(200).delayedBy(5s), {}, 200, true, true, 5000},
        {"too late", reply(200).delayedBy(5001ms), timedOut, {}, false, false, 5000},
        {"own time-out", silence(), timedOut, {}, false, false, 1000, 1s},
        {"in all", silence(), timedOut, {}, false, false, 9000, 60s},
    };
    const auto session = server_->makeSession({.timeoutForRequest = 5s, .timeoutForResource = 9s}, nullptr);
    for (const auto& one : cases) {
        const auto before = platform::millisecondsBetween(START, time_->now());
        server_->onRequest(always(one.answer));
        session->send({.url = Url::parse("https://host/x").value(), .timeout = one.timeout}, hear());
        time_->advanceBy(1h);
        const auto outcome = heard_.all().back();
        EXPECT_EQ(kindOf(outcome), one.error) << one.name;
        EXPECT_EQ(statusOf(outcome), one.status) << one.name;
        EXPECT_EQ(outcome.reply.has_value(), one.hasReply) << one.name;
        EXPECT_EQ(outcome.body.has_value(), one.hasBody) << one.name;
        EXPECT_EQ(instants_.back() - before, one.at) << one.name;
    }
    EXPECT_EQ(heard_.count(), cases.size());
}

TEST_F(MemoryServerTest, AsksTheDelegateOnlyAboutUntrustedHostsOverHttps) {
    server_->setUntrusted("box");
    const auto delegate = std::make_shared<platform::ContractDelegate>();
    const auto session = server_->makeSession({}, delegate);
    for (const auto* url : {"https://box:8443/", "http://box/", "https://other/"}) send(*session, url);
    time_->runDue();
    EXPECT_EQ(delegate->hosts(), std::vector<std::string>{"box"});
    EXPECT_EQ(server_->requests().size(), 2U);
}

TEST_F(MemoryServerTest, ASessionsEndCancelsItsRequestsInAJobAndAStoppedQueueAtOnce) {
    server_->onRequest(always(silence()));
    auto ended = server_->makeSession({}, nullptr);
    auto left = server_->makeSession({}, nullptr);
    send(*ended, "http://host/waiting");
    time_->runDue();
    send(*ended, "http://host/unseen");
    ended.reset();
    EXPECT_EQ(heard_.count(), 0U) << "completed inside the destructor";
    time_->runDue();
    EXPECT_EQ(heard_.count(), 2U);
    EXPECT_EQ(server_->requests().size(), 1U);

    send(*left, "http://host/");
    time_->runDue();
    time_->stop();
    send(*left, "http://host/");
    server_.reset();
    left.reset();
    EXPECT_EQ(heard_.count(), 4U);
    for (std::size_t i = 0; i < heard_.count(); ++i) EXPECT_EQ(errorOf(i), HttpErrorKind::cancelled);
}

TEST_F(MemoryServerTest, SessionsServeManyThreads) {
    constexpr std::size_t THREADS = 4;
    constexpr std::size_t REQUESTS = 50;
    const auto shared = server_->makeSession({}, nullptr);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < THREADS; ++i) {
        threads.emplace_back([&] {
            for (std::size_t n = 0; n < REQUESTS; ++n) send(*shared, "http://host/kept");
            send(*server_->makeSession({}, nullptr), "http://host/dropped");
        });
    }
    while (heard_.count() < THREADS * (REQUESTS + 1)) time_->advanceBy(1ms);
    for (auto& thread : threads) thread.join();
    time_->advanceBy(1h);
    EXPECT_EQ(heard_.count(), THREADS * (REQUESTS + 1));
}

}  // namespace
}  // namespace oska::virtual_world
