#pragma once

#include <QWidget>

#include "tools/site_viewer/level_picture.h"

namespace viewer {

/// Shows a level. The host's widget that the Dapo view is laid over.
class MapView final : public QWidget {
public:
    explicit MapView(QWidget* parent = nullptr);

    void showPicture(LevelPicture picture);

    /// What of the map is shown; empty before there is anything.
    [[nodiscard]] QRectF extent() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    LevelPicture picture_;
};

}  // namespace viewer
