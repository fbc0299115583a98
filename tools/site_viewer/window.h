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

/// In a smaller window things would overlap.
inline constexpr QSize LEAST_SIZE{320, 600};

/// The viewer's window: the map with its overlay, the player, and panels that stand beside the map or, where
/// the window is narrow, below it as tabs.
///
/// Lifetime: `site` and `player` outlive it.
class Window final : public QWidget {
public:
    struct Source {
        std::string siteFolder;
        std::string serverUrl;  ///< where that folder is served
        std::string walkName;
        std::string note;  ///< first in the log, unless it is empty
    };

    /// `onReady`: the walk can be played.
    Window(const Site& site, const Source& source, Player& player, std::function<void()> onReady);
    ~Window() override;

    /// Shows a level of the site, whatever level the phone is on.
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

    const Site& site_;
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

    std::unique_ptr<Session> session_;  // the last to come, the first to go
};

}  // namespace viewer
