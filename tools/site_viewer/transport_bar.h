#pragma once

#include <QComboBox>
#include <QLabel>
#include <QSlider>
#include <QToolButton>
#include <QWidget>

#include "tools/site_viewer/player.h"

namespace viewer {

/// The controls for play, pause, position and pace. Lifetime: `player` must outlive it.
class TransportBar final : public QWidget {
public:
    explicit TransportBar(Player& player, QWidget* parent = nullptr);

    /// Shows the state of the player.
    void refresh();

private:
    void fillPaces();

    Player& player_;
    QToolButton* const play_;
    QSlider* const slider_;  // milliseconds
    QLabel* const time_;
    QComboBox* const pace_;
};

/// "02:05", or "1:02:05" from one hour.
[[nodiscard]] QString clockText(Player::Position position);

}  // namespace viewer
