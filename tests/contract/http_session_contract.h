#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "oska/platform/http_session.h"

/// The tests that every implementation of HTTP sessions must pass. An adapter needs a driver and one line:
///
///     INSTANTIATE_TYPED_TEST_SUITE_P(Memory, HttpSessionContract, MemoryDriver);
///
/// A driver has, besides a default constructor:
///
///     HttpSessionFactory& factory();
///     void answer(const std::string& path, ContractAnswer answer);  // sets the server's answer; else 404
///     std::string url(const std::string& path);           // on the server
///     std::string untrustedUrl(const std::string& path);  // https, host "localhost", certificate not
///     trusted std::string refusedUrl();                           // on a port where no server listens
///     std::vector<ContractRequest> requests();            // those that reached the server
///     void await(const std::function<bool()>& isDone);    // lets requests go on until `isDone` returns true
///     void shutDown();
///
/// No test depends on speed: time-outs that must come are short, the others are an hour.
namespace oska::platform {

struct ContractAnswer {
    int status = 200;
    std::string body = {};
    std::vector<HttpHeader> headers = {};
    bool isSilent = false;  ///< no answer at all
};

struct ContractRequest {
    std::string method;
    std::string path;
    std::vector<HttpHeader> headers;
    std::string body;
};

/// Collects outcomes. Threads: any.
class Outcomes {
public:
    HttpSession::Completion next(std::function<void()> then = {}) {
        return [this, then = std::move(then)](HttpOutcome outcome) {
            if (then) then();
            const std::lock_guard lock(mutex_);
            outcomes_.push_back(std::move(outcome));
        };
    }
    std::size_t count() const { return all().size(); }
    std::vector<HttpOutcome> all() const {
        const std::lock_guard lock(mutex_);
        return outcomes_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<HttpOutcome> outcomes_;
};

/// Gives the answer that was set, and records the hosts that it was asked about. Threads: to be used by the
/// test while no request is under way.
class ContractDelegate : public HttpSessionDelegate {
public:
    ChallengeDisposition didReceiveChallenge(const AuthenticationChallenge& challenge) override {
        EXPECT_EQ(challenge.method, AuthenticationChallenge::Method::serverTrust);
        EXPECT_TRUE(challenge.hasServerTrust);
        hosts_.push_back(challenge.host);
        return answer_;
    }
    void answer(ChallengeDisposition disposition) { answer_ = disposition; }
    const std::vector<std::string>& hosts() const { return hosts_; }

private:
    ChallengeDisposition answer_ = ChallengeDisposition::performDefaultHandling;
    std::vector<std::string> hosts_;
};

inline std::optional<HttpErrorKind> kindOf(const HttpOutcome& outcome) {
    return outcome.error ? std::optional(outcome.error->kind) : std::nullopt;
}

inline std::optional<int> statusOf(const HttpOutcome& outcome) {
    return outcome.reply ? outcome.reply->status : std::nullopt;
}

template <class Driver>
class HttpSessionContract : public testing::Test {
protected:
    std::unique_ptr<HttpSession> session(const HttpSessionConfiguration& configuration = {},
                                         std::shared_ptr<HttpSessionDelegate> delegate = nullptr) {
        return driver_.factory().makeSession(configuration, std::move(delegate));
    }

    static HttpRequest get(const std::string& url) { return {.url = Url::parse(url).value()}; }

    void await(std::size_t count) {
        driver_.await([&] { return outcomes_.count() >= count; });
    }

    /// Sends the request by a session of its own and lets it end.
    HttpOutcome outcomeOf(HttpRequest request, const HttpSessionConfiguration& configuration = {},
                          std::shared_ptr<HttpSessionDelegate> delegate = nullptr) {
        const auto before = outcomes_.count();
        const auto own = session(configuration, std::move(delegate));
        own->send(std::move(request), outcomes_.next());
        await(before + 1);
        return outcomes_.all().back();
    }

    Outcomes outcomes_;
    Driver driver_;  // the last member: it ends what still uses the outcomes
};

TYPED_TEST_SUITE_P(HttpSessionContract);

TYPED_TEST_P(HttpSessionContract, CarriesARequestThereAndItsReplyBack) {
    this->driver_.answer("/upload", {.status = 201, .body = "thanks", .headers = {{"X-Reply", "a b"}}});
    auto request = this->get(this->driver_.url("/upload"));
    request.method = "POST";
    request.headers = {{"Content-Type", "application/json"}, {"X-Own", "1, 2"}, {"Content-Length", "7"}};
    request.body = "[1,\n 2]";
    const auto outcome = this->outcomeOf(request);

    EXPECT_EQ(kindOf(outcome), std::nullopt);
    EXPECT_EQ(statusOf(outcome), 201);
    EXPECT_EQ(outcome.body, "thanks");
    const auto seen = this->driver_.requests().at(0);
    EXPECT_EQ(seen.method + " " + seen.path, "POST /upload");
    EXPECT_EQ(seen.body, *request.body);
    for (const auto& [name, value] : request.headers) {
        std::vector<std::string> values;
        for (const auto& header : seen.headers)
            if (header.name == name) values.push_back(header.value);
        EXPECT_EQ(values, std::vector{value}) << name;
    }
    // Any status is a reply, and a missing body is an empty one.
    for (const int status : {200, 204, 304, 401, 404, 503}) {
        this->driver_.answer("/", {.status = status});
        const auto bare = this->outcomeOf(this->get(this->driver_.url("/")));
        EXPECT_EQ(kindOf(bare), std::nullopt) << status;
        EXPECT_EQ(statusOf(bare), status);
        EXPECT_EQ(bare.body, "") << status;
    }
}

TYPED_TEST_P(HttpSessionContract, CompletesLaterAndOnceAndNeverInsideSend) {
    this->driver_.answer("/", {.body = "x"});
    const auto session = this->session();
    std::size_t sent = 0;
    for (const auto& url :
         {this->driver_.url("/"), std::string("file:///etc/hostname"), this->driver_.refusedUrl()}) {
        bool isSending = true;
        std::recursive_mutex sending;
        std::unique_lock lock(sending);
        session->send(this->get(url), this->outcomes_.next([&] {
            const std::lock_guard inCompletion(sending);
            EXPECT_FALSE(isSending) << url;
        }));
        isSending = false;
        lock.unlock();
        this->await(++sent);
    }
    this->driver_.shutDown();
    EXPECT_EQ(this->outcomes_.count(), sent);
}

TYPED_TEST_P(HttpSessionContract, FailsWithoutAReplyWhereNobodyListensAndSendsNoGetWithABody) {
    auto request = this->get(this->driver_.url("/"));
    request.body = "x";
    EXPECT_EQ(kindOf(this->outcomeOf(request)), HttpErrorKind::bodyNotAllowed);
    for (const auto* url : {"file:///etc/hostname", "mailto:a@b", "//127.0.0.1/x", "/x", "localhost:80/x",
                            "http:///x", "http://"})
        EXPECT_EQ(kindOf(this->outcomeOf(this->get(url))), HttpErrorKind::unsupportedUrl) << url;
    EXPECT_TRUE(this->driver_.requests().empty());
    request.body = "";
    EXPECT_EQ(statusOf(this->outcomeOf(request)), 404);
    const auto outcome = this->outcomeOf(this->get(this->driver_.refusedUrl()));
    EXPECT_EQ(kindOf(outcome), HttpErrorKind::cannotConnect);
    EXPECT_FALSE(outcome.reply || outcome.body || outcome.error->description.empty());
}

TYPED_TEST_P(HttpSessionContract, BoundsTheTimeByTheRequestsOrTheSessionsTimeoutAndTheReplyByItsSize) {
    using namespace std::chrono_literals;
    struct Case {
        std::optional<std::chrono::milliseconds> ofRequest;
        std::chrono::milliseconds ofSession;
        std::chrono::milliseconds ofResource;
    };
    this->driver_.answer("/silent", {.isSilent = true});
    auto request = this->get(this->driver_.url("/silent"));
    for (const auto& one : {Case{std::nullopt, 20ms, 1h}, Case{20ms, 1h, 1h}, Case{1h, 1h, 20ms}}) {
        request.timeout = one.ofRequest;
        const auto outcome = this->outcomeOf(
            request, {.timeoutForRequest = one.ofSession, .timeoutForResource = one.ofResource});
        EXPECT_EQ(kindOf(outcome), HttpErrorKind::timedOut);
    }
    this->driver_.answer("/", {.body = std::string(1000, 'x')});
    request = this->get(this->driver_.url("/"));
    request.timeout = 1h;
    const auto kept = this->outcomeOf(request, {.timeoutForRequest = 0ms, .maximumReplyBytes = 1000});
    EXPECT_EQ(kept.body.value_or("").size(), 1000U);
    const auto refused = this->outcomeOf(request, {.maximumReplyBytes = 999});
    EXPECT_EQ(kindOf(refused), HttpErrorKind::replyTooLarge);
    EXPECT_EQ(statusOf(refused), 200);
    EXPECT_FALSE(refused.body);
}

TYPED_TEST_P(HttpSessionContract, ASessionsEndCancelsItsRequestsAndNoOthersAlsoInsideACompletion) {
    this->driver_.answer("/silent", {.isSilent = true});
    this->driver_.answer("/", {.body = "x"});
    const auto silent = this->get(this->driver_.url("/silent"));
    const auto request = this->get(this->driver_.url("/"));
    const auto other = this->session();
    auto session = this->session();
    for (int i = 0; i < 10; ++i) session->send(silent, this->outcomes_.next());
    this->driver_.await([&] { return !this->driver_.requests().empty(); });
    session.reset();
    this->await(10);
    session = this->session();
    session.get()->send(request, this->outcomes_.next([&] {
        session.reset();
        other->send(request, this->outcomes_.next());
    }));
    this->await(12);
    const auto all = this->outcomes_.all();
    for (std::size_t i = 0; i < 10; ++i) EXPECT_EQ(kindOf(all[i]), HttpErrorKind::cancelled);
    for (std::size_t i = 10; i < 12; ++i) EXPECT_EQ(all[i].body, "x");
}

TYPED_TEST_P(HttpSessionContract, ShuttingDownCancelsWhatIsUnderWayAndWhatComesLater) {
    this->driver_.answer("/silent", {.isSilent = true});
    const auto silent = this->get(this->driver_.url("/silent"));
    const auto session = this->session();
    const auto send = [&](std::function<void()> then) {
        session->send(silent, this->outcomes_.next(std::move(then)));
    };
    for (int i = 0; i < 10; ++i) send([&] { send({}); });
    this->driver_.shutDown();
    send({});
    this->await(21);
    for (const auto& outcome : this->outcomes_.all()) EXPECT_EQ(kindOf(outcome), HttpErrorKind::cancelled);
}

TYPED_TEST_P(HttpSessionContract, TheDelegateDecidesAnewOnEachConnectionToAServerNobodyVouchesFor) {
    using enum ChallengeDisposition;
    this->driver_.answer("/", {.body = "x"});
    const auto request = this->get(this->driver_.untrustedUrl("/"));
    const auto delegate = std::make_shared<ContractDelegate>();
    for (const auto answer : {performDefaultHandling, useCredential, useCredential, performDefaultHandling}) {
        delegate->answer(answer);
        const auto outcome = this->outcomeOf(request, {}, delegate);
        EXPECT_EQ(outcome.body == "x", answer == useCredential);
        EXPECT_EQ(kindOf(outcome) == HttpErrorKind::untrustedCertificate, answer != useCredential);
    }
    EXPECT_EQ(kindOf(this->outcomeOf(request)), HttpErrorKind::untrustedCertificate);
    EXPECT_EQ(delegate->hosts(), std::vector<std::string>(4, "localhost"));
    EXPECT_EQ(this->driver_.requests().size(), 2U);
}

REGISTER_TYPED_TEST_SUITE_P(HttpSessionContract, CarriesARequestThereAndItsReplyBack,
                            CompletesLaterAndOnceAndNeverInsideSend,
                            FailsWithoutAReplyWhereNobodyListensAndSendsNoGetWithABody,
                            BoundsTheTimeByTheRequestsOrTheSessionsTimeoutAndTheReplyByItsSize,
                            ASessionsEndCancelsItsRequestsAndNoOthersAlsoInsideACompletion,
                            ShuttingDownCancelsWhatIsUnderWayAndWhatComesLater,
                            TheDelegateDecidesAnewOnEachConnectionToAServerNobodyVouchesFor);

}  // namespace oska::platform
