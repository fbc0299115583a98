// What holds when views come and go on any thread, and when a host acts inside a start.
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>

#include "oska/foundation/logger.h"
#include "tests/dapo/dapo_view_fixture.h"
#include "tests/fakes/scripted_generator.h"

namespace oska {
namespace {

using namespace std::chrono_literals;
using platform::Notification;
using platform::NotificationCenter;

template <class Action>
void onAnotherThread(Action action) {
    std::thread(std::move(action)).join();
}

class DapoViewLifetime : public DapoViewTest {
protected:
    /// Something that only the view keeps.
    std::weak_ptr<const views::Image> keptByView() {
        const auto image = std::make_shared<const views::Image>();
        view_->configureFrame({.to = hostView_, .dapoImage = image});
        view_->removeFromSuperview();
        return image;
    }

    /// The view that other threads share. Threads: any.
    std::shared_ptr<DapoView> current() {
        const std::lock_guard lock(mutex_);
        return view_;
    }
    void replace() {
        auto next = DapoView::create();
        next->setDelegate(host_);
        const std::lock_guard lock(mutex_);
        view_.swap(next);
    }

    std::mutex mutex_;
};

TEST_F(DapoViewLifetime, MayLoseItsLastReferenceInsideAnyCallback) {
    for (const std::string last : {"changed lobby-a", "click lobby-a"}) {
        view_ = DapoView::create();
        view_->setDelegate(host_);
        makeRunning();
        const auto kept = keptByView();
        hostView_->addSubview(view_);
        host_->reaction = [this, last](const std::string& event) {
            if (event != last) return;
            view_->removeFromSuperview();
            view_.reset();
        };
        detect();
        pass(0s);
        hostView_->tapAt({1, 1});
        EXPECT_TRUE(kept.expired()) << last;
        host_->take();
    }
}

TEST_F(DapoViewLifetime, MayBeStoppedStartedAndInitialisedInsideAnyCallback) {
    host_->reaction = [&](const std::string& event) {
        if (event == "init true") view_->startService();
        if (event != "changed lobby-a") return;
        view_->stopService();
        initialize();
    };
    initialize();
    settle();
    detect();
    settle();
    EXPECT_EQ(host_->take(), (Events{"map 10", "init true", "start true", "changed lobby-a", "map 10",
                                     "init true", "start true"}));
}

TEST_F(DapoViewLifetime, TheLastReferenceOnAnotherThreadIsTornDownOnTheMainThread) {
    makeRunning();
    const auto kept = keptByView();
    hear();
    onAnotherThread([&] { view_.reset(); });
    EXPECT_FALSE(hear()) << "no callback finds a view on its way out";
    EXPECT_TRUE(world_.source().last()->isRunning) << "waits for the main thread";
    NotificationCenter::shared().post(Notification::willEnterForeground);
    pass(0s);
    EXPECT_FALSE(world_.source().last()->isRunning);
    EXPECT_TRUE(kept.expired());
    EXPECT_EQ(uploads().size(), 1u) << "flushed";
    settle();
    EXPECT_TRUE(host_->take().empty());
}

TEST_F(DapoViewLifetime, ASampleUnderWayWhenTheViewGoesIsStillUploaded) {
    makeRunning();
    onAnotherThread([&] { hear(); });
    view_->removeFromSuperview();
    view_.reset();
    auto second = DapoView::create();
    pass(0s);
    second.reset();
    pass(0s);
    EXPECT_EQ(uploads().size(), 1u) << "by the next view";
}

TEST_F(DapoViewLifetime, CallsFromElsewhereWaitForTheMainThreadAndDoNothingOnceItsQueueHasStopped) {
    makeReady();
    std::atomic<bool> isOver{false};
    std::thread other([&] {
        view_->startService();
        for (int i = 0; i < 6; ++i) hear();
        EXPECT_EQ(view_->getCurrentDapoWards().size(), 1u);
        EXPECT_FALSE(view_->getVisibility());
        NotificationCenter::shared().post(Notification::willEnterForeground);
        isOver = true;
    });
    while (!isOver) world_.time().runDue();
    other.join();
    pass(0s);
    EXPECT_EQ(host_->take(), (Events{"start true", "changed lobby-a"}));

    const auto kept = keptByView();
    output_.take();
    world_.time().stop();
    onAnotherThread([&] {
        initialize();
        view_->stopService();
        EXPECT_TRUE(view_->getCurrentDapoWards().empty());
        EXPECT_TRUE(view_->getVisibility());
        hear();
    });
    Events expected;
    for (const std::string operation :
         {"initialize", "stopService", "getCurrentDapoWards", "getVisibility"}) {
        expected.push_back("[ERROR] [DapoView] (" + operation + ") : main queue has stopped");
    }
    EXPECT_EQ(output_.take(), expected);
    EXPECT_TRUE(host_->take().empty());
    onAnotherThread([&] { view_.reset(); });
    EXPECT_TRUE(kept.expired()) << "destroyed where it is";
    EXPECT_FALSE(world_.source().last()->isRunning);
}

class OvertakenDapoStart : protected fakes::ScriptedGenerators, public DapoViewTest {
protected:
    OvertakenDapoStart() : DapoViewTest({}, factory()) {}
};

TEST_F(OvertakenDapoStart, IsHiddenWhenStoppedInsideAndTicksWhenStartedAgain) {
    makeReady();
    for (const bool restarts : {false, true}) {
        bool isFirst = true;
        inGenerate = [&](auto& generator) {
            for (int i = 0; i < 6; ++i) generator.send({i, {{"lobby-a", -60}}});
            if (!std::exchange(isFirst, false)) return;
            view_->stopService();
            if (restarts) view_->startService();
        };
        view_->startService();
        host_->take();
        EXPECT_EQ(view_->getVisibility(), !restarts);
        const auto generator = world_.platform().makeRFDGenerator();
        for (int i = 0; i < 6; ++i) view_->onRfdResult(*generator, {i, {{"lobby-a", -60}}});
        pass(1s);
        EXPECT_EQ(host_->take(), restarts ? Events{"changed lobby-a"} : Events{});
    }
}

TEST_F(DapoViewLifetime, IsSafeBetweenTheGeneratorsThreadAndTheHosts) {
    OskaLogger::setDebugOption(false);
    world_.server().keepRequests(false);
    auto& queue = world_.time();
    std::atomic<int> running{3};
    std::vector<std::thread> hosts;
    const auto repeat = [&](auto action) {
        hosts.emplace_back([&, action] {
            for (int round = 0; round < 200; ++round) action(round);
            --running;
        });
    };
    repeat([&](int round) {
        const auto view = current();
        view->initialize({.id = "demo", .sectorId = 12, .forceUpdate = round % 3 == 0});
        view->startService();
        view->setUnchangedDeliveryInterval(0);
        if (round % 2) view->stopService();
    });
    repeat([&](int round) {
        const auto view = current();
        EXPECT_LE(view->getCurrentDapoWards().size() + view->getDapoMapImages().size(), 2u);
        view->setVisibility(round % 2 == 0);
        NotificationCenter::shared().post(Notification::willEnterForeground);
    });
    repeat([&](int) { replace(); });
    std::thread generator([&] {
        for (std::int64_t time = 0; running > 0; time += 500) {
            for (int i = 0; i < 8; ++i) world_.source().send({time, {{"lobby-a", -60}, {"gate", -70}}});
            (void)queue.sync([] {});  // the next ones wait until these are handled
        }
    });
    while (running > 0) queue.advanceBy(50ms);
    queue.stop();
    for (auto& host : hosts) host.join();
    generator.join();
    onAnotherThread([&] { view_.reset(); });
}

}  // namespace
}  // namespace oska
