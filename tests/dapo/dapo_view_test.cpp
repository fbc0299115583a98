#include "oska/dapo/dapo_view.h"

#include <gtest/gtest.h>

#include <cmath>

#include "oska/foundation/network_constants.h"
#include "oska/platform/quenlo_resource.h"
#include "oska/platform/quenlo_tovan.h"
#include "tests/dapo/dapo_view_fixture.h"

namespace oska {
namespace {

using namespace std::chrono_literals;
using platform::Notification;
using platform::NotificationCenter;

TEST_F(DapoViewTest, CoversTheHostsViewAndMovesToAnotherWithItsOneImage) {
    view_->configureFrame({});
    view_->configureFrame({.to = view_});
    EXPECT_FALSE(view_->superview());
    view_->configureFrame({.to = hostView_});
    EXPECT_EQ(
        output_.take(),
        (Events{"[ERROR] [DapoView] (configureFrame) : failed because matchView is nil",
                "[ERROR] [DapoView] (configureFrame) : failed because matchView is in the view",
                "(DapoView) : configureFrame // matchView.frame = (0, 0, 390, 844), matchView.bounds = "
                "(0, 0, 390, 844)",
                "[INFO]  [DapoView] (setupAssets) : success",
                "[INFO]  [DapoView] (configureFrame) : success // id = nil, frame = (0, 0, 390, 844)"}));
    ASSERT_EQ(view_->subviews().size(), 1u);
    const auto imageView = view_->subviews()[0];
    EXPECT_EQ(imageView->image(), views::imageNamed("ic_dapo"));
    EXPECT_EQ(imageView->alpha(), 0.65);
    hostView_->setFrame({0, 0, 844, 390});
    EXPECT_EQ(imageView->frame(), (views::Rect{0, 0, 844, 390}));

    const auto image = std::make_shared<const views::Image>(views::Image{"bytes", {10, 20}});
    const auto other = views::View::create({0, 0, 100, 100});
    view_->configureFrame({.to = other, .dapoImage = image});
    hostView_->setFrame({});
    EXPECT_TRUE(hostView_->subviews().empty());
    EXPECT_EQ(view_->subviews(), std::vector{imageView});
    EXPECT_EQ(imageView->image(), image);
    EXPECT_EQ(imageView->frame(), (views::Rect{0, 0, 100, 100}));
}

TEST_F(DapoViewTest, InitialisesAndTellsOfTheSite) {
    EXPECT_FALSE(view_->getDapoSectorInfo());
    makeReady();
    EXPECT_EQ(platform::TovanNetworkConstants::getRecRfdURL(), "http://uploads/v2/recordings/rfds");
    EXPECT_EQ(platform::QuenloResourceNetworkConstants::server().region, "KOREA");
    EXPECT_EQ(view_->getDapoMapImages().size(), 1u);
    EXPECT_EQ(view_->getDapoMapImage(10)->building_name, "main");
    EXPECT_FALSE(view_->getDapoMapImage(11));
    EXPECT_EQ(view_->getDapoSectorInfo()->buildings[0].levels[0].wards[0].x, 10);

    const std::vector<std::string> expected{
        "[INFO]  [DapoView] call initialize",
        "[INFO]  [DapoView] (initialize) : success // id = demo, sectorId = 12, forceUpdate = false",
        "[INFO]  [DapoView] (initialize) : DapoBundle(id: 12, name: \"site\"",
        "[INFO]  [DapoView] (indexDapoWards) : indexedDapoWardsByName= [\"lobby-a\": IndexedDapoWard(id: 17",
        "[INFO]  [DapoView] (indexDapoMapImages) : levelCount = 1"};
    auto next = expected.begin();
    for (const auto& line : output_.take()) {
        if (next != expected.end() && line.starts_with(*next)) ++next;
    }
    EXPECT_EQ(next, expected.end()) << "the first line that is missing or out of order: " << *next;
}

TEST_F(DapoViewTest, RefusesIntervalsThatAreNoneAndTakesTheOneOfEachInitialisation) {
    makeRunning();
    view_->setUnchangedDeliveryInterval(1);
    view_->setUnchangedDeliveryInterval(-1);
    view_->setSelectionInterval(std::nan(""));
    EXPECT_EQ(output_.take(),
              (Events{"[WARN]  [DapoView] (setUnchangedDeliveryInterval) : ignored because the interval is "
                      "not a number from zero on // seconds = -1.0",
                      "[WARN]  [DapoView] (setSelectionInterval) : ignored because the interval is not a "
                      "finite number above zero // seconds = nan"}));
    detect();
    pass(1s);
    EXPECT_EQ(host_->take(), (Events{"changed lobby-a", "changed lobby-a"})) << "the old values stay";
    for (const std::optional<double> none : {std::optional<double>{}, {-1.0}}) {
        view_->setUnchangedDeliveryInterval(1);
        view_->initialize({.id = "de mo", .baseURL = "http://other", .unchangedDeliveryInterval = none});
        detect();
        pass(2s);
        EXPECT_EQ(host_->take(), Events{"init INVALID_ID"}) << "what is refused counts as absent";
    }
    EXPECT_TRUE(platform::TovanNetworkConstants::getRecRfdURL().starts_with("http://other/"));
}

TEST_F(DapoViewTest, AFailedInitialisationForgetsEverythingAndRunsOn) {
    makeRunning();
    detect();
    site_.descriptor = virtual_world::reply(404);
    view_->initialize({.id = "demo", .sectorId = 13, .forceUpdate = true});
    pass(0s);
    EXPECT_EQ(host_->take(), (Events{"changed lobby-a", "init RESOURCE_FAIL"}));
    EXPECT_TRUE(view_->getVisibility());
    EXPECT_TRUE(view_->getDapoMapImages().empty());
    EXPECT_FALSE(view_->getDapoSectorInfo());
    detect();
    EXPECT_TRUE(view_->getCurrentDapoWards().empty());

    site_.publish("v2", fakes::DAPO_DOCUMENT);
    initialize();
    settle();
    detect();
    pass(1s);
    EXPECT_EQ(host_->take(), (Events{"map 10", "init true", "changed lobby-a"}));
}

TEST_F(DapoViewTest, AStopForgetsAndHidesAndTheNextStartTakesANewPeriod) {
    makeRunning();
    view_->setSelectionInterval(0.25);
    view_->setUnchangedDeliveryInterval(0);
    detect();
    pass(2s);
    EXPECT_EQ(host_->take(), (Events{"changed lobby-a", "changed lobby-a", "changed lobby-a"}));
    view_->stopService();
    EXPECT_TRUE(view_->getVisibility());
    EXPECT_TRUE(view_->getCurrentDapoWards().empty());
    pass(1s);
    EXPECT_TRUE(host_->take().empty()) << "no tick after a stop";
    output_.take();

    view_->startService();
    EXPECT_EQ(output_.take(),
              (Events{"[INFO]  [DapoView] (startGenerator) : success // id = demo, replayMode = false",
                      "[INFO]  [DapoView] (startTimer) : success // label = com.quenlo.oska.outputTimer, "
                      "interval = 0.25"}));
    EXPECT_FALSE(world_.source().last()->scanMode) << "the generator's default";
    for (int i = 0; i < 5; ++i) hear();
    EXPECT_TRUE(view_->getVisibility()) << "the buffer was emptied";
    hear();
    pass(500ms);
    EXPECT_EQ(host_->take(), (Events{"start true", "changed lobby-a", "changed lobby-a", "changed lobby-a"}))
        << "the first tick is due at once";
}

TEST_F(DapoViewTest, ShowsAtOnceTakesTapsAndHidesSilentlyAndDeliversWhenTheApplicationComesBack) {
    makeRunning();
    view_->configureFrame({.to = hostView_});  // a second time: still one recogniser
    output_.take();
    EXPECT_FALSE(hostView_->tapAt({1, 1})) << "a hidden view takes no taps";
    view_->setVisibility(true);
    EXPECT_TRUE(hostView_->tapAt({1, 1})) << "but nothing is selected";
    detect();
    hostView_->tapAt({1, 1});
    EXPECT_EQ(host_->take(), Events{"click lobby-a"});
    view_->setVisibility(false);
    EXPECT_EQ(output_.take(),
              Events{"[INFO]  [DapoView] (setVisibility) : delayed hide because visibility hold is active"});
    pass(0s);
    NotificationCenter::shared().post(Notification::willEnterForeground);
    EXPECT_EQ(host_->take(), (Events{"changed lobby-a", "changed lobby-a"}));
    pass(4999ms);
    EXPECT_FALSE(view_->getVisibility());
    pass(1ms);
    EXPECT_TRUE(view_->getVisibility());
    EXPECT_TRUE(view_->getCurrentDapoWards().empty());

    view_->stopService();
    const auto generator = world_.platform().makeRFDGenerator();
    for (int i = 0; i < 6; ++i) view_->onRfdResult(*generator, {i, {{"lobby-a", -60}}});
    EXPECT_EQ(view_->getCurrentDapoWards().size(), 1u);
    NotificationCenter::shared().post(Notification::willEnterForeground);
    EXPECT_TRUE(host_->take().empty()) << "nothing is delivered while stopped";
}

TEST_F(DapoViewTest, UploadsTheSamplesOfEachRunAlsoTheOnesThatDetectionSkips) {
    const auto wards = fakes::DAPO_DOCUMENT.find("\"wards\":[") + 9;
    site_.publish("v2", fakes::DAPO_DOCUMENT.substr(0, wards) + "]}]}]}");
    makeRunning();
    view_->stopService();
    view_->onRfdResult(*world_.platform().makeRFDGenerator(), {1, {{"late", -60}}});
    view_->startService();
    hear();
    view_->stopService();
    pass(0s);
    EXPECT_EQ(uploads(), Events{R"([{"mobile_time":1700000120000,"rfs":{"Lobby-A ":-60}}])"});
}

}  // namespace
}  // namespace oska
