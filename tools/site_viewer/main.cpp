#include <QApplication>
#include <QFileInfo>
#include <QMouseEvent>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "oska/foundation/logger.h"
#include "oska/text/one_line.h"
#include "tools/oska/site/sector_folder.h"
#include "tools/oska_serve/site_server.h"
#include "tools/site_viewer/options.h"
#include "tools/site_viewer/played_walk.h"
#include "tools/site_viewer/player.h"
#include "tools/site_viewer/theme.h"
#include "tools/site_viewer/window.h"
#include "tools/site_viewer/world.h"

namespace viewer {
namespace {

constexpr int DONE = 0;
constexpr int FAILED = 1;
constexpr int BAD_INPUT = 2;

int complain(const std::string& text, int status) {
    std::fprintf(stderr, "site_viewer: %s\n", oska::text::onOneLine(text).c_str());
    return status;
}

/// Pictures are drawn without a display. Returns false when a window needs a display and there is none: Qt
/// would end the program.
bool chooseQtPlatform(const Options& options) {
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) return true;
    if (options.screenshot) return qputenv("QT_QPA_PLATFORM", "offscreen");
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
#else
    return true;
#endif
}

void tap(QWidget& host) {
    const auto middle = host.rect().center();
    auto* const child = host.childAt(middle);
    auto& target = child != nullptr ? *child : host;
    const auto at = target.mapFrom(&host, middle);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const auto buttons = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event(type, at, target.mapToGlobal(at), Qt::LeftButton, buttons, Qt::NoModifier);
        QApplication::sendEvent(&target, &event);
    }
}

/// Walks are at most a day long.
Player::Position positionAt(double seconds) {
    const std::chrono::duration<double> position(std::min(seconds, 86'400.0));
    return std::chrono::duration_cast<Player::Position>(position);
}

int takePicture(Window& window, Player& player, const Options& options) {
    player.seek(positionAt(options.atSeconds));
    if (options.tap) tap(window.map());
    QApplication::processEvents();
    const auto file = QString::fromStdString(*options.screenshot);
    if (!window.grab().save(file, "PNG"))
        return complain(*options.screenshot + ": cannot be written", FAILED);
    return DONE;
}

Window::Source sourceOf(const Options& options, const PlayedWalk& walk, const std::string& serverUrl) {
    const auto name = QFileInfo(QString::fromStdString(options.recording)).fileName();
    const auto note = walk.actions == 0 ? std::string()
                                        : "Walk   " + std::to_string(walk.actions) +
                                              " lines on what its host did are left out: here it is you";
    return {options.siteFolder, serverUrl, name.toStdString(), note};
}

int show(const Options& options, const oska::tool::Site& site, const PlayedWalk& walk,
         const std::string& serverUrl) {
    const auto level = options.levelId ? site.findLevel(*options.levelId, std::nullopt) : std::nullopt;
    if (options.levelId && !level)
        return complain("the site has no level " + std::to_string(*options.levelId), BAD_INPUT);
    World world;
    Player player(walk, world.time(), world.source());
    std::unique_ptr<Window> window;
    const auto onReady = [&] {
        options.screenshot ? QApplication::exit(takePicture(*window, player, options)) : player.play();
    };
    window = std::make_unique<Window>(site, sourceOf(options, walk, serverUrl), player, onReady);
    if (level) window->showLevel(*level);
    window->resize(options.size);
    window->show();
    return QApplication::exec();
}

int run(int argc, char** argv) {
    auto parsed = parseOptions(argc, argv);
    if (const auto* const status = std::get_if<int>(&parsed)) return *status;
    const auto& options = std::get<Options>(parsed);
    const auto site = oska::tool::readSector(options.siteFolder, options.sectorId);
    if (!site) return complain(site.error(), BAD_INPUT);
    const auto walk = loadWalk(options.recording);
    if (!walk) return complain(walk.error(), BAD_INPUT);
    if (!chooseQtPlatform(options))
        return complain("there is no display; --screenshot FILE takes a picture without one", FAILED);
    auto server = oska::tool::SiteServer::start({.folder = options.siteFolder, .reportsAnswers = false});
    if (!server) return complain(server.error().problem, FAILED);
    oska::OskaLogger::setDebugOption(options.log);
    QApplication application(argc, argv);
    theme::apply(application);
    return show(options, *site, *walk, (*server)->url());
}

}  // namespace
}  // namespace viewer

int main(int argc, char** argv) { return viewer::run(argc, argv); }
