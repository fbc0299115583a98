#include "oska/dapo/dapo_view.h"

#include <gtest/gtest.h>

#include <cmath>

#include "oska/foundation/logger.h"
#include "oska/foundation/network_constants.h"
#include "oska/platform/quenlo_resource.h"
#include "oska/platform/quenlo_tovan.h"
#include "tests/dapo/dapo_view_fixture.h"

namespace oska {
namespace {

using namespace std::chrono_literals;
using platform::Notification;
using platform::NotificationCenter;

// ---- placement

TEST_F(DapoViewTest, CoversTheHostsViewAndFollowsItsSize) {
    EXPECT_TRUE(view_->getVisibility());
    view_->configureFrame({.to = hostView_});
    EXPECT_EQ(
        output_.take(),
        (Events{"(DapoView) : configureFrame // matchView.frame = (0, 0, 390, 844), matchView.bounds = "
                "(0, 0, 390, 844)",
                "[INFO]  [DapoView] (setupAssets) : success",
                "[INFO]  [DapoView] (configureFrame) : success // id = nil, frame = (0, 0, 390, 844)"}));
    EXPECT_EQ(view_->superview(), hostView_);
    EXPECT_EQ(view_->frame(), (views::Rect{0, 0, 390, 844}));
    ASSERT_EQ(view_->subviews().size(), 1u);
    const auto imageView = view_->subviews()[0];
    EXPECT_EQ(imageView->image(), views::imageNamed("ic_dapo"));
    EXPECT_EQ(imageView->alpha(), 0.65);
    hostView_->setFrame({0, 0, 844, 390});
    EXPECT_EQ(imageView->frame(), (views::Rect{0, 0, 844, 390}));
}

TEST_F(DapoViewTest, MovesToAnotherHostWithOneImageAndOneRecogniser) {
    const auto image = std::make_shared<const views::Image>(views::Image{"bytes", {10, 20}});
    const auto other = views::View::create({0, 0, 100, 100});
    makeRunning();
    view_->configureFrame({.to = hostView_, .dapoImage = image});
    view_->configureFrame({.to = other, .dapoImage = image});
    EXPECT_TRUE(hostView_->subviews().empty());
    EXPECT_EQ(view_->frame(), (views::Rect{0, 0, 100, 100}));
    ASSERT_EQ(view_->subviews().size(), 1u);
    EXPECT_EQ(view_->subviews()[0]->image(), image);
    EXPECT_EQ(view_->subviews()[0]->frame(), view_->bounds());
    hostView_->setFrame({});
    EXPECT_EQ(view_->frame(), (views::Rect{0, 0, 100, 100}));

    detect();
    EXPECT_TRUE(other->tapAt({50, 50}));
    EXPECT_EQ(host_->take(), Events{"click lobby-a"});
}

TEST_F(DapoViewTest, RefusesToBePlacedNowhereAndInsideItself) {
    view_->configureFrame({});
    view_->configureFrame({.to = view_});
    EXPECT_EQ(output_.take(),
              (Events{"[ERROR] [DapoView] (configureFrame) : failed because matchView is nil",
                      "[ERROR] [DapoView] (configureFrame) : failed because matchView is in the view"}));
    EXPECT_FALSE(view_->superview());
}

// ---- initialisation

TEST_F(DapoViewTest, InitialisesAndTellsOfTheSite) {
    EXPECT_FALSE(view_->getDapoSectorInfo());
    initialize();
    settle();
    EXPECT_EQ(host_->take(), (Events{"map 10", "init true"}));
    EXPECT_EQ(platform::TovanNetworkConstants::getRecRfdURL(), "http://uploads/v2/recordings/rfds");
    EXPECT_EQ(platform::QuenloResourceNetworkConstants::server().region, "KOREA");
    EXPECT_EQ(view_->getDapoMapImages().size(), 1u);
    EXPECT_EQ(view_->getDapoMapImage(10)->building_name, "main");
    EXPECT_FALSE(view_->getDapoMapImage(11));
    EXPECT_EQ(view_->getDapoSectorInfo()->buildings[0].levels[0].wards[0].x, 10);

    Events lines;
    for (const auto& line : output_.take()) {
        if (line.find("DapoView") != std::string::npos) lines.push_back(line.substr(0, 100));
    }
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[0], "[INFO]  [DapoView] call initialize");
    EXPECT_EQ(lines[1],
              "[INFO]  [DapoView] (initialize) : success // id = demo, sectorId = 12, forceUpdate = false");
    EXPECT_TRUE(lines[2].starts_with("[INFO]  [DapoView] (initialize) : DapoBundle(id: 12, name: \"site\""));
    EXPECT_TRUE(
        lines[3].starts_with("[INFO]  [DapoView] (indexDapoWards) : indexedDapoWardsByName= [\"lobby-a\": "
                             "IndexedDapoWard(id: 17"));
    EXPECT_EQ(lines[4], "[INFO]  [DapoView] (indexDapoMapImages) : levelCount = 1");
}

TEST_F(DapoViewTest, RefusesAnInvalidIdButKeepsIntervalAndServer) {
    makeRunning();
    view_->setUnchangedDeliveryInterval(2);
    view_->initialize({.id = "de mo", .baseURL = "http://elsewhere"});  // without an interval: switched off
    EXPECT_TRUE(platform::TovanNetworkConstants::getRecRfdURL().starts_with("http://elsewhere/"));
    detect();
    pass(4s);
    EXPECT_EQ(host_->take(), (Events{"init INVALID_ID", "changed lobby-a"}));
}

TEST_F(DapoViewTest, AFailedInitialisationForgetsEverything) {
    makeRunning();
    detect();
    site_.descriptor = site_.bundle = virtual_world::reply(404);
    view_->initialize({.id = "demo", .sectorId = 13, .forceUpdate = true});
    pass(0s);
    EXPECT_EQ(host_->take(), (Events{"changed lobby-a", "init RESOURCE_FAIL"}));
    EXPECT_TRUE(lastLine().ends_with("sectorId = 13, forceUpdate = true"));
    EXPECT_TRUE(view_->getVisibility());
    EXPECT_TRUE(view_->getCurrentDapoWards().empty());
    EXPECT_TRUE(view_->getDapoMapImages().empty());
    EXPECT_FALSE(view_->getDapoSectorInfo());
    detect();
    EXPECT_TRUE(view_->getCurrentDapoWards().empty());
    view_->startService();
    EXPECT_EQ(host_->take(), Events{"start NOT_INITIALIZED"});

    site_.publish("v2", fakes::DAPO_DOCUMENT);
    initialize();
    settle();
    detect();
    pass(1s);
    EXPECT_EQ(host_->take(), (Events{"map 10", "init true", "changed lobby-a"})) << "it still runs";
}

TEST_F(DapoViewTest, ComposesNoDescriptionsWithTheLogSwitchedOff) {
    OskaLogger::setDebugOption(false);
    makeReady();
    for (const auto& line : output_.take()) EXPECT_TRUE(line.starts_with("(")) << line;
}

// ---- start and stop

TEST_F(DapoViewTest, StopFlushesForgetsHidesAndLeavesTheBundle) {
    makeRunning();
    detect();
    view_->stopService();
    EXPECT_TRUE(view_->getVisibility());
    EXPECT_TRUE(view_->getCurrentDapoWards().empty());
    EXPECT_FALSE(hear());
    pass(10s);
    EXPECT_EQ(uploads().size(), 1u);
    EXPECT_TRUE(host_->take().empty()) << "no tick after a stop";
    output_.take();

    view_->startService();
    EXPECT_EQ(output_.take(),
              (Events{"[INFO]  [DapoView] (startGenerator) : success // id = demo, replayMode = false",
                      "[INFO]  [DapoView] (startTimer) : success // label = com.quenlo.oska.outputTimer, "
                      "interval = 1.0"}));
    EXPECT_FALSE(world_.source().last()->scanMode) << "the generator's default";
    for (int i = 0; i < 5; ++i) hear();
    EXPECT_TRUE(view_->getVisibility()) << "the buffer was emptied";
    hear();
    pass(1s);
    EXPECT_EQ(host_->take(), (Events{"start true", "changed lobby-a"}));
}

// ---- output

TEST_F(DapoViewTest, ShowsAtOnceDeliversAtTheTickAndHidesSilently) {
    makeRunning();
    pass(500ms);
    detect();
    EXPECT_FALSE(view_->getVisibility());
    EXPECT_TRUE(host_->take().empty());
    view_->setVisibility(false);
    EXPECT_EQ(output_.take(),
              Events{"[INFO]  [DapoView] (setVisibility) : delayed hide because visibility hold is active"});
    pass(499ms);
    EXPECT_TRUE(host_->take().empty());
    pass(1ms);
    EXPECT_EQ(host_->take(), Events{"changed lobby-a"});
    pass(4499ms);
    EXPECT_EQ(view_->getCurrentDapoWards().size(), 1u);
    pass(1ms);
    EXPECT_TRUE(view_->getCurrentDapoWards().empty());
    EXPECT_TRUE(view_->getVisibility());
    EXPECT_TRUE(host_->take().empty());
}

TEST_F(DapoViewTest, ANewPeriodTakesEffectAtTheNextStartAndItsFirstTickIsDueAtOnce) {
    makeRunning();
    view_->setSelectionInterval(0.25);
    view_->setUnchangedDeliveryInterval(0);
    detect();
    pass(2s);
    EXPECT_EQ(host_->take(), (Events{"changed lobby-a", "changed lobby-a", "changed lobby-a"}));
    view_->stopService();
    view_->startService();
    detect();
    pass(500ms);
    EXPECT_EQ(host_->take(), (Events{"start true", "changed lobby-a", "changed lobby-a", "changed lobby-a"}));
}

TEST_F(DapoViewTest, RefusesIntervalsThatAreNone) {
    makeRunning();
    view_->setUnchangedDeliveryInterval(1);
    view_->setUnchangedDeliveryInterval(-1);
    view_->setSelectionInterval(std::nan(""));
    EXPECT_EQ(
        output_.take(),
        (Events{
            "[WARN]  [DapoView] (setUnchangedDeliveryInterval) : ignored because the interval is not a "
            "number "
            "from zero on // seconds = -1.0",
            "[WARN]  [DapoView] (setSelectionInterval) : ignored because the interval is not a finite number "
            "above zero // seconds = nan"}));
    detect();
    pass(1s);
    EXPECT_EQ(host_->take(), (Events{"changed lobby-a", "changed lobby-a"})) << "the old values stay";
    view_->initialize({.id = "demo", .sectorId = 12, .unchangedDeliveryInterval = -1});
    pass(2s);
    EXPECT_EQ(host_->take(), (Events{"map 10", "init true"})) << "counts as absent";
}

TEST_F(DapoViewTest, DeliversAgainWhenTheApplicationComesBack) {
    makeRunning();
    detect();
    pass(0s);
    NotificationCenter::shared().post(Notification::willEnterForeground);
    EXPECT_EQ(host_->take(), (Events{"changed lobby-a", "changed lobby-a"}));
    view_->stopService();
    const auto generator = world_.platform().makeRFDGenerator();
    for (int i = 0; i < 6; ++i) view_->onRfdResult(*generator, {i, {{"lobby-a", -60}}});
    EXPECT_EQ(view_->getCurrentDapoWards().size(), 1u);
    NotificationCenter::shared().post(Notification::willEnterForeground);
    EXPECT_TRUE(host_->take().empty()) << "nothing is delivered while stopped";
}

TEST_F(DapoViewTest, TapsReachTheHostWhileSomethingIsSelected) {
    makeRunning();
    view_->setVisibility(true);
    hostView_->tapAt({1, 1});
    EXPECT_TRUE(host_->take().empty()) << "nothing is selected";
    detect();
    hostView_->tapAt({1, 1});
    EXPECT_EQ(host_->take(), Events{"click lobby-a"});
    pass(6s);
    host_->take();
    EXPECT_FALSE(hostView_->tapAt({1, 1})) << "a hidden view takes no taps";
}

// ---- uploads

TEST_F(DapoViewTest, UploadsEverySampleAlsoTheOnesThatDetectionSkips) {
    const auto wards = fakes::DAPO_DOCUMENT.find("\"wards\":[") + 9;
    site_.publish("v2", fakes::DAPO_DOCUMENT.substr(0, wards) + "]}]}]}");
    initialize();
    settle();
    view_->startService();
    hear();
    pass(9999ms);
    hear();
    EXPECT_TRUE(uploads().empty());
    pass(1ms);
    hear();
    pass(0s);
    ASSERT_EQ(uploads().size(), 1u);
    EXPECT_TRUE(uploads()[0].starts_with(R"([{"mobile_time":1700000120000,"rfs":{"Lobby-A ":-60}},)"))
        << uploads()[0];
}

TEST_F(DapoViewTest, StartForgetsWhatAnEarlierRunLeft) {
    makeRunning();
    view_->stopService();
    platform::RFDGeneratorDelegate& late = *view_;
    const auto generator = platform::current().makeRFDGenerator();
    late.onRfdResult(*generator, {1, {{"a", -60}}});
    view_->startService();
    view_->stopService();
    pass(1s);
    EXPECT_TRUE(uploads().empty());
}

}  // namespace
}  // namespace oska
