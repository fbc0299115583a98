#include "tools/site_viewer/transport_bar.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QStyle>

namespace viewer {
namespace {

constexpr double PACES[]{0.5, 1, 2, 5, 10, 30};

int milliseconds(Player::Position position) {
    return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(position).count());
}

}  // namespace

TransportBar::TransportBar(Player& player, QWidget* parent)
    : QWidget(parent),
      player_(player),
      play_(new QToolButton(this)),
      slider_(new QSlider(Qt::Horizontal, this)),
      time_(new QLabel(this)),
      pace_(new QComboBox(this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(play_);
    row->addWidget(slider_, 1);
    row->addWidget(time_);
    row->addWidget(pace_);
    play_->setShortcut(Qt::Key_Space);
    play_->setIconSize({22, 22});
    slider_->setRange(0, milliseconds(player.duration()));
    slider_->setPageStep(10'000);
    slider_->setSingleStep(1'000);
    slider_->setAccessibleName("Position in the walk");
    slider_->setMinimumWidth(80);
    time_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    fillPaces();
    QObject::connect(play_, &QToolButton::clicked, this,
                     [this] { player_.isPlaying() ? player_.pause() : player_.play(); });
    QObject::connect(slider_, &QSlider::valueChanged, this,
                     [this](int value) { player_.seek(std::chrono::milliseconds(value)); });
    refresh();
}

void TransportBar::fillPaces() {
    pace_->setAccessibleName("Pace");
    for (const double pace : PACES) pace_->addItem(QString::number(pace) + QString::fromUtf8("×"), pace);
    pace_->setCurrentIndex(pace_->findData(player_.pace()));
    QObject::connect(pace_, &QComboBox::activated, this,
                     [this](int index) { player_.setPace(pace_->itemData(index).toDouble()); });
}

void TransportBar::refresh() {
    const QSignalBlocker quiet(slider_);  // showing a position must not seek
    if (!slider_->isSliderDown()) slider_->setValue(milliseconds(player_.position()));
    time_->setText(clockText(player_.position()) + " / " + clockText(player_.duration()));
    const auto icon = player_.isPlaying() ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay;
    play_->setIcon(style()->standardIcon(icon));
    play_->setToolTip(player_.isPlaying() ? "Pause (Space)" : "Play (Space)");
}

QString clockText(Player::Position position) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(position).count();
    const auto text =
        QString("%1:%2").arg(seconds / 60 % 60, 2, 10, QChar('0')).arg(seconds % 60, 2, 10, QChar('0'));
    return seconds < 3600 ? text : QString::number(seconds / 3600) + ":" + text;
}

}  // namespace viewer
