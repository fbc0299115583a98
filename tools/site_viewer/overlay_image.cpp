#include "tools/site_viewer/overlay_image.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "tools/site_viewer/theme.h"

namespace viewer {
namespace {

constexpr double LONG_SIDE = 1200;  // pixels
constexpr auto TEXT = "Content here: tap";

void drawFrame(QPainter& painter, const QRectF& area, double width) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(theme::INK, width));
    painter.drawRect(area.adjusted(width / 2, width / 2, -width / 2, -width / 2));
    painter.setPen(QPen(theme::SELECTED, width * 0.6));
    painter.drawRect(area.adjusted(width / 2, width / 2, -width / 2, -width / 2));
}

void drawBadge(QPainter& painter, const QRectF& area, double textSize) {
    auto font = painter.font();
    font.setPixelSize(std::max(1, static_cast<int>(textSize)));
    font.setBold(true);
    painter.setFont(font);
    const double textWidth = QFontMetricsF(font).horizontalAdvance(TEXT);
    const QSizeF size(textWidth + 3 * textSize, 1.9 * textSize);
    const QRectF badge(QPointF(area.center().x() - size.width() / 2, area.bottom() - size.height()), size);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0));
    painter.drawRoundedRect(badge.adjusted(0, 0, 0, textSize), textSize / 2, textSize / 2);
    const double radius = textSize * 0.45;
    const QPointF mark(badge.left() + textSize * 1.1, badge.center().y());
    painter.setBrush(theme::SELECTED.lighter(120));
    painter.drawPolygon(theme::diamond(mark, radius));
    painter.setPen(Qt::white);
    painter.drawText(badge.adjusted(2 * textSize, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, TEXT);
}

QImage drawn(QSizeF size) {
    QImage image(size.toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area(QPointF(0, 0), QSizeF(image.size()));
    const double unit = std::min(area.width(), area.height());
    drawFrame(painter, area, unit / 55);
    drawBadge(painter, area, unit / 22);
    return image;
}

}  // namespace

std::shared_ptr<const oska::views::Image> overlayImage(QSizeF map) {
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    // Each side has at least one pixel, also for a very long and thin map.
    drawn(map.scaled(LONG_SIDE, LONG_SIDE, Qt::KeepAspectRatio).expandedTo({1, 1})).save(&buffer, "PNG");
    auto image = oska::views::pngImage(png.toStdString());
    return image ? std::make_shared<const oska::views::Image>(*std::move(image)) : nullptr;
}

}  // namespace viewer
