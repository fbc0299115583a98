#include "tools/site_viewer/theme.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QStyleFactory>

namespace viewer::theme {
namespace {

constexpr int TEXT_SIZE = 13;  // pixels

QPainterPath pin(QPointF tip) {
    const double radius = PHONE_WIDTH / 2;
    const QPointF centre = tip - QPointF(0, PHONE_HEIGHT - radius);
    QPainterPath path;
    path.moveTo(tip);
    path.quadTo(centre + QPointF(-radius, radius), centre + QPointF(-radius, 0));
    path.arcTo(QRectF(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius), 180, -180);
    path.quadTo(centre + QPointF(radius, radius), tip);
    return path;
}

}  // namespace

void apply(QApplication& application) {
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QPalette palette(QColor(240, 240, 237), PAPER);
    palette.setColor(QPalette::Base, PANEL);
    palette.setColor(QPalette::AlternateBase, QColor(246, 246, 243));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, INK);
    palette.setColor(QPalette::PlaceholderText, FAINT_INK);
    palette.setColor(QPalette::Highlight, PHONE);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, PHONE);
    QApplication::setPalette(palette);
    auto font = application.font();
    font.setPixelSize(TEXT_SIZE);
    QApplication::setFont(font);
}

QString nameOf(WardState state) {
    switch (state) {
        case WardState::silent:
            return "silent";
        case WardState::heard:
            return "too weak";
        case WardState::strong:
            return "strong enough";
        case WardState::selected:
            return "content shown";
    }
    return {};
}

QPolygonF diamond(QPointF centre, double radius) {
    return QPolygonF({centre + QPointF(0, -radius), centre + QPointF(radius, 0), centre + QPointF(0, radius),
                      centre + QPointF(-radius, 0)});
}

void drawMark(QPainter& painter, QPointF centre, WardState state) {
    painter.setRenderHint(QPainter::Antialiasing);
    switch (state) {
        case WardState::silent:
            painter.setPen(QPen(SILENT, 1.8));
            painter.setBrush(PANEL);
            return painter.drawEllipse(centre, 4.5, 4.5);
        case WardState::heard:
            painter.setPen(QPen(INK, 1.2));
            painter.setBrush(HEARD);
            return painter.drawEllipse(centre, 5.5, 5.5);
        case WardState::strong:
            painter.setPen(QPen(INK, 1.2));
            painter.setBrush(STRONG);
            return painter.drawRect(QRectF(centre.x() - 5.5, centre.y() - 5.5, 11, 11));
        case WardState::selected:
            painter.setPen(QPen(INK, 1.4));
            painter.setBrush(SELECTED);
            painter.drawPolygon(diamond(centre, MARK_RADIUS));
            return;
    }
}

void drawPhone(QPainter& painter, QPointF tip) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, 2));
    painter.setBrush(PHONE);
    painter.drawPath(pin(tip));
    const QPointF centre = tip - QPointF(0, PHONE_HEIGHT - PHONE_WIDTH / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(centre.x() - 4, centre.y() - 7, 8, 14), 2, 2);
    painter.setBrush(PHONE);
    painter.drawRect(QRectF(centre.x() - 2.5, centre.y() - 5, 5, 8.5));
}

}  // namespace viewer::theme
