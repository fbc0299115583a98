// What holds when views come and go on any thread, and when a host acts inside a start.
#include <gtest/gtest.h>

#include <atomic>
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
    /// Runs what other threads wait for until `action` has returned on a thread of its own.
    template <class Action>
    void whileMainRuns(Action action) {
        std::atomic<bool> isOver{false};
        std::thread other([&] {
            action();
            isOver = true;
        });
        while (!isOver) world_.time().runDue();
        other.join();
    }

    /// Something that only the view keeps.
    std::weak_ptr<const views::Image> keptByView() {
        const auto image = std::make_shared<const views::Image>();
        view_->configureFrame({.to = hostView_, .dapoImage = image});
        view_->removeFromSuperview();
        return image;
    }
};

TEST_F(DapoViewLifetime, MayLoseItsLastReferenceInsideAnyCallback) {
    for (const std::string last : {"changed lobby-a", "click lobby-a"}) {
        view_ = DapoView::create();
        view_->setDelegate(host_);
        host_->take();
        const auto kept = keptByView();
        hostView_->addSubview(view_);
        host_->reaction = [&](const std::string& event) {
            if (event != last) return;
            view_->removeFromSuperview();
            view_.reset();
        };
        initialize();
        settle();
        view_->startService();
        detect();
        pass(0s);
        hostView_->tapAt({1, 1});
        EXPECT_FALSE(view_);
        EXPECT_TRUE(kept.expired()) << last;
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
    detect();
    pass(1s);
    EXPECT_EQ(host_->take(),
              (Events{"map 10", "init true", "start true", "changed lobby-a", "map 10", "init true",
                      "start true", "changed lobby-a", "map 10", "init true", "start true"}));
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
    pass(0s);
    onAnotherThread([&] { hear(); });
    view_->removeFromSuperview();
    view_.reset();  // flushes the first
    auto second = DapoView::create();
    pass(0s);
    second.reset();
    pass(0s);
    EXPECT_EQ(uploads().size(), 2u);
}

TEST_F(DapoViewLifetime, IsDestroyedWhereItIsOnceTheQueueHasStopped) {
    makeRunning();
    const auto kept = keptByView();
    world_.time().stop();
    onAnotherThread([&] { view_.reset(); });
    EXPECT_TRUE(kept.expired());
    EXPECT_FALSE(world_.source().last()->isRunning);
}

TEST_F(DapoViewLifetime, CallsFromElsewhereWaitForTheMainThread) {
    makeReady();
    whileMainRuns([&] {
        view_->startService();
        for (int i = 0; i < 6; ++i) hear();
        EXPECT_EQ(view_->getCurrentDapoWards().size(), 1u);
        EXPECT_FALSE(view_->getVisibility());
        view_->setSelectionInterval(0.5);
        view_->configureFrame({.to = hostView_});
        NotificationCenter::shared().post(Notification::willEnterForeground);
    });
    pass(0s);
    EXPECT_EQ(host_->take(), (Events{"start true", "changed lobby-a"}));
    EXPECT_EQ(view_->superview(), hostView_);
}

TEST_F(DapoViewLifetime, CallsFromElsewhereDoNothingOnceTheQueueHasStopped) {
    makeRunning();
    detect();
    world_.time().stop();
    onAnotherThread([&] {
        initialize();
        view_->startService();
        view_->stopService();
        EXPECT_TRUE(view_->getDapoMapImages().empty());
        EXPECT_TRUE(view_->getCurrentDapoWards().empty());
        EXPECT_TRUE(view_->getVisibility());
        hear();
    });
    Events expected;
    for (const auto* operation : {"initialize", "startService", "stopService", "getDapoMapImages",
                                  "getCurrentDapoWards", "getVisibility"}) {
        expected.push_back("[ERROR] [DapoView] (" + std::string(operation) + ") : main queue has stopped");
    }
    EXPECT_EQ(output_.take(), expected);
    EXPECT_TRUE(host_->take().empty());
}

/// Detects the ward, and so shows the view, inside each start of the generator.
class OvertakenDapoStart : protected fakes::ScriptedGenerators, public DapoViewTest {
protected:
    OvertakenDapoStart() : DapoViewTest({}, factory()) {
        makeReady();
        inGenerate = [](auto& generator) {
            for (int i = 0; i < 6; ++i) generator.send({i, {{"lobby-a", -60}}});
        };
    }

    /// Runs its action once, when the view shows.
    struct ShowListener : platform::ViewPeer {
        explicit ShowListener(std::function<void()> onShow) : action(std::move(onShow)) {}
        void changed(const views::View& view, platform::ViewChange what) override {
            if (what != platform::ViewChange::hidden || view.isHidden()) return;
            if (const auto once = std::exchange(action, nullptr)) once();
        }
        std::function<void()> action;
    };
};

TEST_F(OvertakenDapoStart, IsHiddenWhenStoppedInsideAndTicksWhenStartedAgain) {
    for (const bool restarts : {false, true}) {
        view_->setPeer(std::make_unique<ShowListener>([&] {
            view_->stopService();
            if (restarts) view_->startService();
        }));
        view_->startService();
        host_->take();
        EXPECT_EQ(view_->getVisibility(), !restarts);
        pass(1s);
        EXPECT_EQ(host_->take(), restarts ? Events{"changed lobby-a"} : Events{});
    }
}

/// One view after the other; each is destroyed by the thread that releases it last. Threads: any.
class SuccessiveViews {
public:
    explicit SuccessiveViews(std::shared_ptr<fakes::DapoHost> host) : host_(std::move(host)) {}

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
    void release() { view_.reset(); }

private:
    const std::shared_ptr<fakes::DapoHost> host_;
    std::mutex mutex_;
    std::shared_ptr<DapoView> view_;
};

void initializeAndStart(DapoView& view, int round) {
    view.initialize({.id = "demo", .sectorId = 12, .forceUpdate = round % 3 == 0});
    view.startService();
    view.setUnchangedDeliveryInterval(0);
    if (round % 2) view.stopService();
}

TEST_F(DapoViewLifetime, IsSafeBetweenTheGeneratorsThreadAndTheHosts) {
    constexpr int ROUNDS = 200;
    OskaLogger::setDebugOption(false);
    world_.server().keepRequests(false);
    auto& queue = world_.time();
    std::atomic<int> running{3};
    std::vector<std::thread> hosts;
    view_.reset();

    SuccessiveViews views(host_);
    whileMainRuns([&] { views.replace(); });

    const auto repeat = [&](auto action) {
        hosts.emplace_back([&, action] {
            for (int i = 0; i < ROUNDS; ++i) action(i);
            --running;
        });
    };
    repeat([&](int i) { initializeAndStart(*views.current(), i); });
    repeat([&](int i) {
        const auto view = views.current();
        EXPECT_LE(view->getCurrentDapoWards().size() + view->getDapoMapImages().size(), 2u);
        view->setVisibility(i % 2 == 0);
        NotificationCenter::shared().post(Notification::willEnterForeground);
    });
    repeat([&](int) { views.replace(); });
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
    onAnotherThread([&] { views.release(); });
}

}  // namespace
}  // namespace oska
