#pragma once

#include <QComboBox>
#include <QLabel>
#include <QSlider>
#include <QToolButton>
#include <QWidget>

#include "tools/site_viewer/player.h"

namespace viewer {

/// Play, pause, seek and pace. `player` must outlive it.
class TransportBar final : public QWidget {
public:
    explicit TransportBar(Player& player, QWidget* parent = nullptr);

    /// Shows where the player is.
    void refresh();

private:
    void fillPaces();

    Player& player_;
    QToolButton* const play_;
    QSlider* const slider_;  // milliseconds
    QLabel* const time_;
    QComboBox* const pace_;
};

/// "02:05"; hours only when there are some.
[[nodiscard]] QString clockText(Player::Position position);

}  // namespace viewer
