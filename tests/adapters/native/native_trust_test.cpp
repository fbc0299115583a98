#include "tests/adapters/native/native_http_fixture.h"

namespace oska::native {
namespace {

using platform::ChallengeDisposition;

/// A delegate with a basis of trust.
class BasisDelegate final : public platform::ContractDelegate {
public:
    std::optional<std::string> trustBasis(const std::string&) const override { return basis; }
    std::optional<std::string> basis = "";  // set while no request is under way
};

/// One authority that the factory trusts by its file, and certificates that it has signed.
class NativeTrust : public testing::Test {
protected:
    const TestIdentity authority_{{.isAuthority = true}};
    const TestIdentity trusted_{{.names = "DNS:localhost,IP:127.0.0.1,IP:::1"}, &authority_};
    const TestIdentity selfSigned_{{.names = "DNS:localhost"}};
    const TestFile authorities_{authority_.pem()};
    const std::shared_ptr<BasisDelegate> delegate_ = std::make_shared<BasisDelegate>();
    CurlHttpSessionFactory factory_{authorities_.path()};
};

TEST_F(NativeTrust, ChecksChainDatesAndHostInFull) {
    struct Case {
        TestIdentity::Wish wish;
        const TestIdentity* issuer;
        std::string fault;
        std::string host = "localhost";
    };
    const TestIdentity stranger({.isAuthority = true});
    const std::string name = "DNS:localhost";
    for (const auto& [wish, issuer, fault, host] : std::vector<Case>{
             {{.names = name}, &authority_, "", "LOCALHOST"},
             {{.names = "IP:127.0.0.1"}, &authority_, "", "127.0.0.1"},
             {{.names = "DNS:elsewhere.example"}, &authority_, "hostname mismatch"},
             {{.names = "DNS:127.0.0.1"}, &authority_, "IP address mismatch", "127.0.0.1"},
             {{.names = name, .secondsFromNow = -60}, &authority_, "certificate has expired"},
             {{.names = name, .secondsFromNow = 3 * 86'400L}, &authority_, "certificate is not yet valid"},
             {{.names = name, .usage = "clientAuth"}, &authority_, "unsuitable certificate purpose"},
             {{.names = name}, nullptr, "self-signed certificate"},
             {{.names = name}, &stranger, "unable to get local issuer certificate"},
         }) {
        const TestIdentity identity(wish, issuer);
        LoopbackServer server(ok, &identity);
        const auto outcome = fetch(factory_, get(server.url("/", host)), {}, delegate_);
        EXPECT_EQ(outcome.body == "ok", fault.empty()) << fault;
        EXPECT_EQ(server.requests().empty(), !fault.empty()) << fault;
        if (fault.empty()) continue;
        const auto& text = outcome.error->description;
        EXPECT_EQ(kindOf(outcome), HttpErrorKind::untrustedCertificate) << text;
        EXPECT_NE(text.find(fault), std::string::npos) << fault << text;
        EXPECT_NE(text.find(host), std::string::npos) << text;
    }
}

TEST_F(NativeTrust, TheDelegateOverrulesWhateverIsWrongAndHearsEachHostAsTheUrlSpellsIt) {
    delegate_->answer(ChallengeDisposition::useCredential);
    const TestIdentity expired({.names = "DNS:elsewhere.example", .secondsFromNow = -60});
    std::string next;
    LoopbackServer server(
        [&](const WireRequest& request) {
            return request.target == "/" ? wireReply(200, "ok") : wireReply(302, "", {{"Location", next}});
        },
        &expired);
    next = server.url("/", "127.0.0.1");
    EXPECT_EQ(fetch(factory_, get(server.url("/away", "LocalHost")), {}, delegate_).body, "ok");
    EXPECT_EQ(delegate_->hosts(), (Strings{"LocalHost", "127.0.0.1"}));

    LoopbackServer v6(LoopbackServer::answering(ok), &trusted_, "::1");
    if (!v6.isListening()) GTEST_SKIP() << "this machine has no IPv6";
    EXPECT_EQ(fetch(factory_, get(v6.url("/", "[::1]")), {}, delegate_).body, "ok");
    EXPECT_EQ(delegate_->hosts().back(), "::1");
    EXPECT_EQ(fetch(factory_, get(v6.url("/", "[::1]"))).body, "ok");
}

TEST_F(NativeTrust, ASessionKeepsWhatItsDelegateAcceptedWhileTheBasisStaysAndSharesItWithNone) {
    LoopbackServer server([](const WireRequest& request) { return wireReply(200, request.body); },
                          &selfSigned_);
    const auto url = server.url("/", "localhost");
    const std::string body(3'000'000, 'b');
    delegate_->answer(ChallengeDisposition::useCredential);
    const auto asked = [&](platform::HttpSession& by) {
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(fetch(by, get(url)).body, "");
            EXPECT_EQ(fetch(by, post(url, body)).body, body);
        }
        EXPECT_EQ(server.connections(), delegate_->hosts().size());
        return delegate_->hosts().size();
    };
    const auto one = factory_.makeSession({}, delegate_);
    EXPECT_EQ(asked(*one), 1U);
    EXPECT_EQ(asked(*factory_.makeSession({}, delegate_)), 2U);
    EXPECT_EQ(asked(*one), 2U);
    delegate_->basis = "another";
    EXPECT_EQ(asked(*one), 3U);
    delegate_->basis.reset();  // it should accept nothing: what it accepts all the same is not kept
    EXPECT_EQ(asked(*one), 7U);
    delegate_->basis = "withdrawn";
    delegate_->answer(ChallengeDisposition::performDefaultHandling);
    EXPECT_EQ(kindOf(fetch(*one, get(url))), HttpErrorKind::untrustedCertificate);
    EXPECT_EQ(kindOf(fetch(factory_, get(url))), HttpErrorKind::untrustedCertificate);
}

TEST_F(NativeTrust, SendsNoPostTwiceOverAKeptConnectionAndClosesItWithTheSession) {
    std::promise<void> closed;
    LoopbackServer server(
        [&](WireConnection& connection) {
            if (!connection.receive()) return;
            connection.send(wireReply(200, "ok"));
            if (!connection.receive()) closed.set_value();
        },
        &selfSigned_);
    delegate_->answer(ChallengeDisposition::useCredential);
    auto session = factory_.makeSession({}, delegate_);
    const auto url = server.url("/", "localhost");
    EXPECT_EQ(fetch(*session, get(url)).body, "ok");
    EXPECT_EQ(kindOf(fetch(*session, post(url, "x"))), HttpErrorKind::connectionLost);
    EXPECT_EQ(server.requests().size(), 2U);
    EXPECT_EQ(fetch(*session, get(url)).body, "ok");
    session.reset();
    closed.get_future().wait();
}

TEST_F(NativeTrust, AsksOncePerConnectionSharesWhatNoDelegateAcceptsAndNamesUnreadableAuthorities) {
    LoopbackServer plain([](WireConnection& connection) { connection.send(wireReply(400)); });
    const auto outcome = fetch(factory_, get("https" + plain.url("/").substr(4)), {}, delegate_);
    EXPECT_EQ(kindOf(outcome), HttpErrorKind::secureConnectionFailed) << outcome.error->description;
    EXPECT_TRUE(delegate_->hosts().empty()) << "there is no TLS";

    LoopbackServer server(ok, &trusted_);
    delegate_->basis.reset();
    for (const auto& delegate : {delegate_, delegate_, std::shared_ptr<BasisDelegate>()})
        EXPECT_EQ(fetch(factory_, get(server.url("/")), {}, delegate).body, "ok");
    EXPECT_EQ(delegate_->hosts().size(), 1U);
    EXPECT_EQ(server.connections(), 1U);

    const TestFile notCertificates("no certificates");
    for (const auto& path : {std::string("/no/such/file.pem"), notCertificates.path()}) {
        CurlHttpSessionFactory factory(path);
        const auto text = fetch(factory, get(server.url("/"))).error->description;
        EXPECT_NE(text.find(path), std::string::npos) << text;
    }
}

}  // namespace
}  // namespace oska::native
