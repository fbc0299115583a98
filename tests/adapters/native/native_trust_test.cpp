#include "tests/adapters/native/native_http_fixture.h"

namespace oska::native {
namespace {

using platform::AuthenticationChallenge;
using platform::ChallengeDisposition;
using platform::ContractDelegate;
using Hosts = std::vector<std::string>;

std::string ok(const WireRequest&) { return wireReply(200, "ok"); }

/// One authority that the factory trusts by its file, and certificates that it has signed.
class NativeTrust : public testing::Test {
protected:
    HttpOutcome fetch(const std::string& url,
                      std::shared_ptr<platform::HttpSessionDelegate> delegate = nullptr) {
        return native::fetch(factory_, get(url), {}, std::move(delegate));
    }

    TestIdentity issued(std::string names) { return TestIdentity({.names = std::move(names)}, &authority_); }

    const TestIdentity authority_{{.isAuthority = true}};
    const TestFile authorities_{authority_.pem()};
    const std::shared_ptr<ContractDelegate> delegate_ = std::make_shared<ContractDelegate>();
    CurlHttpSessionFactory factory_{authorities_.path()};
};

TEST_F(NativeTrust, ChecksChainDatesAndHostInFull) {
    const TestIdentity stranger({.isAuthority = true});
    struct Case {
        const char* what;
        TestIdentity identity;
        const char* host;
        const char* fault;  // empty: trusted
    };
    const std::vector<Case> cases{
        {"right name", issued("DNS:localhost"), "localhost", ""},
        {"right name in upper case", issued("DNS:localhost"), "LOCALHOST", ""},
        {"right address", issued("IP:127.0.0.1"), "127.0.0.1", ""},
        {"wrong name", issued("DNS:elsewhere.example"), "localhost", "hostname mismatch"},
        {"a name for an address", issued("DNS:127.0.0.1"), "127.0.0.1", "IP address mismatch"},
        {"wrong address", issued("IP:127.0.0.2"), "127.0.0.1", "IP address mismatch"},
        {"expired", TestIdentity({.names = "DNS:localhost", .secondsFromNow = -60}, &authority_), "localhost",
         "certificate has expired"},
        {"not yet valid",
         TestIdentity({.names = "DNS:localhost", .secondsFromNow = 3 * 86'400L}, &authority_), "localhost",
         "certificate is not yet valid"},
        {"for clients only", TestIdentity({.names = "DNS:localhost", .usage = "clientAuth"}, &authority_),
         "localhost", "unsuitable certificate purpose"},
        {"self-signed", TestIdentity({.names = "DNS:localhost"}), "localhost", "self-signed certificate"},
        {"strange authority", TestIdentity({.names = "DNS:localhost"}, &stranger), "localhost",
         "unable to get local issuer certificate"},
    };
    for (const auto& one : cases) {
        LoopbackServer server(ok, &one.identity);
        const bool isTrusted = one.fault == std::string_view();
        for (const auto& delegate : {std::shared_ptr<ContractDelegate>(), delegate_}) {
            const auto outcome = fetch(server.url("/", one.host), delegate);
            EXPECT_EQ(outcome.body.value_or(""), isTrusted ? "ok" : "") << one.what;
            const auto text = outcome.error ? outcome.error->description : "";
            EXPECT_NE(text.find(one.fault), std::string::npos) << one.what << text;
            EXPECT_EQ(text.find(one.host) == std::string::npos, isTrusted) << one.what << text;
            EXPECT_EQ(kindOf(outcome) == HttpErrorKind::untrustedCertificate, !isTrusted) << one.what;
        }
        EXPECT_EQ(server.requests().size(), isTrusted ? 2U : 0U) << one.what;
    }
}

TEST_F(NativeTrust, TheDelegateOverrulesWhateverIsWrongAndHearsTheHostAsTheUrlSpellsIt) {
    delegate_->answer(ChallengeDisposition::useCredential);
    const TestIdentity expired({.names = "DNS:elsewhere.example", .secondsFromNow = -60});
    LoopbackServer server(ok, &expired);
    for (const auto* host : {"localhost", "LocalHost", "127.0.0.1"})
        EXPECT_EQ(fetch(server.url("/", host), delegate_).body, "ok");
    EXPECT_EQ(delegate_->hosts(), (Hosts{"localhost", "LocalHost", "127.0.0.1"}));

    LoopbackServer v6(LoopbackServer::answering(ok), &expired, "::1");
    if (!v6.isListening()) GTEST_SKIP() << "this machine has no IPv6";
    EXPECT_EQ(fetch(v6.url("/", "[::1]"), delegate_).body, "ok");
    EXPECT_EQ(delegate_->hosts().back(), "::1");
    const auto right = issued("IP:::1");
    LoopbackServer trusted(LoopbackServer::answering(ok), &right, "::1");
    EXPECT_EQ(fetch(trusted.url("/", "[::1]")).body, "ok");
}

/// A delegate with a basis of trust.
class BasisDelegate final : public ContractDelegate {
public:
    std::optional<std::string> trustBasis(const std::string&) const override { return basis; }
    std::optional<std::string> basis = "";  // set while no request is under way
};

TEST_F(NativeTrust, ASessionKeepsWhatItsDelegateAcceptedWhileTheBasisStaysAndSharesItWithNone) {
    const TestIdentity selfSigned({.names = "DNS:localhost"});
    LoopbackServer server([](const WireRequest& request) { return wireReply(200, request.body); },
                          &selfSigned);
    const auto request = get(server.url("/", "localhost"));
    const std::string body(3'000'000, 'b');
    const auto delegate = std::make_shared<BasisDelegate>();
    delegate->answer(ChallengeDisposition::useCredential);
    const auto asked = [&](const std::shared_ptr<platform::HttpSession>& by) {
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(native::fetch(*by, request).body, "");
            EXPECT_EQ(native::fetch(*by, post(server.url("/", "localhost"), body)).body, body);
        }
        EXPECT_EQ(server.connections(), delegate->hosts().size());
        return delegate->hosts().size();
    };
    const std::shared_ptr<platform::HttpSession> one = factory_.makeSession({}, delegate);
    EXPECT_EQ(asked(one), 1U);
    EXPECT_EQ(asked(factory_.makeSession({}, delegate)), 2U);
    EXPECT_EQ(asked(one), 2U);
    delegate->basis = "another";
    EXPECT_EQ(asked(one), 3U);
    delegate->basis.reset();  // it should accept nothing: what it accepts all the same is not kept
    EXPECT_EQ(asked(one), 7U);
    delegate->basis = "withdrawn";
    delegate->answer(ChallengeDisposition::performDefaultHandling);
    EXPECT_EQ(kindOf(native::fetch(*one, request)), HttpErrorKind::untrustedCertificate);
    EXPECT_EQ(kindOf(fetch(server.url("/", "localhost"))), HttpErrorKind::untrustedCertificate);
}

TEST_F(NativeTrust, SendsNoPostTwiceOverAKeptConnectionAndClosesItWithTheSession) {
    const TestIdentity selfSigned({.names = "DNS:localhost"});
    std::promise<void> closed;
    LoopbackServer server(
        [&](WireConnection& connection) {
            if (!connection.receive()) return;
            connection.send(wireReply(200, "ok"));
            if (!connection.receive()) closed.set_value();
        },
        &selfSigned);
    delegate_->answer(ChallengeDisposition::useCredential);
    auto session = factory_.makeSession({}, delegate_);
    const auto url = server.url("/", "localhost");
    EXPECT_EQ(native::fetch(*session, get(url)).body, "ok");
    EXPECT_EQ(kindOf(native::fetch(*session, post(url, "x"))), HttpErrorKind::connectionLost);
    EXPECT_EQ(server.requests().size(), 2U);
    EXPECT_EQ(native::fetch(*session, get(url)).body, "ok");
    session.reset();
    closed.get_future().wait();
}

TEST_F(NativeTrust, AsksOncePerConnectionAndSharesWhatNoDelegateCouldHaveAccepted) {
    const auto identity = issued("DNS:localhost");
    LoopbackServer server(ok, &identity);
    const auto url = server.url("/", "localhost");
    const auto delegate = std::make_shared<BasisDelegate>();
    delegate->basis.reset();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(fetch(url, delegate).body, "ok");
    EXPECT_EQ(fetch(url).body, "ok");
    EXPECT_EQ(delegate->hosts().size(), 1U);
    EXPECT_EQ(server.connections(), 1U);
}

TEST_F(NativeTrust, DecidesAnewWhereARedirectLeads) {
    const TestIdentity selfSigned({.names = "DNS:localhost,IP:127.0.0.1"});
    class OnlyLocalhost final : public platform::HttpSessionDelegate {
        ChallengeDisposition didReceiveChallenge(const AuthenticationChallenge& challenge) override {
            return challenge.host == "localhost" ? ChallengeDisposition::useCredential
                                                 : ChallengeDisposition::performDefaultHandling;
        }
    };
    std::string target;
    LoopbackServer server(
        [&](const WireRequest& request) {
            return request.target == "/" ? wireReply(302, "", {{"Location", target}}) : wireReply(200, "ok");
        },
        &selfSigned);
    const auto delegate = std::make_shared<OnlyLocalhost>();
    target = server.url("/there", "localhost");
    EXPECT_EQ(fetch(server.url("/", "localhost"), delegate).body, "ok");
    target = server.url("/there", "127.0.0.1");
    EXPECT_EQ(kindOf(fetch(server.url("/", "localhost"), delegate)), HttpErrorKind::untrustedCertificate);
}

TEST_F(NativeTrust, AsksNobodyWhenThereIsNoTls) {
    LoopbackServer plain([](WireConnection& connection) { connection.send(wireReply(400)); });
    const auto url = "https" + plain.url("/").substr(4);
    const auto outcome = fetch(url, delegate_);
    EXPECT_EQ(kindOf(outcome), HttpErrorKind::secureConnectionFailed) << outcome.error->description;
    EXPECT_TRUE(delegate_->hosts().empty());
}

TEST_F(NativeTrust, NamesTheFileOfAuthoritiesThatCannotBeRead) {
    const auto identity = issued("DNS:localhost");
    LoopbackServer server(ok, &identity);
    const TestFile notCertificates("no certificates");
    for (const auto& path : {std::string("/no/such/file.pem"), notCertificates.path()}) {
        CurlHttpSessionFactory factory(path);
        const auto outcome = native::fetch(factory, get(server.url("/", "localhost")));
        EXPECT_EQ(kindOf(outcome), HttpErrorKind::untrustedCertificate);
        EXPECT_NE(outcome.error->description.find(path), std::string::npos) << outcome.error->description;
    }
}

}  // namespace
}  // namespace oska::native
