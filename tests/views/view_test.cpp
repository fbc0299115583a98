#include "oska/views/view.h"

#include <gtest/gtest.h>

#include <string>

#include "adapters/virtual/virtual_platform.h"
#include "oska/views/image_view.h"

namespace oska::views {
namespace {

using Edge = LayoutConstraint::Edge;

void pin(const std::shared_ptr<View>& view, const std::vector<Edge>& edges) {
    for (const auto edge : edges) LayoutConstraint::pin(view, edge)->setActive(true);
}

std::shared_ptr<View> viewIn(const std::shared_ptr<View>& above, const Rect& frame) {
    auto view = View::create(frame);
    above->addSubview(view);
    return view;
}

TEST(Geometry, FitsContentIntoABoxKeepingItsProportions) {
    EXPECT_EQ(aspectFit({200, 100}, {600, 200}), (Rect{100, 0, 400, 200}));
    EXPECT_EQ(aspectFit({100, 200}, {100, 400}), (Rect{0, 100, 100, 200}));
    EXPECT_EQ(aspectFit({}, {10, 20}), (Rect{5, 10, 0, 0}));
    EXPECT_EQ(aspectFit({5, 5}, {0, 20}), (Rect{0, 10, 0, 0}));
    EXPECT_EQ(describe(Rect{-1, 0.5, 390, 844}), "(-1, 0.5, 390, 844)");
}

TEST(Images, AreFoundByTheNameOfTheirAsset) {
    const auto image = imageNamed("ic_dapo");
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size, (Size{192, 192}));
    EXPECT_TRUE(image->encoded.ends_with("IEND\xAE\x42\x60\x82")) << "the whole file";
    EXPECT_EQ(imageNamed("ic_dapo"), image);
    EXPECT_FALSE(imageNamed("ic"));
    EXPECT_FALSE(pngImage("\x89PNG\r\n\x1a\n"));
    EXPECT_FALSE(pngImage(std::string(40, 'x')));
}

TEST(ViewTree, OwnsSubviewsAndMovesThemWhenTheyAreAddedElsewhere) {
    auto first = View::create();
    const auto second = View::create();
    const auto child = viewIn(first, {});
    viewIn(first, {});
    second->addSubview(child);
    EXPECT_EQ(first->subviews().size(), 1u);
    EXPECT_EQ(child->superview(), second);

    const std::weak_ptr<View> orphan = first->subviews()[0];
    first.reset();
    EXPECT_TRUE(orphan.expired());
    child->removeFromSuperview();
    child->removeFromSuperview();
    EXPECT_FALSE(child->superview());
    EXPECT_TRUE(second->subviews().empty());
}

TEST(ViewTree, MovesAViewGivenByItsPlaceInTheListThatItLeaves) {
    const auto first = View::create();
    const auto second = View::create();
    const auto a = viewIn(first, {});
    const auto b = viewIn(first, {});
    first->addSubview(first->subviews()[0]);
    EXPECT_EQ(first->subviews(), (std::vector{b, a})) << "a view that is added again comes on top";
    second->addSubview(first->subviews()[0]);
    EXPECT_EQ(first->subviews(), std::vector{a});
    EXPECT_EQ(second->subviews(), std::vector{b});
}

TEST(ViewTree, RefusesACircle) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto host = View::create();
    const auto child = viewIn(host, {});
    EXPECT_DEATH(child->addSubview(host), "addSubview");
    EXPECT_DEATH(host->addSubview(host), "addSubview");
}

TEST(ViewLayout, FollowsPinnedEdgesDownTheTree) {
    const auto host = View::create({5, 5, 100, 200});
    const auto cover = viewIn(host, {1, 2, 3, 4});
    const auto inner = viewIn(cover, {});
    pin(cover, {Edge::top, Edge::bottom, Edge::leading, Edge::trailing});
    pin(inner, {Edge::top, Edge::bottom, Edge::leading, Edge::trailing});
    EXPECT_EQ(cover->frame(), (Rect{1, 2, 3, 4})) << "constraints wait for a layout";
    host->layoutIfNeeded();
    EXPECT_EQ(inner->frame(), (Rect{0, 0, 100, 200}));
    host->setFrame({0, 0, 390, 844});
    EXPECT_EQ(cover->frame(), (Rect{0, 0, 390, 844}));
    EXPECT_EQ(inner->frame(), (Rect{0, 0, 390, 844}));
}

TEST(ViewLayout, MovesOrStretchesByTheEdgesThatArePinned) {
    const std::pair<std::vector<Edge>, Rect> rows[] = {
        {{Edge::leading}, {0, 20, 30, 40}},
        {{Edge::top, Edge::bottom}, {10, 0, 30, 200}},
        {{Edge::bottom, Edge::trailing}, {70, 160, 30, 40}},
    };
    for (const auto& [edges, frame] : rows) {
        const auto host = View::create({0, 0, 100, 200});
        const auto view = viewIn(host, {10, 20, 30, 40});
        pin(view, edges);
        host->layoutIfNeeded();
        EXPECT_EQ(view->frame(), frame) << describe(frame);
    }
}

TEST(ViewLayout, ConstraintsEndWhenDeactivatedOrWhenTheViewLeaves) {
    auto host = View::create({0, 0, 100, 200});
    const auto view = viewIn(host, {0, 0, 10, 10});
    const auto left = LayoutConstraint::pin(view, Edge::leading);
    const auto right = LayoutConstraint::pin(view, Edge::trailing);
    for (const auto& pin : {left, right}) pin->setActive(true);
    right->setActive(false);
    host->setFrame({0, 0, 300, 300});
    EXPECT_EQ(view->frame().width, 10);

    auto other = View::create();
    other->addSubview(view);
    EXPECT_FALSE(left->isActive());

    right->setActive(true);
    other.reset();
    EXPECT_FALSE(right->isActive()) << "the superview is gone";
    right->setActive(false);
    EXPECT_FALSE(view->superview());
}

TEST(ViewTaps, FindTheTopmostViewThatCanBeSeenAndTouched) {
    const auto host = View::create({50, 50, 100, 100});
    const auto below = viewIn(host, {0, 0, 60, 60});
    const auto above = viewIn(host, {40, 40, 60, 60});
    EXPECT_EQ(host->hitTest({50, 50}), above);
    EXPECT_EQ(host->hitTest({10, 10}), below);
    EXPECT_EQ(host->hitTest({10, 90}), host);
    EXPECT_EQ(host->hitTest({100, 0}), nullptr);

    above->setHidden(true);
    EXPECT_EQ(host->hitTest({50, 50}), below);
    above->setHidden(false);
    above->setAlpha(0.005);
    EXPECT_EQ(host->hitTest({50, 50}), below);
    above->setAlpha(0.65);
    above->setUserInteractionEnabled(false);
    EXPECT_EQ(host->hitTest({50, 50}), below);
}

TEST(ViewTaps, ReachTheNearestViewWithRecognisers) {
    const auto host = View::create({0, 0, 100, 100});
    const auto cover = viewIn(host, {0, 0, 50, 50});
    viewIn(cover, {0, 0, 50, 50});
    EXPECT_FALSE(host->tapAt({1, 1})) << "no recogniser";
    int hostTaps = 0;
    int coverTaps = 0;
    const auto onCover = std::make_shared<TapGestureRecognizer>([&] { ++coverTaps; });
    cover->addGestureRecognizer(onCover);
    cover->addGestureRecognizer(onCover);
    host->addGestureRecognizer(std::make_shared<TapGestureRecognizer>([&] { ++hostTaps; }));
    EXPECT_TRUE(host->tapAt({1, 1}));
    EXPECT_TRUE(host->tapAt({80, 80}));
    EXPECT_FALSE(host->tapAt({-1, 0}));
    EXPECT_EQ(coverTaps, 1);
    EXPECT_EQ(hostTaps, 1);
}

TEST(ViewTaps, AnActionMayRemoveItsView) {
    const auto host = View::create({0, 0, 10, 10});
    auto view = viewIn(host, {0, 0, 10, 10});
    const std::weak_ptr<View> watch = view;
    view->addGestureRecognizer(std::make_shared<TapGestureRecognizer>([&] {
        view->removeFromSuperview();
        view.reset();
    }));
    EXPECT_TRUE(host->tapAt({5, 5}));
    EXPECT_TRUE(watch.expired());
}

/// Records what each view tells its peer, as words.
class Screen {
public:
    std::unique_ptr<platform::ViewPeer> peer(std::string name) {
        return std::make_unique<Peer>(*this, std::move(name));
    }
    std::string take() { return std::exchange(said_, ""); }

private:
    struct Peer : platform::ViewPeer {
        Peer(Screen& onScreen, std::string ofName) : screen(onScreen), name(std::move(ofName)) {}
        ~Peer() override { screen.said_ += name + "-gone "; }
        void changed(const View& view, platform::ViewChange what) override {
            static constexpr const char* NAMES[]{"frame",       "hidden", "alpha", "clipping",
                                                 "interaction", "tree",   "image"};
            screen.said_ += name + "-" + NAMES[static_cast<int>(what)] + " ";
            EXPECT_EQ(view.peer(), this);
        }
        Screen& screen;
        std::string name;
    };

    std::string said_;
};

TEST(ViewPeers, AreMadeForViewsAddedToAViewWithAPeer) {
    Screen screen;
    virtual_world::VirtualPlatform world{{0, 0}};
    auto platform = world.platform();
    platform.makeViewPeer = [&](View&) { return screen.peer("made"); };
    platform::install(std::move(platform));

    const auto child = View::create();
    const auto grandchild = viewIn(child, {});
    EXPECT_FALSE(grandchild->peer()) << "the top has no peer yet";
    const auto host = View::create({0, 0, 10, 10});
    host->addSubview(child);
    host->setPeer(screen.peer("host"));
    const std::string all =
        "tree made-frame made-hidden made-alpha made-clipping made-interaction made-image ";
    EXPECT_NE(screen.take().find("made-" + all + "made-" + all), std::string::npos);
    EXPECT_TRUE(grandchild->peer());
    child->removeFromSuperview();
    EXPECT_EQ(screen.take(), "made-tree ");
}

TEST(ViewPeers, AreToldOfEachChangeOnce) {
    Screen screen;
    const auto view = ImageView::create();
    view->setPeer(screen.peer("v"));
    screen.take();
    for (int i = 0; i < 2; ++i) {
        view->setFrame({1, 2, 30, 40});
        view->setHidden(true);
        view->setAlpha(i == 0 ? -3 : 0);
        view->setClipsToBounds(true);
        view->setUserInteractionEnabled(true);
    }
    EXPECT_EQ(screen.take(), "v-frame v-hidden v-alpha v-clipping v-interaction ");
    view->setImage(std::make_shared<Image>(Image{"", {60, 40}}));
    EXPECT_EQ(screen.take(), "v-image ");
    EXPECT_EQ(view->imageFrame(), (Rect{0, 10, 30, 20}));
    view->setPeer(nullptr);
    view->setHidden(false);
    EXPECT_EQ(screen.take(), "v-gone ");
}

}  // namespace
}  // namespace oska::views
