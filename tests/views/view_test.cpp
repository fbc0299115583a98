#include "oska/views/view.h"

#include <gtest/gtest.h>

#include <string>

#include "adapters/virtual/virtual_platform.h"
#include "oska/views/image_view.h"

namespace oska::views {
namespace {

using Edge = LayoutConstraint::Edge;

/// Returns the last constraint.
std::shared_ptr<LayoutConstraint> pin(const std::shared_ptr<View>& view, const std::vector<Edge>& edges) {
    std::shared_ptr<LayoutConstraint> last;
    for (const auto edge : edges) (last = LayoutConstraint::pin(view, edge))->setActive(true);
    return last;
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
}

TEST(Images, AreFoundByTheNameOfTheirAsset) {
    const auto image = imageNamed("ic_dapo");
    EXPECT_EQ(image->size, (Size{192, 192}));
    EXPECT_TRUE(image->encoded.ends_with("IEND\xAE\x42\x60\x82")) << "the whole file";
    EXPECT_EQ(imageNamed("ic_dapo"), image);
    EXPECT_FALSE(imageNamed("ic"));
    EXPECT_FALSE(pngImage("\x89PNG\r\n\x1a\n") || pngImage(std::string(40, 'x')));
}

TEST(ViewTree, OwnsSubviewsAndMovesThemWhenTheyAreAddedElsewhere) {
    auto first = View::create();
    const auto second = View::create();
    const auto a = viewIn(first, {});
    const auto b = viewIn(first, {});
    const auto left = pin(a, {Edge::leading});
    first->addSubview(first->subviews()[0]);  // given by its place in the list that changes
    EXPECT_EQ(first->subviews(), (std::vector{b, a})) << "a view that is added again comes on top";
    EXPECT_TRUE(left->isActive());
    second->addSubview(first->subviews()[0]);
    EXPECT_EQ(first->subviews(), std::vector{a});
    EXPECT_EQ(second->subviews(), std::vector{b});
    EXPECT_EQ(b->superview(), second);
    second->addSubview(a);
    EXPECT_FALSE(left->isActive());

    const std::weak_ptr<View> orphan = viewIn(first, {});
    const auto kept = viewIn(first, {});
    const auto keptPin = pin(kept, {Edge::leading});
    first.reset();
    EXPECT_TRUE(orphan.expired());
    EXPECT_FALSE(keptPin->isActive() || kept->superview());
    keptPin->setActive(false);
    for (int i = 0; i < 2; ++i) b->removeFromSuperview();
    EXPECT_FALSE(b->superview());
    EXPECT_EQ(second->subviews(), std::vector{a});
}

TEST(ViewTree, RefusesACircle) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto host = View::create();
    const auto child = viewIn(host, {});
    EXPECT_DEATH(child->addSubview(host), "addSubview");
    EXPECT_DEATH(host->addSubview(host), "addSubview");
}

TEST(ViewLayout, MovesOrStretchesByTheEdgesThatArePinnedDownTheTree) {
    const std::pair<std::vector<Edge>, Rect> rows[] = {
        {{Edge::leading}, {0, 20, 30, 40}},
        {{Edge::top, Edge::bottom}, {10, 0, 30, 200}},
        {{Edge::bottom, Edge::trailing}, {70, 160, 30, 40}},
    };
    for (const auto& [edges, frame] : rows) {
        const auto host = View::create({5, 5, 100, 200});
        const auto view = viewIn(host, {10, 20, 30, 40});
        const auto inner = viewIn(view, {});
        pin(view, edges);
        const auto trailing = pin(inner, {Edge::top, Edge::bottom, Edge::leading, Edge::trailing});
        EXPECT_EQ(view->frame(), (Rect{10, 20, 30, 40})) << "constraints wait for a layout";
        host->layoutIfNeeded();
        EXPECT_EQ(view->frame(), frame) << describe(frame);
        EXPECT_EQ(inner->frame(), view->bounds());
        view->setFrame({0, 0, 390, 844});
        EXPECT_EQ(inner->frame(), (Rect{0, 0, 390, 844}));
        trailing->setActive(false);
        view->setFrame({0, 0, 10, 10});
        EXPECT_EQ(inner->frame(), (Rect{0, 0, 390, 10})) << "not pinned at its end any more";
    }
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

TEST(ViewTaps, ReachTheNearestViewWithRecognisersWhichMayRemoveIt) {
    const auto host = View::create({0, 0, 100, 100});
    auto cover = viewIn(host, {0, 0, 50, 50});
    viewIn(cover, {0, 0, 50, 50});
    EXPECT_FALSE(host->tapAt({1, 1})) << "no recogniser";
    std::string taps;
    const auto onCover = std::make_shared<TapGestureRecognizer>([&] {
        taps += "cover ";
        cover->removeFromSuperview();
        cover.reset();
    });
    for (int i = 0; i < 2; ++i) cover->addGestureRecognizer(onCover);
    host->addGestureRecognizer(std::make_shared<TapGestureRecognizer>([&] { taps += "host "; }));
    const std::weak_ptr<View> watch = cover;
    EXPECT_TRUE(host->tapAt({80, 80}));
    EXPECT_TRUE(host->tapAt({1, 1}));
    EXPECT_TRUE(watch.expired());
    EXPECT_FALSE(host->tapAt({-1, 0}));
    EXPECT_EQ(taps, "host cover ");
}

/// Adds what its view says to `said`, as words.
struct Peer : platform::ViewPeer {
    Peer(std::string& words, std::string ofView) : said(words), name(std::move(ofView)) {}
    ~Peer() override { said += name + "-gone "; }
    void changed(const View& view, platform::ViewChange what) override {
        static constexpr const char* NAMES[]{"frame",       "hidden", "alpha", "clipping",
                                             "interaction", "tree",   "image"};
        said += name + "-" + NAMES[static_cast<int>(what)] + " ";
        EXPECT_EQ(view.peer(), this);
    }
    std::string& said;
    std::string name;
};

TEST(ViewPeers, AreMadeForViewsAddedToAViewWithAPeerAndToldOfEachChangeOnce) {
    std::string said;
    virtual_world::VirtualPlatform world{{0, 0}};
    auto platform = world.platform();
    platform.makeViewPeer = [&](View&) { return std::make_unique<Peer>(said, "made"); };
    platform::install(std::move(platform));

    const auto host = View::create({0, 0, 10, 10});
    const auto child = viewIn(host, {});
    const auto grandchild = ImageView::create();
    child->addSubview(grandchild);
    EXPECT_FALSE(grandchild->peer()) << "the top has no peer yet";
    host->setPeer(std::make_unique<Peer>(said, "host"));
    const std::string all =
        "made-tree made-frame made-hidden made-alpha made-clipping made-interaction made-image ";
    EXPECT_TRUE(said.ends_with(all + all)) << said;
    said.clear();
    child->removeFromSuperview();
    for (int i = 0; i < 2; ++i) {
        grandchild->setFrame({1, 2, 30, 40});
        grandchild->setHidden(true);
        grandchild->setAlpha(i == 0 ? -3 : 0);
        grandchild->setClipsToBounds(true);
        grandchild->setUserInteractionEnabled(true);
    }
    grandchild->setImage(std::make_shared<Image>(Image{"", {60, 40}}));
    EXPECT_EQ(grandchild->imageFrame(), (Rect{0, 10, 30, 20}));
    grandchild->setPeer(nullptr);
    grandchild->setHidden(false);
    EXPECT_EQ(
        said,
        "made-tree made-frame made-hidden made-alpha made-clipping made-interaction made-image made-gone ");
}

}  // namespace
}  // namespace oska::views
