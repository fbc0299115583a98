// A real Dapo view over a widget of a host's.
#include <QApplication>
#include <QBuffer>
#include <QImage>
#include <QPointingDevice>
#include <QWheelEvent>

#include "adapters/qt/qt_view_peer.h"
#include "tests/adapters/qt/qt_host.h"
#include "tests/dapo/dapo_view_fixture.h"

namespace oska::qt {
namespace {

std::shared_ptr<const views::Image> redImage(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QBuffer file;
    image.save(&file, "PNG");
    return std::make_shared<views::Image>(*views::pngImage(file.data().toStdString()));
}

bool isNear(QColor colour, QColor expected) {
    const auto isClose = [](int a, int b) { return std::abs(a - b) <= 2; };
    return isClose(colour.red(), expected.red()) && isClose(colour.green(), expected.green()) &&
           isClose(colour.blue(), expected.blue());
}

constexpr QRgb RED_OVER_WHITE = qRgb(255, 90, 90);  // at 0.65

class QtDapoView : public DapoViewTest {
protected:
    QtDapoView() : DapoViewTest(makeViewPeer) {
        hostView_ = viewOf(widget_);
        widget_.show();
    }

    void select() {
        makeRunning();
        detect();
        pass(std::chrono::seconds(1));
        EXPECT_EQ(host_->take(), Events{"changed lobby-a"});
    }

    QColor pixel(Host& host, int x, int y) { return host.grab().toImage().pixelColor(x, y); }

    Host widget_{{240, 80}};
};

TEST_F(QtDapoView, AClickIsOneTapAndTwoAreTwo) {
    select();
    widget_.clickAt({120, 40});
    EXPECT_EQ(host_->take(), Events{"click lobby-a"});
    QTest::mouseDClick(widget_.windowHandle(), Qt::LeftButton, {}, {230, 70});
    EXPECT_EQ(host_->take(), (Events{"click lobby-a", "click lobby-a"}));
    EXPECT_EQ(widget_.count(QEvent::MouseButtonPress) + widget_.count(QEvent::MouseButtonDblClick), 0);
}

TEST_F(QtDapoView, ADragIsNone) {
    select();
    auto* window = widget_.windowHandle();
    QTest::mousePress(window, Qt::LeftButton, {}, {120, 40});
    QTest::mouseMove(window, {170, 40});
    QTest::mouseMove(window, {120, 40});
    QTest::mouseRelease(window, Qt::LeftButton, {}, {120, 40});
    QTest::mousePress(window, Qt::LeftButton, {}, {1, 40});
    QTest::mouseRelease(window, Qt::LeftButton, {}, {-1, 40});
    EXPECT_TRUE(host_->take().empty());
    widget_.clickAt({120, 40});
    EXPECT_EQ(host_->take(), Events{"click lobby-a"});
}

TEST_F(QtDapoView, ATouchIsOneTapAndNoMouse) {
    select();
    const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
    QTest::touchEvent(&widget_, screen.get()).press(0, {120, 40});
    QTest::touchEvent(&widget_, screen.get()).move(0, {122, 40});
    QTest::touchEvent(&widget_, screen.get()).release(0, {122, 40});
    EXPECT_EQ(host_->take(), Events{"click lobby-a"});
    EXPECT_EQ(widget_.count(QEvent::MouseButtonPress) + widget_.count(QEvent::TouchBegin), 0);

    QTest::touchEvent(&widget_, screen.get()).press(0, {120, 40}).press(1, {160, 40});
    QTest::touchEvent(&widget_, screen.get()).release(0, {120, 40}).release(1, {160, 40});
    EXPECT_TRUE(host_->take().empty()) << "two fingers";
}

TEST_F(QtDapoView, WhatIsNoTapReachesTheWidget) {
    select();
    widget_.setFocus();
    widget_.clickAt({120, 40}, Qt::RightButton);
    EXPECT_EQ(widget_.count(QEvent::MouseButtonPress), 1);
    EXPECT_EQ(widget_.count(QEvent::MouseButtonRelease), 1);
    QTest::keyClick(widget_.windowHandle(), Qt::Key_Down);
    EXPECT_EQ(widget_.count(QEvent::KeyPress), 1);
    auto* over = widget_.childAt(120, 40);
    ASSERT_TRUE(over);
    QWheelEvent wheel({120, 40}, over->mapToGlobal(QPointF(120, 40)), {}, {0, 120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel);  // as from the system
    qApp->notify(over, &wheel);
    EXPECT_EQ(widget_.count(QEvent::Wheel), 1);
    widget_.setMouseTracking(true);
    const int moves = widget_.count(QEvent::MouseMove);
    for (const int x : {100, 105}) QTest::mouseMove(widget_.windowHandle(), {x, 40});
    EXPECT_GT(widget_.count(QEvent::MouseMove), moves);
    EXPECT_TRUE(host_->take().empty());
}

TEST_F(QtDapoView, AViewThatCannotBeTappedLetsEveryClickThrough) {
    select();
    int clicks = 0;
    const auto expectThrough = [&] {
        widget_.clickAt({120, 40});
        EXPECT_EQ(widget_.count(QEvent::MouseButtonPress), ++clicks);
    };
    view_->setAlpha(0.005);
    expectThrough();
    view_->setAlpha(1);
    view_->setUserInteractionEnabled(false);
    expectThrough();
    view_->setUserInteractionEnabled(true);
    view_->stopService();  // hides
    expectThrough();
    EXPECT_TRUE(host_->take().empty());
}

TEST_F(QtDapoView, CoversTheWidgetWhateverItsSizeAndItsChildren) {
    select();
    widget_.move(30, 40);
    widget_.resize(301, 93);
    auto* later = new QWidget(&widget_);
    later->setGeometry(0, 0, 301, 93);
    later->show();
    auto* over = widget_.childAt(300, 92);
    ASSERT_TRUE(over);
    EXPECT_NE(over, later);
    EXPECT_EQ(over->geometry(), widget_.rect());
    EXPECT_EQ(view_->frame(), (views::Rect{0, 0, 301, 93}));
    widget_.setStyleSheet("QWidget QWidget { max-height: 9px; min-width: 400px }");
    EXPECT_EQ(over->geometry(), widget_.rect());
    EXPECT_EQ(hostView_->frame().y, widget_.geometry().y());
    widget_.clickAt({300, 92});
    EXPECT_EQ(host_->take(), Events{"click lobby-a"});
    widget_.scroll(5, 7);
    EXPECT_EQ(over->geometry(), widget_.rect());
}

TEST_F(QtDapoView, ShowsItsImageAsLargeAsItsProportionsAllowAndHalfClear) {
    view_->configureFrame({.to = hostView_, .dapoImage = redImage(200, 100)});
    EXPECT_EQ(pixel(widget_, 120, 40), Qt::white) << "hidden";
    view_->setVisibility(true);
    for (const auto& [x, y] : {std::pair{41, 1}, {120, 40}, {198, 78}})
        EXPECT_TRUE(isNear(pixel(widget_, x, y), RED_OVER_WHITE)) << x;
    for (const auto& [x, y] : {std::pair{38, 40}, {202, 40}, {0, 0}})
        EXPECT_EQ(pixel(widget_, x, y), Qt::white) << x;
    view_->setAlpha(0.5);
    EXPECT_TRUE(isNear(pixel(widget_, 120, 40), QColor(255, 172, 172))) << "0.5 of 0.65";
}

TEST_F(QtDapoView, IsTransparentAroundItsImageWithAnyStyleSheetOfTheHost) {
    view_->configureFrame({.to = hostView_, .dapoImage = redImage(40, 80)});
    view_->setVisibility(true);
    auto* below = new QWidget(&widget_);
    below->setStyleSheet("background: white; border: none");
    below->setGeometry(widget_.rect());
    below->show();
    widget_.setStyleSheet("* { background: #00ff00; border: 9px solid blue; }");
    EXPECT_TRUE(isNear(pixel(widget_, 120, 40), RED_OVER_WHITE));
    EXPECT_EQ(pixel(widget_, 2, 2), Qt::white);
}

TEST_F(QtDapoView, ShowsNothingForAnImageThatCannotBeDecoded) {
    static int warnings;
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { ++warnings; });
    auto broken = *redImage(10, 10);
    broken.encoded.resize(40);
    const auto image = std::make_shared<views::Image>(std::move(broken));
    for (int i = 0; i < 2; ++i) view_->configureFrame({.to = hostView_, .dapoImage = image});
    view_->setVisibility(true);
    EXPECT_EQ(pixel(widget_, 120, 40), Qt::white);
    EXPECT_EQ(warnings, 1);
    qInstallMessageHandler(nullptr);
}

TEST_F(QtDapoView, LeavesNothingBehindWhenItMovesToAnotherWidgetAndOutlivesThat) {
    select();
    auto second = std::make_unique<Host>(QSize(80, 60));
    second->show();
    view_->configureFrame({.to = viewOf(*second), .dapoImage = redImage(8, 6)});
    EXPECT_TRUE(widget_.widgetsOver().isEmpty());
    EXPECT_TRUE(isNear(pixel(*second, 40, 30), RED_OVER_WHITE));
    widget_.clickAt({40, 30});
    EXPECT_TRUE(host_->take().empty());
    second->clickAt({40, 30});
    EXPECT_EQ(host_->take(), Events{"click lobby-a"});

    second.reset();
    view_->setFrame({1, 2, 3, 4});
    view_->configureFrame({.to = hostView_, .dapoImage = redImage(20, 10)});
    EXPECT_TRUE(isNear(pixel(widget_, 120, 40), RED_OVER_WHITE));
    view_->removeFromSuperview();
    EXPECT_TRUE(widget_.widgetsOver().isEmpty());
}

TEST_F(QtDapoView, IsDestroyedWithItsWidgetWhenItHasNoOtherOwner) {
    auto first = std::make_unique<Host>(QSize(80, 60));
    const std::weak_ptr<DapoView> watch = view_;
    view_->configureFrame({.to = viewOf(*first)});
    view_.reset();
    EXPECT_FALSE(watch.expired()) << "its widget's view holds it";
    first.reset();
    EXPECT_TRUE(watch.expired());
}

TEST_F(QtDapoView, MayBeDestroyedInsideItsOwnClick) {
    select();
    host_->reaction = [&](const std::string&) {
        view_->removeFromSuperview();
        view_.reset();
        EXPECT_TRUE(widget_.widgetsOver().isEmpty());
    };
    widget_.clickAt({120, 40});
    EXPECT_EQ(host_->take(), Events{"click lobby-a"});
    EXPECT_FALSE(view_);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

}  // namespace
}  // namespace oska::qt
