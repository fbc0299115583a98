#include "oska/resources/resource_manager.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "oska/foundation/network_constants.h"
#include "tests/fakes/output_capture.h"
#include "tests/fakes/site_server.h"

namespace oska {
namespace {

using fakes::DAPO_DOCUMENT;
using fakes::PELIO_DOCUMENT;
using platform::HttpErrorKind;
using virtual_world::failure;
using virtual_world::reply;
using virtual_world::ScriptedAnswer;
using Lines = std::vector<std::string>;

enum class Kind { dapo, pelio };

class ResourceManager : public testing::Test {
protected:
    /// Loads sector 12 to its end; the log lines of the manager, without level and class tag of the good
    /// ones.
    Lines load(Kind kind, bool forceUpdate = false) {
        output_.take();
        bool isReturned = false;
        answers_ = 0;
        const auto completion = [&](bool success) {
            EXPECT_TRUE(isReturned && world_.time().isMainThread());
            success_ = success;
            ++answers_;
        };
        if (kind == Kind::dapo) {
            manager_->loadDapoResources(12, forceUpdate, completion);
        } else {
            manager_->loadPelioResources(12, forceUpdate, completion);
        }
        isReturned = true;
        world_.time().advanceBy(std::chrono::minutes(2));
        EXPECT_EQ(answers_, 1);
        return managerLines();
    }

    Lines managerLines() {
        Lines lines;
        for (const auto& line : output_.take()) {
            const std::string tag = "[OskaResourceManager] ";
            if (const auto at = line.find(tag); at != std::string::npos) {
                lines.push_back(line.substr(1, 1) + " " + line.substr(at + tag.size()));
            }
        }
        return lines;
    }

    std::size_t downloads() const {
        std::size_t count = 0;
        for (const auto& seen : world_.server().requests()) {
            if (seen.request.url.absoluteString().starts_with("http://files/")) ++count;
        }
        return count;
    }

    mutable virtual_world::VirtualPlatform world_{{1'700'000'000'000, 0}};
    fakes::SiteServer site_{world_.server()};
    std::shared_ptr<OskaNetworkManager> network_ = std::make_shared<OskaNetworkManager>(world_.platform());
    std::shared_ptr<OskaResourceManager> manager_ =
        std::make_shared<OskaResourceManager>(world_.platform(), network_);
    fakes::OutputCapture output_;
    bool success_ = false;
    int answers_ = 0;
};

TEST_F(ResourceManager, DownloadsOnceReusesTheVersionAndDownloadsAgainWhenForced) {
    site_.publish("v1", PELIO_DOCUMENT);
    EXPECT_EQ(load(Kind::pelio),
              (Lines{"I (loadPelioBundle) : fetched BundleOutput // sectorId = 12, versionId = v1",
                     "I (loadPelioResources) : updated PelioBundle // sectorId = 12, versionId = v1"}));
    EXPECT_TRUE(success_);
    const auto first = manager_->currentPelioBundle();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->name, "site");

    EXPECT_EQ(load(Kind::pelio),
              (Lines{"I (loadPelioBundle) : fetched BundleOutput // sectorId = 12, versionId = v1",
                     "I (loadPelioResources) : version unchanged, use cached PelioBundle // sectorId = 12, "
                     "versionId = v1"}));
    EXPECT_EQ(manager_->currentPelioBundle(), first);
    EXPECT_EQ(downloads(), 1u);

    EXPECT_EQ(load(Kind::pelio, true),
              (Lines{"I (loadPelioBundle) : fetched BundleOutput // sectorId = 12, versionId = v1",
                     "I (loadPelioResources) : force updated PelioBundle // sectorId = 12, versionId = v1"}));
    EXPECT_EQ(downloads(), 2u);
    EXPECT_FALSE(manager_->currentDapoBundle());
}

TEST_F(ResourceManager, SendsTheDownloadWithoutTokenAndTheDescriptorRequestToTheServicesPath) {
    site_.publish("v1", DAPO_DOCUMENT);
    load(Kind::dapo);
    const auto seen = world_.server().requests();
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].request.url.absoluteString(),
              "http://localhost:5050/v2/dapo/sectors/12/bundle?operating_system=iOS");
    EXPECT_EQ(seen[1].request.url.absoluteString(), "http://files/bundle.json");
    EXPECT_TRUE(seen[1].request.headers.empty());
    EXPECT_FALSE(seen[1].request.timeout);
}

/// What a failure logs and answers: for each kind, with nothing held, with version "v0" held, and when
/// forced.
struct FailureCase {
    std::string name;
    std::function<void(fakes::SiteServer&)> breakServer;
    Lines dapoLines;
    Lines dapoFallbackLines;  // more lines when a bundle is held and nothing is forced
    Lines pelioLines;
    Lines pelioFallbackLines;
    bool endsAtEndpoint = true;
};

class ResourceFailure : public ResourceManager, public testing::WithParamInterface<FailureCase> {
protected:
    void check(Kind kind, bool isHeld, bool forceUpdate) {
        SCOPED_TRACE(testing::Message() << (kind == Kind::dapo ? "Dapo" : "Pelio") << isHeld << forceUpdate);
        const auto& failure = GetParam();
        if (isHeld) {
            site_.publish("v0", kind == Kind::dapo ? DAPO_DOCUMENT : PELIO_DOCUMENT);
            load(kind);
        }
        site_.publish("v1", kind == Kind::dapo ? DAPO_DOCUMENT : PELIO_DOCUMENT);
        failure.breakServer(site_);

        const bool fallsBack = isHeld && !forceUpdate;
        auto expected = kind == Kind::dapo ? failure.dapoLines : failure.pelioLines;
        const auto& more = kind == Kind::dapo ? failure.dapoFallbackLines : failure.pelioFallbackLines;
        if (fallsBack) {
            expected.insert(expected.end(), more.begin(), more.end());
        } else if (failure.endsAtEndpoint && kind == Kind::dapo) {
            expected.push_back(
                std::string("E (loadDapoResources) : serverBundleOutput is nil // sectorId = 12, ") +
                "forceUpdate = " + (forceUpdate ? "true" : "false"));
        }
        EXPECT_EQ(load(kind, forceUpdate), expected);
        EXPECT_EQ(success_, fallsBack);
        const bool hasCurrent =
            kind == Kind::dapo ? bool(manager_->currentDapoBundle()) : bool(manager_->currentPelioBundle());
        EXPECT_EQ(hasCurrent, isHeld);
    }
};

TEST_P(ResourceFailure, LogsItsLinesAndFallsBackToWhatIsHeldUnlessForced) {
    for (const auto kind : {Kind::dapo, Kind::pelio}) {
        check(kind, false, false);
        check(kind, false, true);
        check(kind, true, false);
        check(kind, true, true);
    }
}

Lines both(Lines first, const Lines& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

FailureCase endpointFailure(std::string name, ScriptedAnswer answer, int status) {
    const auto failed = [&](const std::string& kind) {
        return Lines{"E (load" + kind + "Bundle) : failed to fetch BundleOutput // sectorId = 12, status = " +
                     std::to_string(status)};
    };
    const auto reused = [](const std::string& kind) {
        return Lines{"W (load" + kind +
                         "Bundle) : use cached BundleOutput because server request failed // sectorId = 12, "
                         "versionId = v0",
                     "I (load" + kind + "Resources) : version unchanged, use cached " + kind +
                         "Bundle // sectorId = 12, versionId = v0"};
    };
    return {std::move(name), [answer = std::move(answer)](auto& site) { site.descriptor = answer; },
            failed("Dapo"),  reused("Dapo"),
            failed("Pelio"), reused("Pelio")};
}

FailureCase garbledDescriptor() {
    const std::string reason = "E (decodeJSONData) : version_id: missing";
    const auto failed = [&](const std::string& kind) {
        return Lines{reason, "E (load" + kind + "Bundle) : failed to decode BundleOutput // sectorId = 12"};
    };
    const auto reused = [](const std::string& kind) {
        return Lines{"I (load" + kind + "Resources) : version unchanged, use cached " + kind +
                     "Bundle // sectorId = 12, versionId = v0"};
    };
    return {"DescriptorWithoutVersion",
            [](auto& site) { site.descriptor = reply(200, R"({"url":"u"})"); },
            failed("Dapo"),
            reused("Dapo"),
            failed("Pelio"),
            reused("Pelio")};
}

FailureCase downloadFailure(std::string name, std::function<void(fakes::SiteServer&)> breakServer,
                            Lines reason, std::string url = "http://files/bundle.json") {
    const Lines fetched{"I (load%Bundle) : fetched BundleOutput // sectorId = 12, versionId = v1"};
    const auto named = [](Lines lines, const std::string& kind) {
        for (auto& line : lines) {
            if (const auto at = line.find('%'); at != std::string::npos) line.replace(at, 1, kind);
        }
        return lines;
    };
    const auto all =
        both(both(fetched, reason),
             {"E (load%Resources) : downloadResourceData returned nil // sectorId = 12, versionId = v1, "
              "url = " +
              url});
    return {std::move(name),
            std::move(breakServer),
            named(all, "Dapo"),
            {"W (loadDapoResources) : use cached DapoBundle because downloaded data is nil // sectorId = 12, "
             "cachedVersionId = v0"},
            named(all, "Pelio"),
            {},
            false};
}

FailureCase emptyBundle() {
    auto result =
        downloadFailure("EmptyBundleFile", [](auto& site) { site.bundle = reply(200, ""); },
                        {"E (decodeJSONData) : malformed JSON in line 1: expected a value, found the end"});
    result.dapoLines.back() =
        "E (loadDapoResources) : failed to decode DapoBundle // sectorId = 12, versionId = v1, dataSize = 0";
    result.dapoFallbackLines = {
        "W (loadDapoResources) : use cached DapoBundle because decode failed // sectorId = 12, "
        "cachedVersionId = v0"};
    return result;
}

FailureCase badUrl() {
    return downloadFailure(
        "EmptyUrl", [](auto& site) { site.descriptor = reply(200, R"({"url":"","version_id":"v1"})"); },
        {"E (downloadResourceData) : invalid url = "}, "");
}

INSTANTIATE_TEST_SUITE_P(
    Table, ResourceFailure,
    testing::Values(
        endpointFailure("Status503", reply(503), 503), endpointFailure("Status201", reply(201, "{}"), 201),
        endpointFailure("Refused", virtual_world::refusal(), 500),
        endpointFailure("Silence", virtual_world::silence(), 500), garbledDescriptor(),
        downloadFailure("Download404", [](auto& site) { site.bundle = reply(404); },
                        {"E (downloadResourceData) : invalid status = 404"}),
        downloadFailure("DownloadBeyondHttp",
                        [](auto& site) { site.bundle = virtual_world::replyBeyondHttp("x"); },
                        {"E (downloadResourceData) : invalid status = -1"}),
        downloadFailure("DownloadWithoutBody", [](auto& site) { site.bundle = reply(200, std::nullopt); },
                        {"E (downloadResourceData) : empty response data"}),
        downloadFailure("DownloadLost",
                        [](auto& site) { site.bundle = failure(HttpErrorKind::connectionLost, "cut off"); },
                        {"E (downloadResourceData) : request failed = cut off"}),
        badUrl(), emptyBundle()),
    [](const auto& test) { return test.param.name; });

TEST_F(ResourceManager, AnswersTwoLoadsAtOnceEachOnItsOwn) {
    site_.publish("v1", DAPO_DOCUMENT);
    int successes = 0;
    for (int i = 0; i < 2; ++i) {
        manager_->loadDapoResources(12, false, [&](bool success) { successes += success ? 1 : 0; });
    }
    world_.time().advanceBy(std::chrono::seconds(1));
    EXPECT_EQ(successes, 2);
    EXPECT_EQ(downloads(), 2u);
}

TEST_F(ResourceManager, KeepsEachSectorsBundleAndTakesTheRightOneIntoUse) {
    auto other = DAPO_DOCUMENT;
    other.replace(other.find("\"id\":12"), 7, "\"id\":13");
    world_.server().onPath("/v2/dapo/sectors/13/bundle",
                           virtual_world::always(reply(200, R"({"url":"http://h/13","version_id":"v1"})")));
    world_.server().onPath("/13", virtual_world::always(reply(200, other)));
    site_.publish("v1", DAPO_DOCUMENT);
    const auto loadOther = [&] {
        manager_->loadDapoResources(13, false, [&](bool success) { EXPECT_TRUE(success); });
        world_.time().advanceBy(std::chrono::seconds(1));
        EXPECT_EQ(manager_->currentDapoBundle()->id, 13);
    };
    load(Kind::dapo);
    loadOther();
    load(Kind::dapo);
    EXPECT_EQ(manager_->currentDapoBundle()->id, 12) << "reused";
    loadOther();
    site_.publish("v2", "no JSON");
    load(Kind::dapo);
    EXPECT_EQ(manager_->currentDapoBundle()->id, 12) << "fallen back to";
}

TEST_F(ResourceManager, AcceptsTheOnPremiseServersOwnCertificateForBothRequests) {
    OskaOnPremiseNetworkConstants::setBaseURL("https://appliance");
    world_.server().setUntrusted("appliance");
    site_.descriptor = reply(200, R"({"url":"https://appliance/file","version_id":"v1"})");
    world_.server().onPath("/file", virtual_world::always(reply(200, PELIO_DOCUMENT)));
    load(Kind::pelio);
    EXPECT_TRUE(success_);
}

struct FaultySessions : platform::HttpSessionFactory, platform::HttpSession {
    enum class Fault { completesTwice, throws, isNone };
    FaultySessions(std::shared_ptr<HttpSessionFactory> good, Fault kind)
        : factory(std::move(good)), session(factory->makeSession({}, nullptr)), fault(kind) {}
    std::unique_ptr<platform::HttpSession> makeSession(
        const platform::HttpSessionConfiguration&, std::shared_ptr<platform::HttpSessionDelegate>) override {
        return fault == Fault::isNone ? nullptr : std::make_unique<FaultySessions>(factory, fault);
    }
    void send(platform::HttpRequest request, Completion completion) override {
        if (fault == Fault::throws) throw 1;
        session->send(std::move(request), [completion](const platform::HttpOutcome& outcome) {
            for (int i = 0; i < 2; ++i) completion(outcome);
        });
    }
    std::shared_ptr<HttpSessionFactory> factory;
    std::unique_ptr<platform::HttpSession> session;
    Fault fault;
};

TEST_F(ResourceManager, EndsEachLoadOnceWhateverTheSessionsDo) {
    site_.publish("v1", PELIO_DOCUMENT);
    using enum FaultySessions::Fault;
    for (const auto fault : {completesTwice, throws, isNone}) {
        auto platform = world_.platform();
        platform.http = std::make_shared<FaultySessions>(platform.http, fault);
        if (fault == completesTwice) network_ = std::make_shared<OskaNetworkManager>(platform);
        manager_ = std::make_shared<OskaResourceManager>(platform, network_);
        load(Kind::pelio);
        EXPECT_EQ(success_, fault == completesTwice);
    }
}

TEST_F(ResourceManager, MayBeAskedOnAnyThread) {
    site_.publish("v1", PELIO_DOCUMENT);
    std::atomic<int> successes{0};
    std::thread asking([&] {
        for (int i = 0; i < 100; ++i) {
            manager_->loadPelioResources(12, false, [&](bool success) { successes += success ? 1 : 0; });
        }
    });
    while (successes < 100) world_.time().advanceBy(std::chrono::milliseconds(1));
    asking.join();
}

/// A load that outlives its manager: the lines of each kind, at the descriptor's answer and after the
/// download.
TEST_F(ResourceManager, EndsALoadThatOutlivesItWithTheDescriptorUnderWay) {
    site_.publish("v1", DAPO_DOCUMENT);
    bool success = true;
    manager_->loadDapoResources(12, false, [&](bool loaded) { success = loaded; });
    manager_.reset();
    world_.time().advanceBy(std::chrono::seconds(1));
    EXPECT_FALSE(success);
    EXPECT_EQ(managerLines(),
              (Lines{"E (loadDapoBundle) : self is nil before handling BundleOutput response // "
                     "sectorId = 12, status = 200",
                     "E (loadDapoResources) : self is nil before processing BundleOutput // "
                     "sectorId = 12, forceUpdate = false"}));
}

TEST_F(ResourceManager, EndsALoadThatOutlivesItWithTheDownloadUnderWay) {
    for (const auto kind : {Kind::dapo, Kind::pelio}) {
        manager_ = std::make_shared<OskaResourceManager>(world_.platform(), network_);
        site_.publish("v1", PELIO_DOCUMENT);
        site_.bundle = reply(200, PELIO_DOCUMENT).delayedBy(std::chrono::seconds(2));
        std::optional<bool> success;
        const auto completion = [&](bool loaded) { success = loaded; };
        if (kind == Kind::dapo) {
            manager_->loadDapoResources(12, false, completion);
        } else {
            manager_->loadPelioResources(12, false, completion);
        }
        world_.time().advanceBy(std::chrono::seconds(1));
        output_.take();
        manager_.reset();
        world_.time().advanceBy(std::chrono::seconds(2));
        EXPECT_EQ(success, false);
        EXPECT_EQ(managerLines().back(), kind == Kind::dapo
                                             ? "E (loadDapoResources) : self is nil before decoding "
                                               "DapoBundle // sectorId = 12, versionId = v1"
                                             : "E (loadPelioResources) : downloadResourceData returned nil "
                                               "// sectorId = 12, versionId = v1, "
                                               "url = http://files/bundle.json");
    }
}

}  // namespace
}  // namespace oska
