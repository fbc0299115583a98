#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>

#include "tools/site_viewer/content_panel.h"
#include "tools/site_viewer/legend.h"
#include "tools/site_viewer/map_view.h"
#include "tools/site_viewer/player.h"
#include "tools/site_viewer/session.h"
#include "tools/site_viewer/side_panels.h"
#include "tools/site_viewer/status_line.h"
#include "tools/site_viewer/transport_bar.h"
#include "tools/site_viewer/ward_table.h"

class QBoxLayout;

namespace viewer {

/// Pixels. In a smaller window the widgets overlap.
inline constexpr QSize LEAST_SIZE{320, 600};

/// The viewer's window: the map with its overlay, the controls of the player, and panels beside the map. In a
/// narrow window the panels are tabs below the map.
///
/// Threads: the main thread. Lifetime: `site` and `player` outlive it.
class Window final : public QWidget {
public:
    struct Source {
        std::string siteFolder;
        std::string serverUrl;  ///< the server of that folder
        std::string walkName;
        std::string note;  ///< first line of the log; empty for none
    };

    /// Calls `onReady` when the walk can be played.
    Window(const oska::tool::Site& site, const Source& source, Player& player, std::function<void()> onReady);
    ~Window() override;

    /// Shows the level with that index in the site, and no longer follows the phone.
    void showLevel(std::size_t level);
    [[nodiscard]] MapView& map() { return *map_; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] Session::Callbacks callbacks();
    void setUp(const Source& source);
    [[nodiscard]] QWidget* header(const Source& source);
    [[nodiscard]] QWidget* levelRow();
    [[nodiscard]] QWidget* mapColumn(const Source& source);
    void arrange();
    void fitMap();

    void becomeReady();
    void refresh();
    void select(std::size_t level);
    void log(const std::string& line);

    const oska::tool::Site& site_;
    Player& player_;
    const std::function<void()> onReady_;
    std::size_t level_ = 0;

    QBoxLayout* columns_ = nullptr;
    StatusLine* position_ = nullptr;
    StatusLine* overlay_ = nullptr;
    QComboBox* levels_ = nullptr;
    QCheckBox* follow_ = nullptr;
    MapView* map_ = nullptr;
    TransportBar* transport_ = nullptr;
    ContentPanel* content_ = nullptr;
    WardTable* wards_ = nullptr;
    QPlainTextEdit* log_ = nullptr;
    SidePanels* panels_ = nullptr;

    std::unique_ptr<Session> session_;  // destroyed first: it calls the widgets
};

}  // namespace viewer
