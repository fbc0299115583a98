#include "tools/site_viewer/window.h"

#include <QBoxLayout>
#include <QFontDatabase>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "adapters/qt/qt_host_view.h"
#include "tools/site_viewer/theme.h"

namespace viewer {
namespace {

constexpr int NARROW = 800;  // pixels: in a narrower window the panels are below the map
constexpr int PANEL_WIDTH = 380;
constexpr int TITLE_SIZE = 18;
constexpr int MARGIN = 10;
constexpr int LEAST_MAP_HEIGHT = 140;
constexpr double NARROW_MAP_SHARE = 0.45;  // of the window's height
constexpr int LOG_LINES = 2000;

/// The name of the level comes first, because a small box cuts off the end.
QString levelName(const oska::tool::SiteLevel& level) {
    const auto name = QString::fromStdString(level.name) + QString::fromUtf8(" · ") +
                      QString::fromStdString(level.buildingName);
    return name.simplified();
}

QPlainTextEdit* logPane() {
    auto* const pane = new QPlainTextEdit;
    pane->setReadOnly(true);
    pane->setMaximumBlockCount(LOG_LINES);
    auto font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(11);
    pane->setFont(font);
    return pane;
}

}  // namespace

Window::Window(const oska::tool::Site& site, const Source& source, Player& player,
               std::function<void()> onReady)
    : site_(site), player_(player), onReady_(std::move(onReady)) {
    setUp(source);
    if (!source.note.empty()) log(source.note);
    session_ = std::make_unique<Session>(site, source.siteFolder, source.serverUrl, player, callbacks());
    refresh();
}

Window::~Window() = default;

Session::Callbacks Window::callbacks() {
    // onReady is called inside a job of the kit, where the player must not be moved.
    return {.onReady = [this] { QTimer::singleShot(0, this, [this] { becomeReady(); }); },
            .onChanged = [this] { refresh(); },
            .onRewound = [this] { content_->showHint(); },
            .onEvent = [this](const std::string& line) { log(line); },
            .onLinks =
                [this](const auto& wards) {
                    content_->showLinks(wards);
                    panels_->reveal(content_);
                }};
}

// ---- widgets

void Window::setUp(const Source& source) {
    setWindowTitle(QString::fromStdString(site_.name) + " - site viewer");
    setMinimumSize(LEAST_SIZE);
    content_ = new ContentPanel;
    wards_ = new WardTable;
    log_ = logPane();
    panels_ = new SidePanels;
    panels_->add("Wards of this level", wards_, 5);
    panels_->add("Content", content_, 3);
    panels_->add("Log", log_, 4);
    columns_ = new QBoxLayout(QBoxLayout::LeftToRight, this);
    columns_->setContentsMargins(MARGIN, MARGIN, MARGIN, MARGIN);
    columns_->setSpacing(MARGIN);
    columns_->addWidget(mapColumn(source), 1);
    columns_->addWidget(panels_);
    arrange();
}

QWidget* Window::mapColumn(const Source& source) {
    auto* const column = new QWidget;
    auto* const layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    map_ = new MapView;
    transport_ = new TransportBar(player_);
    transport_->setEnabled(false);
    layout->addWidget(header(source));
    layout->addWidget(levelRow());
    layout->addWidget(map_, 1);
    layout->addWidget(new Legend);
    layout->addWidget(transport_);
    return column;
}

QWidget* Window::header(const Source& source) {
    auto* const header = new QWidget;
    auto* const layout = new QVBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    auto* const title = new StatusLine(QString::fromStdString(site_.name));
    title->setTitleSize(TITLE_SIZE);
    title->setText("sector " + QString::number(site_.sectorId) + ", " +
                   QString::fromStdString(source.walkName));
    position_ = new StatusLine("Pelio");
    overlay_ = new StatusLine("Dapo");
    for (auto* const line : {title, position_, overlay_}) layout->addWidget(line);
    return header;
}

QWidget* Window::levelRow() {
    auto* const row = new QWidget;
    auto* const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    levels_ = new QComboBox;
    levels_->setAccessibleName("Level");
    levels_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    for (const auto& level : site_.levels) levels_->addItem(levelName(level));
    follow_ = new QCheckBox("Follow the phone");
    follow_->setChecked(true);
    layout->addWidget(levels_, 1);
    layout->addWidget(follow_);
    QObject::connect(levels_, &QComboBox::activated, this,
                     [this](int index) { showLevel(static_cast<std::size_t>(index)); });
    QObject::connect(follow_, &QCheckBox::toggled, this, [this] { refresh(); });
    return row;
}

void Window::arrange() {
    const bool isNarrow = width() < NARROW;
    columns_->setDirection(isNarrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    columns_->setStretchFactor(panels_, isNarrow ? 1 : 0);
    panels_->setTabbed(isNarrow);
    panels_->setMinimumWidth(isNarrow ? 0 : PANEL_WIDTH);
    panels_->setMaximumWidth(isNarrow ? QWIDGETSIZE_MAX : PANEL_WIDTH);
    fitMap();
}

/// Panels below the map take all space that the map does not ask for: so the map asks for what it needs.
void Window::fitMap() {
    const bool isNarrow = width() < NARROW;
    const auto fit = frameOf(map_->extent(), QSizeF(width() - 2 * MARGIN, height() * NARROW_MAP_SHARE));
    map_->setMinimumHeight(isNarrow ? std::max(LEAST_MAP_HEIGHT, qRound(fit.height())) : LEAST_MAP_HEIGHT);
}

void Window::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    arrange();
}

// ---- what is shown

void Window::becomeReady() {
    session_->placeOverlay(oska::qt::viewOf(*map_), level_);
    transport_->setEnabled(true);
    player_.seek(Player::Position::zero());
    onReady_();
}

void Window::refresh() {
    if (!session_) return;
    if (const auto phone = session_->phoneLevel(); phone && follow_->isChecked()) select(*phone);
    auto picture = session_->picture(level_);
    position_->setText(QString::fromStdString(session_->positionText()));
    overlay_->setText(QString::fromStdString(session_->overlayText()));
    wards_->showReadings(picture.wards);
    map_->showPicture(std::move(picture));
    fitMap();
    transport_->refresh();
}

void Window::showLevel(std::size_t level) {
    follow_->setChecked(false);
    select(level);
    refresh();
}

void Window::select(std::size_t level) {
    if (std::exchange(level_, level) == level) return;
    levels_->setCurrentIndex(static_cast<int>(level));
    // Again for each level: the image of the overlay has the proportions of the map.
    session_->placeOverlay(oska::qt::viewOf(*map_), level);
}

void Window::log(const std::string& line) {
    log_->appendPlainText(clockText(player_.position()) + "  " + QString::fromStdString(line));
}

}  // namespace viewer
