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
    void publish(Kind kind, const std::string& version) {
        site_.publish(version, kind == Kind::dapo ? DAPO_DOCUMENT : PELIO_DOCUMENT);
    }

    void start(Kind kind, bool forceUpdate, OskaResourceManager::LoadCompletion completion) {
        const auto load = kind == Kind::dapo ? &OskaResourceManager::loadDapoResources
                                             : &OskaResourceManager::loadPelioResources;
        (*manager_.*load)(12, forceUpdate, std::move(completion));
    }

    /// Loads sector 12 to its end and returns the manager's log lines (see `managerLines`).
    Lines load(Kind kind, bool forceUpdate = false) {
        output_.take();
        bool isReturned = false;
        int answers = 0;
        start(kind, forceUpdate, [&](bool success) {
            EXPECT_TRUE(isReturned && world_.time().isMainThread());
            success_ = success;
            ++answers;
        });
        isReturned = true;
        world_.time().advanceBy(std::chrono::minutes(2));
        EXPECT_EQ(answers, 1);
        return managerLines(kind);
    }

    /// The manager's lines since the last call: the level's first letter, a blank, the message, where "%"
    /// stands for the kind's name.
    Lines managerLines(Kind kind) {
        const std::string tag = "[OskaResourceManager] ";
        const std::string name = kind == Kind::dapo ? "Dapo" : "Pelio";
        Lines lines;
        for (auto line : output_.take()) {
            const auto at = line.find(tag);
            if (at == std::string::npos) continue;
            line = line.substr(1, 1) + " " + line.substr(at + tag.size());
            while (line.find(name) != std::string::npos) line.replace(line.find(name), name.size(), "%");
            lines.push_back(line);
        }
        return lines;
    }

    virtual_world::VirtualPlatform world_{{1'700'000'000'000, 0}};
    fakes::SiteServer site_{world_.server()};
    std::shared_ptr<OskaNetworkManager> network_ = std::make_shared<OskaNetworkManager>(world_.platform());
    std::shared_ptr<OskaResourceManager> manager_ =
        std::make_shared<OskaResourceManager>(world_.platform(), network_);
    fakes::OutputCapture output_;
    bool success_ = false;
};

const std::string FETCHED = "I (load%Bundle) : fetched BundleOutput // sectorId = 12, versionId = v1";

TEST_F(ResourceManager, DownloadsOnceReusesTheVersionAndDownloadsAgainWhenForced) {
    const auto resources = [](const std::string& text) {
        return Lines{FETCHED, "I (load%Resources) : " + text + " %Bundle // sectorId = 12, versionId = v1"};
    };
    publish(Kind::pelio, "v1");
    EXPECT_EQ(load(Kind::pelio), resources("updated"));
    EXPECT_TRUE(success_);
    const auto first = manager_->currentPelioBundle();
    ASSERT_TRUE(first);
    const auto seen = world_.server().requests();
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].request.url.absoluteString(),
              "http://localhost:5050/v2/pelio/sectors/12/bundle?operating_system=iOS");
    EXPECT_EQ(seen[1].request.url.absoluteString(), "http://files/bundle.json");
    EXPECT_TRUE(seen[1].request.headers.empty() && !seen[1].request.timeout) << "no token for files";

    EXPECT_EQ(load(Kind::pelio), resources("version unchanged, use cached"));
    EXPECT_EQ(manager_->currentPelioBundle(), first);
    EXPECT_EQ(world_.server().requests().size(), 3u);

    EXPECT_EQ(load(Kind::pelio, true), resources("force updated"));
    EXPECT_EQ(world_.server().requests().size(), 5u);
    EXPECT_FALSE(manager_->currentDapoBundle());
}

/// Where a load fails: at the endpoint, at its reply, in the download, or at the downloaded bundle.
enum class Stage { endpoint, descriptor, download, bundle };

struct FailureCase {
    Stage stage;
    ScriptedAnswer answer;
    Lines reason;  ///< the first lines
    std::string url = "http://files/bundle.json";
};

/// The lines after the reason: what the load makes of the failure. `fallsBack`: version v0 is held.
Lines ending(const FailureCase& failure, bool isDapo, bool fallsBack, bool forceUpdate) {
    const std::string reused =
        "I (load%Resources) : version unchanged, use cached %Bundle // sectorId = 12, versionId = v0";
    const std::string noOutput =
        "E (load%Resources) : serverBundleOutput is nil // sectorId = 12, forceUpdate = ";
    const std::string noData =
        "E (load%Resources) : downloadResourceData returned nil // sectorId = 12, versionId = v1, url = ";
    const bool saysDecoding = isDapo && failure.stage == Stage::bundle;
    if (failure.stage <= Stage::descriptor && !fallsBack)
        return isDapo ? Lines{noOutput + (forceUpdate ? "true" : "false")} : Lines{};
    if (failure.stage == Stage::descriptor) return {reused};
    if (failure.stage == Stage::endpoint) {
        return {
            "W (load%Bundle) : use cached BundleOutput because server request failed // sectorId = 12, "
            "versionId = v0",
            reused};
    }
    Lines lines{
        saysDecoding
            ? "E (load%Resources) : failed to decode %Bundle // sectorId = 12, versionId = v1, dataSize = 0"
            : noData + failure.url};
    if (isDapo && fallsBack) {
        lines.push_back(std::string("W (load%Resources) : use cached %Bundle because ") +
                        (saysDecoding ? "decode failed" : "downloaded data is nil") +
                        " // sectorId = 12, cachedVersionId = v0");
    }
    return lines;
}

class ResourceFailure : public ResourceManager {
protected:
    void check(const FailureCase& failure, Kind kind, bool isHeld, bool forceUpdate) {
        SCOPED_TRACE(testing::Message() << failure.reason.back() << int(kind) << isHeld << forceUpdate);
        manager_ = std::make_shared<OskaResourceManager>(world_.platform(), network_);
        publish(kind, "v0");
        if (isHeld) load(kind);
        publish(kind, "v1");
        const bool isInDescriptor = failure.stage <= Stage::descriptor || failure.url.empty();
        (isInDescriptor ? site_.descriptor : site_.bundle) = failure.answer;

        const bool isDapo = kind == Kind::dapo;
        const bool fallsBack = isHeld && !forceUpdate;
        auto expected = failure.reason;
        for (auto& line : ending(failure, isDapo, fallsBack, forceUpdate)) expected.push_back(line);
        EXPECT_EQ(load(kind, forceUpdate), expected);
        EXPECT_EQ(success_, fallsBack);
        EXPECT_EQ(manager_->currentDapoBundle() != nullptr, isHeld && isDapo);
        EXPECT_EQ(manager_->currentPelioBundle() != nullptr, isHeld && !isDapo);
    }
};

TEST_F(ResourceFailure, LogsItsLinesAndFallsBackToWhatIsHeldUnlessForced) {
    using enum Stage;
    const auto notFetched = [](const std::string& status) {
        return Lines{"E (load%Bundle) : failed to fetch BundleOutput // sectorId = 12, status = " + status};
    };
    const auto lost = [](const std::string& why) {
        return Lines{FETCHED, "E (downloadResourceData) : " + why};
    };
    const FailureCase table[] = {
        {endpoint, reply(201, "{}"), notFetched("201")},
        {endpoint, virtual_world::refusal(), notFetched("500")},
        {descriptor,
         reply(200, R"({"url":"u"})"),
         {"E (decodeJSONData) : version_id: missing",
          "E (load%Bundle) : failed to decode BundleOutput // sectorId = 12"}},
        {download, reply(200, R"({"url":"","version_id":"v1"})"), lost("invalid url = "), ""},
        {download, reply(404), lost("invalid status = 404")},
        {download, virtual_world::replyBeyondHttp("x"), lost("invalid status = -1")},
        {download, reply(200, std::nullopt), lost("empty response data")},
        {download, failure(HttpErrorKind::connectionLost, "cut off"), lost("request failed = cut off")},
        {bundle,
         reply(200, ""),
         {FETCHED, "E (decodeJSONData) : malformed JSON in line 1: expected a value, found the end"}},
    };
    for (const auto& failure : table) {
        for (const auto kind : {Kind::dapo, Kind::pelio}) {
            for (const int variant : {0, 1, 2, 3}) check(failure, kind, variant / 2 == 1, variant % 2 == 1);
        }
    }
}

TEST_F(ResourceManager, KeepsEachSectorsBundleAndTakesTheRightOneIntoUse) {
    auto other = DAPO_DOCUMENT;
    other.replace(other.find("\"id\":12"), 7, "\"id\":13");
    world_.server().onPath("/v2/dapo/sectors/13/bundle",
                           virtual_world::always(reply(200, R"({"url":"http://h/13","version_id":"v1"})")));
    world_.server().onPath("/13", virtual_world::always(reply(200, other)));
    publish(Kind::dapo, "v1");
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

/// Sessions that throw, or complete each request more than once; fewer than 0: there is none.
struct FaultySessions : platform::HttpSessionFactory, platform::HttpSession {
    explicit FaultySessions(int completions) : count(completions) {}
    std::unique_ptr<platform::HttpSession> makeSession(
        const platform::HttpSessionConfiguration&, std::shared_ptr<platform::HttpSessionDelegate>) override {
        return count < 0 ? nullptr : std::make_unique<FaultySessions>(count);
    }
    void send(platform::HttpRequest, Completion completion) override {
        if (count == 0) throw 1;
        for (int i = 0; i < count; ++i) completion({});
    }
    int count;
};

TEST_F(ResourceManager, EndsEachLoadOnceWhateverTheSessionsDo) {
    publish(Kind::pelio, "v1");
    for (const int completions : {-1, 0, 2}) {
        auto platform = world_.platform();
        platform.http = std::make_shared<FaultySessions>(completions);
        for (const auto& network : {network_, std::make_shared<OskaNetworkManager>(platform)}) {
            manager_ = std::make_shared<OskaResourceManager>(platform, network);
            load(Kind::pelio);
            EXPECT_FALSE(success_);
        }
    }
}

TEST_F(ResourceManager, MayBeAskedOnAnyThread) {
    publish(Kind::pelio, "v1");
    std::atomic<int> successes{0};
    std::thread asking([&] {
        for (int i = 0; i < 100; ++i) {
            manager_->loadPelioResources(12, false, [&](bool success) { successes += success ? 1 : 0; });
        }
    });
    while (successes < 100) world_.time().advanceBy(std::chrono::milliseconds(1));
    asking.join();
}

/// Each kind's last line when the manager goes while a load waits for the descriptor, or for the download.
TEST_F(ResourceManager, EndsALoadThatOutlivesIt) {
    const std::tuple<Kind, int, std::string, std::string> table[] = {
        {Kind::dapo, 0, "(load%Resources) : self is nil before processing BundleOutput",
         "forceUpdate = false"},
        {Kind::pelio, 0, "(load%Bundle) : self is nil before handling BundleOutput response", "status = 200"},
        {Kind::dapo, 1, "(load%Resources) : self is nil before decoding %Bundle", "versionId = v1"},
        {Kind::pelio, 1, "(load%Resources) : downloadResourceData returned nil",
         "versionId = v1, url = http://files/bundle.json"},
    };
    for (const auto& [kind, seconds, text, values] : table) {
        manager_ = std::make_shared<OskaResourceManager>(world_.platform(), network_);
        publish(kind, "v1");
        site_.bundle = std::move(site_.bundle).delayedBy(std::chrono::seconds(2));
        std::optional<bool> success;
        start(kind, false, [&](bool loaded) { success = loaded; });
        if (seconds > 0) world_.time().advanceBy(std::chrono::seconds(seconds));
        manager_.reset();
        world_.time().advanceBy(std::chrono::seconds(2));
        EXPECT_EQ(success, false);
        EXPECT_EQ(managerLines(kind).back(), "E " + text + " // sectorId = 12, " + values);
    }
}

}  // namespace
}  // namespace oska
