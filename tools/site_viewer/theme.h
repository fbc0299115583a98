#pragma once

#include <QApplication>
#include <QColor>
#include <QPolygonF>

#include "tools/site_viewer/ward_reading.h"

class QPainter;

/// The one look of the viewer. Colours are Okabe and Ito's, which colour-blind people tell apart, and every
/// state has a shape of its own as well.
namespace viewer::theme {

inline constexpr QColor PAPER{250, 250, 248};
inline constexpr QColor PANEL{255, 255, 255};
inline constexpr QColor INK{34, 34, 34};
inline constexpr QColor FAINT_INK{85, 85, 85};
inline constexpr QColor LINE{205, 205, 200};
inline constexpr QColor PHONE{0, 114, 178};     // blue
inline constexpr QColor SILENT{107, 107, 107};  // grey
inline constexpr QColor HEARD{86, 180, 233};    // sky blue
inline constexpr QColor STRONG{0, 158, 115};    // bluish green
inline constexpr QColor SELECTED{230, 159, 0};  // orange
inline constexpr QColor PROBLEM{174, 60, 0};    // vermillion, darkened for text on white

/// Light, whatever the desktop's; a text size that suits a map.
void apply(QApplication& application);

/// "too weak": the words of the legend.
[[nodiscard]] QString nameOf(WardState state);

[[nodiscard]] QPolygonF diamond(QPointF centre, double radius);
/// A ward's mark: hollow circle, filled circle, square, diamond.
void drawMark(QPainter& painter, QPointF centre, WardState state);
/// A pin, `tip` its point.
void drawPhone(QPainter& painter, QPointF tip);

/// Half the width of the largest mark; the size of the phone's pin. Pixels.
inline constexpr double MARK_RADIUS = 8;
inline constexpr double PHONE_WIDTH = 26;
inline constexpr double PHONE_HEIGHT = 38;

}  // namespace viewer::theme
