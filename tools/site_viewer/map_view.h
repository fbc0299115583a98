#pragma once

#include <QWidget>

#include "tools/site_viewer/level_picture.h"

namespace viewer {

/// Shows a level. The Dapo view is placed over this widget.
class MapView final : public QWidget {
public:
    explicit MapView(QWidget* parent = nullptr);

    void showPicture(LevelPicture picture);

    /// See extentOf; empty before the first picture.
    [[nodiscard]] QRectF extent() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    LevelPicture picture_;
};

}  // namespace viewer
