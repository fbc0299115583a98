#include "adapters/virtual/memory_server.h"

#include <thread>

#include "tests/contract/http_session_contract.h"

namespace oska::virtual_world {
namespace {

using platform::HttpErrorKind;
using platform::HttpSession;
using namespace std::chrono_literals;

constexpr platform::WallTime START{1'700'000'000'000, 0};

class MemoryDriver {
public:
    MemoryDriver() {
        server_.setUntrusted("localhost");
        server_.onPath("/refused", always(refusal()));
    }
    platform::HttpSessionFactory& factory() { return server_; }
    void answer(const std::string& path, const platform::ContractAnswer& answer) {
        server_.onPath(
            path, always(answer.isSilent ? silence() : reply(answer.status, answer.body, answer.headers)));
    }
    std::string url(const std::string& path) const { return "http://server" + path; }
    std::string untrustedUrl(const std::string& path) const { return "https://localhost" + path; }
    std::string refusedUrl() const { return url("/refused"); }
    std::vector<platform::ContractRequest> requests() const {
        std::vector<platform::ContractRequest> seen;
        for (const auto& [session, at, request] : server_.requests()) {
            const auto& text = request.url.absoluteString();
            const auto path = text.substr(text.find('/', text.find("//") + 2));
            seen.push_back({request.method, path, request.headers, request.body.value_or("")});
        }
        return seen;
    }
    void await(const std::function<bool()>& isDone) {
        for (time_->runDue(); !isDone(); time_->advanceBy(1ms)) std::this_thread::yield();
    }
    void shutDown() { server_.shutDown(); }

private:
    std::shared_ptr<VirtualMainQueue> time_ = std::make_shared<VirtualMainQueue>(START);
    MemoryServer server_{time_};
};

/// What the contract of HTTP sessions leaves open: scripts, instants, and what the server has seen.
class MemoryServerTest : public testing::Test {
protected:
    void send(HttpSession& session, const std::string& url,
              std::optional<std::chrono::milliseconds> timeout = {}) {
        session.send({.url = Url::parse(url).value(), .timeout = timeout},
                     heard_.next([this] { endedAfter_ = platform::spanBetween(START, time_->now()); }));
    }

    std::shared_ptr<VirtualMainQueue> time_ = std::make_shared<VirtualMainQueue>(START);
    std::unique_ptr<MemoryServer> server_ = std::make_unique<MemoryServer>(time_);
    platform::Outcomes heard_;
    std::chrono::nanoseconds endedAfter_{};  // since START, the last outcome
};

TEST_F(MemoryServerTest, AnswersByPathAndAsksTheDelegateOnlyAboutUntrustedHostsOverHttps) {
    server_->onPath("/a", always(reply(200, "first").delayedBy(20ms)));
    server_->onRequest([](const auto& request) { return reply(201, request.url.absoluteString()); });
    server_->setUntrusted("box");
    const auto delegate = std::make_shared<platform::ContractDelegate>();
    const auto session = server_->makeSession({}, delegate);
    send(*session, "https://host:80/a?q=1");
    time_->advanceBy(5ms);
    for (const auto* url : {"http://box/other?a=/a", "https://box:8443/"}) send(*session, url);
    time_->advanceBy(1s);
    EXPECT_EQ(heard_.all().at(0).body, "http://box/other?a=/a");
    EXPECT_EQ(heard_.all().at(2).body, "first");
    EXPECT_EQ(delegate->hosts(), std::vector<std::string>{"box"});
    EXPECT_EQ(server_->requests().at(1).at, START + 5ms);
    server_->keepRequests(false);
    send(*session, "http://host/");
    time_->runDue();
    EXPECT_EQ(server_->requests().size(), 2U);
}

TEST_F(MemoryServerTest, AnswersComeInTimeOrTimeOutToTheMillisecond) {
    struct Case {
        ScriptedAnswer answer;
        std::optional<std::chrono::milliseconds> timeout;  // of the request; 5 s of the session, 9 s in all
        std::optional<HttpErrorKind> error;
        std::chrono::nanoseconds after;
    };
    const auto session = server_->makeSession({.timeoutForRequest = 5s, .timeoutForResource = 9s}, nullptr);
    for (const auto& [answer, timeout, error, after] :
         {Case{reply(200).delayedBy(5s), {}, {}, 5s},
          Case{reply(200).delayedBy(5001ms), {}, HttpErrorKind::timedOut, 5s},
          Case{silence(), 1s, HttpErrorKind::timedOut, 1s},
          Case{silence(), 60s, HttpErrorKind::timedOut, 9s}}) {
        const auto before = platform::spanBetween(START, time_->now());
        server_->onRequest(always(answer));
        send(*session, "https://host/x", timeout);
        time_->advanceBy(1h);
        EXPECT_EQ(kindOf(heard_.all().back()), error);
        EXPECT_EQ(endedAfter_ - before, after);
    }
    EXPECT_EQ(heard_.count(), 4U);
}

TEST_F(MemoryServerTest, ASessionsEndCancelsItsRequestsInAJobAndAStoppedQueueAtOnce) {
    server_->onRequest(always(silence()));
    auto ended = server_->makeSession({}, nullptr);
    auto left = server_->makeSession({}, nullptr);
    for (auto* session : {ended.get(), left.get()}) send(*session, "http://host/waiting");
    time_->runDue();
    send(*ended, "http://host/unseen");
    ended.reset();
    EXPECT_EQ(heard_.count(), 0U) << "completed inside the destructor";
    time_->runDue();
    EXPECT_EQ(heard_.count(), 2U);
    EXPECT_EQ(server_->requests().size(), 2U);
    time_->stop();
    send(*left, "http://host/");
    server_.reset();
    left.reset();
    EXPECT_EQ(heard_.count(), 4U);
    for (const auto& outcome : heard_.all()) EXPECT_EQ(kindOf(outcome), HttpErrorKind::cancelled);
}

TEST_F(MemoryServerTest, SessionsServeManyThreads) {
    const auto shared = server_->makeSession({}, nullptr);
    std::vector<std::thread> threads(4);
    for (auto& thread : threads) {
        thread = std::thread([&] {
            for (int i = 0; i < 50; ++i) send(*shared, "http://host/kept");
            send(*server_->makeSession({}, nullptr), "http://host/dropped");
        });
    }
    while (heard_.count() < threads.size() * 51) time_->advanceBy(1ms);
    for (auto& thread : threads) thread.join();
    time_->advanceBy(1h);
    EXPECT_EQ(heard_.count(), threads.size() * 51);
}

}  // namespace
}  // namespace oska::virtual_world

namespace oska::platform {
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, HttpSessionContract, virtual_world::MemoryDriver);
}  // namespace oska::platform
