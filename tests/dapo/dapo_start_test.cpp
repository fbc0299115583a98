// What holds when a host acts in the middle of a start or a stop.
#include <gtest/gtest.h>

#include "tests/dapo/dapo_view_fixture.h"
#include "tests/fakes/scripted_generator.h"

namespace oska {
namespace {

using namespace std::chrono_literals;

/// Runs an action when its view shows.
class ShowListener : public platform::ViewPeer {
public:
    explicit ShowListener(std::function<void()> action) : action_(std::move(action)) {}
    void changed(const views::View& view, platform::ViewChange what) override {
        if (what == platform::ViewChange::hidden && !view.isHidden()) action_();
    }

private:
    std::function<void()> action_;
};

/// Detects the ward and shows the view inside each start of the generator.
class OvertakenDapoStart : protected fakes::ScriptedGenerators, public DapoViewTest {
protected:
    OvertakenDapoStart() : DapoViewTest({}, factory()) {
        makeReady();
        inGenerate = [](auto& generator) {
            for (int i = 0; i < 6; ++i) generator.send({i, {{"lobby-a", -60}}});
        };
    }

    /// Inside the next start: in what may run an event loop, or when the view shows.
    void actOnce(bool isInCheck, std::function<void()> action) {
        const auto act = [action = std::make_shared<std::function<void()>>(std::move(action))] {
            if (const auto once = std::exchange(*action, nullptr)) once();
        };
        inCheck = [=](auto&) { isInCheck ? act() : void(); };
        view_->setPeer(isInCheck ? nullptr : std::make_unique<ShowListener>(act));
    }
};

TEST_F(OvertakenDapoStart, LeavesWhatTheHostHasMadeOfTheServiceMeanwhile) {
    struct Case {
        std::function<void()> inside;
        Events heard;
        int running;
    };
    const std::vector<Case> cases{
        {[&] { view_->stopService(); }, {"start true"}, 0},
        {[&] { view_->startService(); }, {"start DUPLICATE_SERVICE", "start true"}, 1},
        {[&] { view_->stopService(), view_->startService(); }, {"start true", "start true"}, 1},
    };
    for (const bool isInCheck : {true, false}) {
        for (const auto& [inside, heard, isRunning] : cases) {
            actOnce(isInCheck, inside);
            view_->startService();
            EXPECT_EQ(host_->take(), heard);
            EXPECT_EQ(running, isRunning);
            EXPECT_EQ(view_->getVisibility(), isRunning == 0) << "hidden when stopped";
            pass(1s);
            EXPECT_EQ(host_->take(), isRunning ? Events{"changed lobby-a"} : Events{})
                << "ticks when running";
            view_->startService();
            EXPECT_EQ(host_->take(), Events{isRunning ? "start DUPLICATE_SERVICE" : "start true"});
            view_->stopService();
        }
    }
    EXPECT_EQ(running, 0);
}

TEST_F(OvertakenDapoStart, MayFailAndLoseTheViewMeanwhile) {
    isAvailable = false;
    actOnce(true, [&] { view_->stopService(); });
    view_->startService();
    actOnce(true, [&] {
        isAvailable = true;
        view_->stopService();
        view_->startService();
        isAvailable = false;
    });
    view_->startService();
    EXPECT_EQ(host_->take(), (Events{"start GENERATOR_FAIL", "start true", "start GENERATOR_FAIL"}));
    EXPECT_EQ(running, 1) << "the failed start stops its own generator only";
    view_->stopService();
    isAvailable = true;
    view_->removeFromSuperview();
    actOnce(true, [&] { view_.reset(); });
    view_->startService();
    EXPECT_EQ(running, 0);
}

TEST_F(OvertakenDapoStart, AStopInsideAStopMayBeFollowedByAStart) {
    view_->startService();
    bool isFirst = true;
    inStop = [&](auto&) {
        if (!std::exchange(isFirst, false)) return;
        view_->startService();
        view_->stopService();
        view_->startService();
    };
    view_->stopService();
    EXPECT_EQ(host_->take(), (Events{"start true", "start DUPLICATE_SERVICE", "start true"}));
    pass(1s);
    EXPECT_EQ(host_->take(), Events{"changed lobby-a"});
    view_->stopService();
    EXPECT_EQ(running, 0);
}

}  // namespace
}  // namespace oska
