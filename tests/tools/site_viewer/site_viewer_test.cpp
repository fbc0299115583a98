#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <fstream>

#include "oska/foundation/logger.h"
#include "tools/oska/site/sector_folder.h"
#include "tools/oska_serve/site_server.h"
#include "tools/site_viewer/label_layout.h"
#include "tools/site_viewer/played_walk.h"
#include "tools/site_viewer/window.h"
#include "tools/site_viewer/world.h"

namespace viewer {
namespace {

using namespace std::chrono_literals;

const std::string RIVERSIDE = RIVERSIDE_FOLDER;
const std::string VISIT = RIVERSIDE + "/walks/museum_visit.jsonl";

TEST(ViewerWalk, CountsActionsNeverGoesBackAndEndsWithinADay) {
    const QTemporaryDir folder;
    const auto path = folder.filePath("walk.jsonl").toStdString();
    const auto walkOf = [&](const std::string& recording) {
        std::ofstream(path) << recording;
        return loadWalk(path);
    };
    const std::string begin = R"({"mobile_time":1000,"rfs":{}})"
                              "\n\n"
                              R"({"mobile_time":)";
    EXPECT_EQ(walkOf(R"({"mobile_time":1,"action":"tap"})").error(), path + ": no sample in it");
    EXPECT_EQ(walkOf(begin + R"(86401001,"rfs":{}})").error(),
              path + ":3: more than a day after the first sample");
    const auto walk = *walkOf(begin + R"(86401000,"rfs":{}}
        {"mobile_time":1200,"action":"tap"}
        {"mobile_time":-9223372036854775808,"rfs":{}})");
    EXPECT_EQ(std::tuple(walk.actions, walk.samples.size()), std::tuple(1U, 3U));
    EXPECT_EQ(std::tuple(walk.samples.at(1).due, walk.samples.at(2).due), std::tuple(24h, 24h));
}

TEST(ViewerLabels, DoNotOverlapAndStayInThePicture) {
    const QRect picture(0, 0, 100, 60);
    LabelLayout layout(picture);
    QRegion placed;
    for (const QPoint mark : {QPoint(50, 30), QPoint(50, 30), QPoint(95, 5), QPoint(5, 55)}) {
        const auto area = layout.place(mark, 4, {40, 12});
        ASSERT_TRUE(area);
        EXPECT_TRUE(picture.contains(area->toRect()));
        EXPECT_FALSE(placed.intersects(area->toRect()));
        placed += area->toRect();
    }
    layout.keepFree(picture);
    EXPECT_FALSE(layout.place({50, 30}, 4, {1, 1}));
}

/// The viewer on the sample site, its server and both services included.
class ViewerWindow : public testing::Test {
protected:
    ViewerWindow() {
        oska::OskaLogger::setDebugOption(false);
        bool isReady = false;
        window_ = std::make_unique<Window>(*site_, Window::Source{RIVERSIDE, (*server_)->url(), "visit", ""},
                                           player_, [&] { isReady = true; });
        window_->show();
        while (!isReady) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    [[nodiscard]] QWidget* overlay() const { return window_->map().childAt(window_->map().rect().center()); }
    [[nodiscard]] QString text() const {
        QString all;
        for (const auto* const widget : window_->findChildren<QWidget*>())
            all += widget->accessibleName() + "\n";
        const auto& wards = *window_->findChild<QTableWidget*>();
        for (int row = 0; row < wards.rowCount(); ++row) all += wards.item(row, 1)->text() + "\n";
        return all;
    }
    [[nodiscard]] QString links() const { return window_->findChild<ContentPanel*>()->toPlainText(); }
    void clickMap() {
        const auto at = window_->map().mapTo(window_.get(), window_->map().rect().center());
        QTest::mouseClick(window_->windowHandle(), Qt::LeftButton, {}, at);
    }

    const oska::Result<oska::tool::Site, std::string> site_ = oska::tool::readSector(RIVERSIDE, std::nullopt);
    const oska::Result<PlayedWalk, std::string> walk_ = loadWalk(VISIT);
    const oska::Result<std::unique_ptr<oska::tool::SiteServer>, oska::tool::NotServing> server_ =
        oska::tool::SiteServer::start({.folder = RIVERSIDE, .reportsAnswers = false});
    World world_;
    Player player_{*walk_, world_.time(), world_.source()};
    std::unique_ptr<Window> window_;
};

TEST_F(ViewerWindow, ShowsTheSameAtATimeHoweverItIsReached) {
    const auto beginning = text();
    player_.seek(100s);
    const auto direct = text();
    EXPECT_TRUE(direct.contains("ceramics-kiln")) << direct.toStdString();
    player_.seek(250s);
    EXPECT_FALSE(text().contains("ceramics-kiln"));
    player_.seek(100s);
    EXPECT_EQ(text(), direct) << "backwards";
    player_.seek(0s);
    EXPECT_EQ(text(), beginning);
    for (auto at = 0ms; at <= 100s; at += 130ms) player_.seek(at);
    player_.seek(100s);
    EXPECT_EQ(text(), direct) << "in small steps";
}

TEST_F(ViewerWindow, ListsLinksAfterATapOnTheOverlayWhichCoversTheMapAtEverySize) {
    const auto hint = links();
    player_.seek(160s);  // on the stairs
    ASSERT_FALSE(overlay());
    clickMap();
    EXPECT_EQ(links(), hint);
    player_.seek(100s);
    clickMap();
    EXPECT_TRUE(links().contains("A kiln, cut open")) << links().toStdString();
    for (const QSize size : {QSize(390, 844), QSize(1280, 800)}) {
        window_->resize(size);
        QApplication::processEvents();
        ASSERT_TRUE(overlay());
        const auto origin = overlay()->mapTo(&window_->map(), QPoint(0, 0));
        EXPECT_EQ(overlay()->rect().translated(origin), window_->map().rect());
        EXPECT_EQ(window_->size(), size) << "no widget needs more space";
    }
    player_.seek(50s);
    EXPECT_EQ(links(), hint) << "the walk starts again";
}

TEST_F(ViewerWindow, FollowsThePhoneUntilALevelIsChosen) {
    const auto& levels = *window_->findChild<QComboBox*>();
    player_.seek(180s);
    EXPECT_EQ(levels.currentIndex(), 1);
    window_->showLevel(2);
    player_.seek(185s);
    EXPECT_EQ(levels.currentIndex(), 2);
    window_->findChild<QCheckBox*>()->click();
    EXPECT_EQ(levels.currentIndex(), 1);
}

TEST(ViewerProgram, WritesAPictureOrSaysWhatIsWrong) {
    const QTemporaryDir folder;
    const auto file = folder.filePath("picture.png");
    const auto site = QString::fromStdString(RIVERSIDE);
    const auto walk = QString::fromStdString(VISIT);
    const std::tuple<QStringList, int, QByteArray> cases[]{
        {{site}, 2, "recording is required"},
        {{"/nowhere", walk}, 2, "/nowhere: there is no such folder"},
        {{site, "/nowhere"}, 2, "/nowhere: "},
        {{site, walk, "--at", "5"}, 2, "--screenshot"},
        {{site, walk, "--size", "20x20"}, 2, "\"20x20\""},
        {{site, walk, "--screenshot", "/nowhere/a.png"}, 1, "/nowhere/a.png: cannot be written"},
        {{site, walk, "--screenshot", file, "--level", "5"}, 2, "no level 5"},
        {{site, walk, "--screenshot", file, "--at", "100", "--size", "390x844", "--tap"}, 0, ""}};
    for (const auto& [arguments, status, problem] : cases) {
        EXPECT_FALSE(QFile::exists(file));
        QProcess process;
        process.start(SITE_VIEWER_PROGRAM, arguments);
        EXPECT_TRUE(process.waitForFinished(60'000));
        EXPECT_EQ(process.exitCode(), status);
        const auto errors = process.readAllStandardError();
        EXPECT_TRUE(status == 0 ? errors.isEmpty() : errors.contains(problem)) << errors.toStdString();
    }
    EXPECT_EQ(QImage(file).size(), QSize(390, 844));
}

}  // namespace
}  // namespace viewer
