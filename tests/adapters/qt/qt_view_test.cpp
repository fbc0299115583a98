// Trees of views over a widget.
#include <gtest/gtest.h>

#include <QPointingDevice>
#include <QVBoxLayout>
#include <functional>

#include "adapters/qt/qt_view_peer.h"
#include "adapters/virtual/virtual_platform.h"
#include "tests/adapters/qt/qt_host.h"

namespace oska::qt {
namespace {

using views::TapGestureRecognizer;
using views::View;

class QtViews : public testing::Test {
protected:
    QtViews() {
        auto platform = world_.platform();
        platform.makeViewPeer = makeViewPeer;
        platform::install(std::move(platform));
        host_.show();
    }

    std::shared_ptr<View> viewIn(View& above, const views::Rect& frame) {
        auto view = View::create(frame);
        above.addSubview(view);
        return view;
    }

    /// Each tap on the view is written down under its name.
    void name(View& view, std::string name) {
        view.addGestureRecognizer(std::make_shared<TapGestureRecognizer>(
            [this, name = std::move(name)] { taps_.push_back(name); }));
    }

    std::string tapAt(QPoint at) {
        taps_.clear();
        host_.clickAt(at);
        return taps_.size() == 1 ? taps_[0] : std::to_string(taps_.size()) + " taps";
    }

    virtual_world::VirtualPlatform world_{{0, 0}};
    Host host_{{100, 100}};
    std::vector<std::string> taps_;
};

TEST_F(QtViews, TapsGoToTheViewThatTheTreeWouldChoose) {
    const auto root = viewOf(host_);
    const auto below = viewIn(*root, {0, 0, 60, 60});
    const auto above = viewIn(*root, {40, 40, 60, 60});
    const auto inner = viewIn(*below, {0, 0, 20, 20});
    name(*below, "below");
    name(*above, "above");
    EXPECT_EQ(tapAt({50, 50}), "above");
    EXPECT_EQ(tapAt({10, 10}), "below") << "the inner one listens to nothing";
    name(*inner, "inner");
    EXPECT_EQ(tapAt({10, 10}), "inner");
    inner->setUserInteractionEnabled(false);
    EXPECT_EQ(tapAt({10, 10}), "below");
    below->setHidden(true);
    EXPECT_EQ(tapAt({10, 10}), "0 taps");
    below->setHidden(false);
    root->addSubview(below);  // to the top
    EXPECT_EQ(tapAt({50, 50}), "below");
    new QWidget(&host_);  // whatever comes later changes nothing between the views
    EXPECT_EQ(tapAt({50, 50}), "below");
}

TEST_F(QtViews, ATreeThatLeavesAndComesBackIsShownWhole) {
    const auto root = viewOf(host_);
    const auto outer = viewIn(*root, {10, 10, 50, 50});
    const auto inner = viewIn(*outer, {10, 10, 20, 20});
    name(*inner, "inner");
    outer->removeFromSuperview();
    EXPECT_TRUE(host_.widgetsOver().isEmpty());
    inner->setFrame({0, 0, 5, 5});
    root->addSubview(outer);
    EXPECT_EQ(tapAt({12, 12}), "inner");
    EXPECT_EQ(tapAt({22, 22}), "0 taps");
    EXPECT_EQ(host_.widgetsOver().size(), 2);
}

TEST_F(QtViews, FramesThatShareAnEdgeDoSoOnTheScreen) {
    const auto root = viewOf(host_);
    viewIn(*root, {0, 0, 33.4, 100});
    viewIn(*root, {33.4, 0, 33.2, 100});
    viewIn(*root, {66.6, 0, 33.4, 100});
    const auto widgets = host_.widgetsOver();
    ASSERT_EQ(widgets.size(), 3);
    EXPECT_EQ(widgets[0]->geometry(), QRect(0, 0, 33, 100));
    EXPECT_EQ(widgets[1]->geometry(), QRect(33, 0, 34, 100));
    EXPECT_EQ(widgets[2]->geometry(), QRect(67, 0, 33, 100));
}

TEST_F(QtViews, AWidgetHasOneViewThatKnowsItsSize) {
    auto* child = new Host({10, 10}, &host_);
    const auto view = viewOf(*child);
    child->setGeometry(1, 2, 30, 40);  // never shown
    EXPECT_EQ(viewOf(*child), view);
    EXPECT_EQ(view->frame(), (views::Rect{1, 2, 30, 40}));

    Host window({500, 500});
    auto* layout = new QVBoxLayout(&window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(child);
    window.show();
    EXPECT_EQ(view->frame(), (views::Rect{0, 0, 500, 500}));
    const std::weak_ptr<View> watch = view;
    delete child;
    EXPECT_FALSE(view->peer()) << "a tree in memory again";
    viewIn(*view, {});
}

TEST_F(QtViews, ATapMayDestroyTheHostsWidgetsInAnEventLoopOfItsOwn) {
    auto* child = new Host({100, 100}, &host_);
    child->show();
    auto view = viewIn(*viewOf(*child), {0, 0, 100, 100});
    view->addGestureRecognizer(std::make_shared<TapGestureRecognizer>([&] {
        delete child;
        view.reset();
        QCoreApplication::processEvents();
        taps_.push_back("done");
    }));
    EXPECT_EQ(tapAt({50, 50}), "done");
    EXPECT_TRUE(host_.widgetsOver().isEmpty());
}

TEST_F(QtViews, AViewThatCannotBeTappedForgetsThePressThatItSaw) {
    const auto view = viewIn(*viewOf(host_), {0, 0, 100, 100});
    name(*view, "view");
    const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
    const std::function<void(bool)> ways[]{[&](bool isOff) { view->setHidden(isOff); },
                                           [&](bool isOff) { view->setAlpha(isOff ? 0 : 1); },
                                           [&](bool isOff) { view->setUserInteractionEnabled(!isOff); }};
    for (const auto& turn : ways) {
        QTest::touchEvent(&host_, screen.get()).press(0, {50, 50});
        turn(true);
        turn(false);
        QTest::touchEvent(&host_, screen.get()).release(0, {50, 50});
    }
    EXPECT_TRUE(taps_.empty());
}

}  // namespace
}  // namespace oska::qt
