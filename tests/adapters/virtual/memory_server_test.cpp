#include "adapters/virtual/memory_server.h"

#include <gtest/gtest.h>

#include <thread>

namespace oska::virtual_world {
namespace {

using platform::ChallengeDisposition;
using platform::HttpErrorKind;
using platform::HttpOutcome;
using platform::HttpRequest;
using namespace std::chrono_literals;

constexpr platform::WallTime START{1'700'000'000'000, 0};

HttpRequest requestTo(std::string_view url) {
    HttpRequest request;
    request.url = Url::parse(url).value();
    return request;
}

struct Judge : platform::HttpSessionDelegate {
    ChallengeDisposition didReceiveChallenge(const platform::AuthenticationChallenge& challenge) override {
        asked.push_back(challenge.host);
        return verdict;
    }
    ChallengeDisposition verdict = ChallengeDisposition::performDefaultHandling;
    std::vector<std::string> asked;
};

/// One completion: what it was told, and when.
struct Heard {
    HttpOutcome outcome;
    std::int64_t at = 0;

    std::optional<HttpErrorKind> error() const {
        return outcome.error ? std::optional(outcome.error->kind) : std::nullopt;
    }
};

class MemoryServerTest : public testing::Test {
protected:
    std::unique_ptr<platform::HttpSession> session(platform::HttpSessionConfiguration configuration = {}) {
        return server_->makeSession(configuration, judge_);
    }
    void send(platform::HttpSession& session, HttpRequest request) {
        const auto heardBefore = heard_.size();
        session.send(std::move(request), hear());
        EXPECT_EQ(heard_.size(), heardBefore) << "completed inside send";
    }
    platform::HttpSession::Completion hear() {
        return [this](HttpOutcome outcome) {
            heard_.push_back({std::move(outcome), platform::millisecondsBetween(START, time_->now())});
        };
    }
    /// The one completion of a request sent now, an hour later.
    Heard outcomeOf(platform::HttpSession& session, HttpRequest request) {
        send(session, std::move(request));
        time_->advanceBy(1h);
        EXPECT_EQ(heard_.size(), 1U);
        return heard_.empty() ? Heard{} : heard_.front();
    }

    std::shared_ptr<VirtualMainQueue> time_ = std::make_shared<VirtualMainQueue>(START);
    std::unique_ptr<MemoryServer> server_ = std::make_unique<MemoryServer>(time_);
    std::shared_ptr<Judge> judge_ = std::make_shared<Judge>();
    std::vector<Heard> heard_;
};

TEST_F(MemoryServerTest, AnswersByPathAndRecordsWhatItSaw) {
    server_->onPath("/a", always(reply(200, "first", {{"ETag", "x"}}).delayedBy(20ms)));
    server_->onRequest([](const HttpRequest& request) { return reply(201, request.body); });
    const auto one = session();
    const auto two = session();
    auto post = requestTo("http://host/other?a=/a");
    post.method = "POST";
    post.headers = {{"Authorization", "Bearer t"}};
    post.body = "payload";
    send(*two, requestTo("http://host:80/a?q=1"));
    time_->advanceBy(5ms);
    send(*one, std::move(post));
    time_->advanceBy(1s);

    ASSERT_EQ(heard_.size(), 2U);
    EXPECT_EQ(heard_[0].at, 5);
    EXPECT_EQ(heard_[0].outcome.reply->status, 201);
    EXPECT_EQ(heard_[0].outcome.body, "payload");
    EXPECT_EQ(heard_[1].at, 20);
    EXPECT_EQ(heard_[1].outcome.body, "first");
    EXPECT_EQ(heard_[1].outcome.reply->headers.at(0).value, "x");

    const auto seen = server_->requests();
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[0].session, 1U);
    EXPECT_EQ(seen[0].request.url.absoluteString(), "http://host:80/a?q=1");
    EXPECT_EQ(seen[1].session, 0U);
    EXPECT_EQ(seen[1].at, START + 5ms);
    EXPECT_EQ(seen[1].request.headers.at(0).value, "Bearer t");
}

TEST_F(MemoryServerTest, WithoutAScriptNothingIsFound) {
    const auto one = session();
    EXPECT_EQ(outcomeOf(*one, requestTo("http://host")).outcome.reply->status, 404);
}

TEST_F(MemoryServerTest, KeepsNoRequestsWhenToldNotTo) {
    server_->keepRequests(false);
    const auto one = session();
    EXPECT_EQ(outcomeOf(*one, requestTo("http://host/")).outcome.reply->status, 404);
    EXPECT_TRUE(server_->requests().empty());
}

struct Ending {
    const char* name;
    ScriptedAnswer answer;
    std::optional<HttpErrorKind> error;
    bool hasReply;
    bool hasStatus;
    bool hasBody;
};

class MemoryServerEnding : public MemoryServerTest, public testing::WithParamInterface<Ending> {};

TEST_P(MemoryServerEnding, ReachesTheClientAsScripted) {
    const auto& ending = GetParam();
    server_->onRequest(always(ending.answer));
    const auto one = session();
    const auto heard = outcomeOf(*one, requestTo("https://host/x"));
    EXPECT_EQ(heard.error(), ending.error);
    EXPECT_EQ(heard.outcome.reply.has_value(), ending.hasReply);
    EXPECT_EQ(heard.outcome.reply && heard.outcome.reply->status, ending.hasStatus);
    EXPECT_EQ(heard.outcome.body.has_value(), ending.hasBody);
}

INSTANTIATE_TEST_SUITE_P(
    Endings, MemoryServerEnding,
    testing::Values(Ending{"Reply", reply(204), {}, true, true, true},
                    Ending{"NoBody", reply(200, std::nullopt), {}, true, true, false},
                    Ending{"BeyondHttp", replyBeyondHttp("x"), {}, true, false, true},
                    Ending{"Nothing", nothing(), {}, false, false, false},
                    Ending{"Refusal", refusal(), HttpErrorKind::cannotConnect, false, false, false},
                    Ending{"Late", failureAfter(200, HttpErrorKind::connectionLost, "lost"),
                           HttpErrorKind::connectionLost, true, true, false}),
    [](const auto& ending) { return ending.param.name; });

struct TimeoutCase {
    std::chrono::milliseconds idle;
    std::chrono::milliseconds resource;
    std::optional<std::chrono::milliseconds> own;
    std::optional<std::chrono::milliseconds> delay;  // none: silence
    std::optional<HttpErrorKind> error;
    std::int64_t at;
};

class MemoryServerTimeout : public MemoryServerTest, public testing::WithParamInterface<TimeoutCase> {};

TEST_P(MemoryServerTimeout, TheEarlierOfIdleAndResourceTimeoutEndsTheRequest) {
    const auto& given = GetParam();
    server_->onRequest(always(given.delay ? reply(200).delayedBy(*given.delay) : silence()));
    const auto one = session({.timeoutForRequest = given.idle, .timeoutForResource = given.resource});
    auto request = requestTo("http://host/");
    request.timeout = given.own;
    const auto heard = outcomeOf(*one, std::move(request));
    EXPECT_EQ(heard.error(), given.error);
    EXPECT_EQ(heard.at, given.at);
}

INSTANTIATE_TEST_SUITE_P(Timeouts, MemoryServerTimeout,
                         testing::Values(TimeoutCase{5s, 9s, {}, {}, HttpErrorKind::timedOut, 5000},
                                         TimeoutCase{5s, 5s, 60s, {}, HttpErrorKind::timedOut, 5000},
                                         TimeoutCase{5s, 90s, 60s, {}, HttpErrorKind::timedOut, 60'000},
                                         TimeoutCase{5s, 9s, 1s, {}, HttpErrorKind::timedOut, 1000},
                                         TimeoutCase{5s, 9s, {}, 5001ms, HttpErrorKind::timedOut, 5000},
                                         TimeoutCase{5s, 9s, {}, 5000ms, {}, 5000}));

TEST_F(MemoryServerTest, AnUntrustedHostIsTheDelegatesDecision) {
    server_->setUntrusted("box");
    const auto one = session();
    const auto undelegated = server_->makeSession({}, nullptr);
    send(*one, requestTo("https://box:8443/"));
    send(*undelegated, requestTo("https://box/"));
    time_->runDue();
    judge_->verdict = ChallengeDisposition::useCredential;
    for (const auto* url : {"https://box/", "http://box/", "https://other/"}) send(*one, requestTo(url));
    time_->runDue();

    EXPECT_EQ(judge_->asked, (std::vector<std::string>{"box", "box"}));
    ASSERT_EQ(heard_.size(), 5U);
    EXPECT_EQ(heard_[0].error(), HttpErrorKind::untrustedCertificate);
    EXPECT_EQ(heard_[1].error(), HttpErrorKind::untrustedCertificate);
    EXPECT_EQ(server_->requests().size(), 3U);
}

TEST_F(MemoryServerTest, DestroyingASessionCancelsItsRequestsOnce) {
    server_->onRequest(always(reply(200).delayedBy(1s)));
    auto doomed = session();
    const auto other = session();
    send(*doomed, requestTo("http://host/waiting"));
    send(*other, requestTo("http://host/kept"));
    time_->advanceBy(10ms);
    send(*doomed, requestTo("http://host/unseen"));
    doomed.reset();
    EXPECT_TRUE(heard_.empty()) << "completed inside the destructor";
    time_->advanceBy(1h);

    ASSERT_EQ(heard_.size(), 3U);
    EXPECT_EQ(heard_[0].error(), HttpErrorKind::cancelled);
    EXPECT_EQ(heard_[1].error(), HttpErrorKind::cancelled);
    EXPECT_EQ(heard_[2].at, 1000);
    EXPECT_EQ(server_->requests().size(), 2U);
}

TEST_F(MemoryServerTest, AStoppedQueueStillLeavesNoRequestWithoutAnEnd) {
    server_->onRequest(always(silence()));
    auto ended = session();
    auto left = session();
    send(*ended, requestTo("http://host/"));
    send(*left, requestTo("http://host/"));
    time_->runDue();
    time_->stop();
    ended.reset();
    EXPECT_EQ(heard_.size(), 1U);
    send(*left, requestTo("http://host/"));
    server_.reset();
    left.reset();
    ASSERT_EQ(heard_.size(), 3U);
    for (const auto& heard : heard_) EXPECT_EQ(heard.error(), HttpErrorKind::cancelled);
}

TEST_F(MemoryServerTest, SessionsServeManyThreads) {
    constexpr int THREADS = 4;
    constexpr int REQUESTS = 50;
    const auto shared = session();
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < REQUESTS; ++n) shared->send(requestTo("http://host/kept"), hear());
            session()->send(requestTo("http://host/dropped"), hear());
        });
    }
    while (heard_.size() < THREADS * (REQUESTS + 1)) time_->advanceBy(1ms);
    for (auto& thread : threads) thread.join();
    time_->advanceBy(1h);
    EXPECT_EQ(heard_.size(), static_cast<std::size_t>(THREADS * (REQUESTS + 1)));
}

}  // namespace
}  // namespace oska::virtual_world
