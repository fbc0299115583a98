#include "tools/site_viewer/map_view.h"

#include <QPainter>
#include <utility>

#include "tools/site_viewer/theme.h"

namespace viewer {

MapView::MapView(QWidget* parent) : QWidget(parent) {
    setMinimumWidth(200);
    setAccessibleName("Map");
}

void MapView::showPicture(LevelPicture picture) {
    picture_ = std::move(picture);
    update();
}

QRectF MapView::extent() const { return picture_.level != nullptr ? extentOf(picture_) : QRectF(); }

void MapView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::PAPER);
    if (picture_.level != nullptr) draw(painter, QSizeF(size()), picture_);
}

}  // namespace viewer
