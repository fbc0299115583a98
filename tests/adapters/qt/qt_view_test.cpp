// Trees of views over a widget of a host's, and a real Dapo view in one.
#include <QApplication>
#include <QBuffer>
#include <QImage>
#include <QPointingDevice>
#include <QTest>
#include <QWheelEvent>
#include <map>

#include "adapters/qt/qt_host_view.h"
#include "adapters/qt/qt_view_peer.h"
#include "tests/dapo/dapo_view_fixture.h"

namespace oska::qt {
namespace {

using views::View;

/// A white widget of a host that counts the events that reach it. Hosts that are painted are less than 96
/// points high: Qt paints larger areas on several threads, with locks that the thread sanitizer cannot see.
class Host : public QWidget {
public:
    explicit Host(QSize size, QWidget* parent = nullptr) : QWidget(parent) {
        resize(size);
        setStyleSheet("background: white");
        show();
    }

    QList<QWidget*> widgetsOver() const { return findChildren<QWidget*>(); }
    void clickAt(QPoint at, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(window()->windowHandle(), button, {}, at);
    }

    std::map<QEvent::Type, int> counts;

protected:
    bool event(QEvent* event) override {
        ++counts[event->type()];
        return QWidget::event(event);
    }
};

std::shared_ptr<const views::Image> redImage(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QBuffer file;
    image.save(&file, "PNG");
    return std::make_shared<views::Image>(*views::pngImage(file.data().toStdString()));
}

/// Whether a pixel is red, in this strength, over white.
bool isRed(Host& host, int x, int y, double strength = 0.65) {
    const auto colour = host.grab().toImage().pixelColor(x, y);
    const double rest = 255 * (1 - strength);
    return colour.red() == 255 && std::abs(colour.green() - rest) <= 2 && std::abs(colour.blue() - rest) <= 2;
}

class QtViews : public DapoViewTest {
protected:
    QtViews() : DapoViewTest(makeViewPeer) { hostView_ = viewOf(widget_); }

    /// Shows the Dapo view over the widget; from now on its host hears of clicks.
    void select() {
        makeRunning();
        detect();
        pass(std::chrono::seconds(1));
        EXPECT_EQ(host_->take(), Events{"changed lobby-a"});
    }

    /// Taps on the view are written down under its name; without one it listens to none.
    std::shared_ptr<View> viewIn(View& above, const views::Rect& frame, const std::string& name = "") {
        auto view = View::create(frame);
        above.addSubview(view);
        if (!name.empty()) {
            view->addGestureRecognizer(
                std::make_shared<views::TapGestureRecognizer>([this, name] { taps_.push_back(name); }));
        }
        return view;
    }

    Events tapAt(QPoint at) {
        widget_.clickAt(at);
        return std::exchange(taps_, {});
    }

    auto touch() { return QTest::touchEvent(&widget_, screen_.get()); }

    Host widget_{{240, 80}};
    Events taps_;
    const std::unique_ptr<QPointingDevice> screen_{QTest::createTouchDevice()};
};

TEST_F(QtViews, AClickAndATouchAreTapsAndADragAndTwoFingersAreNone) {
    select();
    auto* window = widget_.windowHandle();
    QTest::mousePress(window, Qt::LeftButton, {}, {120, 40});
    for (const int x : {170, 120}) QTest::mouseMove(window, {x, 40});
    QTest::mouseRelease(window, Qt::LeftButton, {}, {120, 40});
    QTest::mousePress(window, Qt::LeftButton, {}, {1, 40});
    QTest::mouseRelease(window, Qt::LeftButton, {}, {-1, 40});
    touch().press(0, {120, 40}).press(1, {160, 40});
    touch().release(0, {120, 40}).release(1, {160, 40});
    EXPECT_EQ(host_->take(), Events{});

    widget_.clickAt({120, 40});
    QTest::mouseDClick(window, Qt::LeftButton, {}, {230, 70});
    EXPECT_EQ(host_->take(), Events(3, "click lobby-a"));
    touch().press(0, {120, 40});
    touch().move(0, {122, 40});
    touch().release(0, {122, 40});
    EXPECT_EQ(host_->take(), Events{"click lobby-a"});
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonDblClick, QEvent::TouchBegin})
        EXPECT_EQ(widget_.counts[type], 0) << type;
}

TEST_F(QtViews, WhatIsNoTapReachesTheWidget) {
    viewIn(*hostView_, {0, 0, 240, 80}, "view");
    widget_.setFocus();
    widget_.setMouseTracking(true);
    QTest::keyClick(widget_.windowHandle(), Qt::Key_Down);
    auto* over = widget_.childAt(120, 40);
    ASSERT_TRUE(over);
    QWheelEvent wheel({120, 40}, over->mapToGlobal(QPointF(120, 40)), {}, {0, 120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel);  // as from the system
    qApp->notify(over, &wheel);
    for (const int x : {100, 105}) QTest::mouseMove(widget_.windowHandle(), {x, 40});
    EXPECT_GT(widget_.counts[QEvent::MouseMove], 0);
    widget_.clickAt({120, 40}, Qt::RightButton);
    for (const auto type :
         {QEvent::KeyPress, QEvent::Wheel, QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
        EXPECT_EQ(widget_.counts[type], 1) << type;
    EXPECT_EQ(taps_, Events{});
}

TEST_F(QtViews, AViewThatCannotBeTappedLetsClicksThroughAndForgetsThePressThatItSaw) {
    const auto view = viewIn(*hostView_, {0, 0, 240, 80}, "view");
    const std::function<void(bool)> ways[]{[&](bool isOff) { view->setHidden(isOff); },
                                           [&](bool isOff) { view->setAlpha(isOff ? 0.005 : 1); },
                                           [&](bool isOff) { view->setUserInteractionEnabled(!isOff); }};
    int clicks = 0;
    for (const auto& turnOff : ways) {
        touch().press(0, {50, 50});
        turnOff(true);
        turnOff(false);
        touch().release(0, {50, 50});
        turnOff(true);
        EXPECT_EQ(tapAt({50, 50}), Events{});
        EXPECT_EQ(widget_.counts[QEvent::MouseButtonPress], ++clicks);
        turnOff(false);
    }
    EXPECT_EQ(tapAt({50, 50}), Events{"view"});
}

TEST_F(QtViews, TapsGoToTheViewThatTheTreeWouldChooseAlsoWhenItLeftAndCameBack) {
    const auto below = viewIn(*hostView_, {0, 0, 60, 60}, "below");
    viewIn(*hostView_, {40, 40, 60, 40}, "above");
    viewIn(*below, {0, 0, 20, 20});
    EXPECT_EQ(tapAt({50, 50}), Events{"above"});
    EXPECT_EQ(tapAt({10, 10}), Events{"below"}) << "the inner one listens to nothing";
    hostView_->addSubview(below);  // to the top
    new QWidget(&widget_);         // whatever comes later changes nothing between the views
    EXPECT_EQ(tapAt({50, 50}), Events{"below"});

    below->removeFromSuperview();
    const auto inner = viewIn(*below, {0, 0, 5, 5}, "inner");
    EXPECT_EQ(tapAt({50, 50}), Events{"above"});
    EXPECT_EQ(widget_.widgetsOver().size(), 2);
    hostView_->addSubview(below);
    EXPECT_EQ(tapAt({2, 2}), Events{"inner"});
    EXPECT_EQ(tapAt({22, 22}), Events{"below"});
}

TEST_F(QtViews, FramesThatShareAnEdgeDoSoOnTheScreen) {
    const std::pair<double, double> columns[]{{0, 33.4}, {33.4, 33.2}, {66.6, 33.4}};
    for (const auto& [x, width] : columns) viewIn(*hostView_, {x, 0, width, 80});
    QList<QRect> shown;
    for (const auto* widget : widget_.widgetsOver()) shown.push_back(widget->geometry());
    EXPECT_EQ(shown, (QList{QRect(0, 0, 33, 80), QRect(33, 0, 34, 80), QRect(67, 0, 33, 80)}));
}

TEST_F(QtViews, TheDapoViewCoversTheWidgetWhateverItsSizeAndItsChildren) {
    select();
    widget_.move(30, 40);
    widget_.resize(301, 93);
    auto* later = new QWidget(&widget_);
    later->setGeometry(widget_.rect());
    later->show();
    auto* over = widget_.childAt(300, 92);
    ASSERT_TRUE(over);
    EXPECT_NE(over, later);
    EXPECT_EQ(view_->frame(), (views::Rect{0, 0, 301, 93}));
    EXPECT_EQ(over->geometry(), widget_.rect());
    widget_.setStyleSheet("QWidget QWidget { max-height: 9px; min-width: 400px }");
    EXPECT_EQ(over->geometry(), widget_.rect());
    widget_.scroll(5, 7);
    EXPECT_EQ(over->geometry(), widget_.rect());
}

TEST_F(QtViews, AnImageIsAsLargeAsItsProportionsAllowAndClearAndOneThatIsBrokenIsNotShown) {
    view_->configureFrame({.to = hostView_, .dapoImage = redImage(200, 100)});
    EXPECT_TRUE(isRed(widget_, 120, 40, 0)) << "hidden";
    view_->setVisibility(true);
    for (const auto& [x, y] : {std::pair{41, 1}, {120, 40}, {198, 78}})
        EXPECT_TRUE(isRed(widget_, x, y)) << x;
    for (const auto& [x, y] : {std::pair{38, 40}, {202, 40}, {0, 0}})
        EXPECT_TRUE(isRed(widget_, x, y, 0)) << x;
    view_->setAlpha(0.5);
    EXPECT_TRUE(isRed(widget_, 120, 40, 0.5 * 0.65));

    auto* below = new QWidget(&widget_);
    below->setStyleSheet("background: white; border: none");
    below->setGeometry(widget_.rect());
    below->show();
    widget_.setStyleSheet("* { background: #00ff00; border: 9px solid blue; }");
    EXPECT_TRUE(isRed(widget_, 120, 40, 0.5 * 0.65));
    EXPECT_TRUE(isRed(widget_, 2, 2, 0));

    static int warnings;
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { ++warnings; });
    auto broken = *redImage(10, 10);
    broken.encoded.resize(40);
    const auto image = std::make_shared<views::Image>(std::move(broken));
    for (int i = 0; i < 2; ++i) view_->configureFrame({.to = hostView_, .dapoImage = image});
    view_->setVisibility(true);
    EXPECT_TRUE(isRed(widget_, 120, 40, 0));
    EXPECT_EQ(warnings, 1) << "cannot be decoded";
    qInstallMessageHandler(nullptr);
}

TEST_F(QtViews, ADapoViewMovesToAnotherWidgetAndOutlivesIt) {
    select();
    auto second = std::make_unique<Host>(QSize(80, 60));
    view_->configureFrame({.to = viewOf(*second), .dapoImage = redImage(8, 6)});
    EXPECT_TRUE(widget_.widgetsOver().isEmpty());
    EXPECT_TRUE(isRed(*second, 40, 30));
    for (auto* host : {&widget_, second.get()}) host->clickAt({40, 30});
    EXPECT_EQ(host_->take(), Events{"click lobby-a"});
    second.reset();
    view_->setFrame({1, 2, 3, 4});
    view_->configureFrame({.to = hostView_, .dapoImage = redImage(20, 10)});
    EXPECT_TRUE(isRed(widget_, 120, 40));
}

TEST_F(QtViews, ATapMayDestroyItsViewAndTheHostsWidgetsInAnEventLoopOfItsOwn) {
    select();
    host_->reaction = [&](const auto&) {
        view_->removeFromSuperview();
        view_.reset();
        EXPECT_TRUE(widget_.widgetsOver().isEmpty());
    };
    widget_.clickAt({120, 40});
    EXPECT_EQ(host_->take(), Events{"click lobby-a"});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    auto* child = new Host({240, 80}, &widget_);
    auto root = viewOf(*child);
    EXPECT_EQ(viewOf(*child), root);
    const std::weak_ptr view = viewIn(*root, {0, 0, 100, 80});
    view.lock()->addGestureRecognizer(std::make_shared<views::TapGestureRecognizer>([&] {
        delete child;
        QCoreApplication::processEvents();
        taps_.push_back("done");
    }));
    EXPECT_EQ(tapAt({50, 50}), Events{"done"});
    EXPECT_FALSE(root->peer()) << "a tree in memory again";
    root.reset();
    EXPECT_TRUE(view.expired());
}

}  // namespace
}  // namespace oska::qt
