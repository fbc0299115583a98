#pragma once

#include <QApplication>
#include <QColor>
#include <QPolygonF>

#include "tools/site_viewer/ward_reading.h"

class QPainter;

/// Colours and shapes of the viewer. The colours are those of Okabe and Ito, which colour-blind people can
/// tell apart; each state has a different shape, too.
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

/// Gives the application light colours on every desktop, and the text size that the map is made for.
void apply(QApplication& application);

/// The words of the legend: "too weak".
[[nodiscard]] QString nameOf(WardState state);

/// A square that stands on a corner; `radius` is half its diagonal.
[[nodiscard]] QPolygonF diamond(QPointF centre, double radius);
/// Draws a ward's mark: silent is a hollow circle, heard a filled circle, strong a square, selected a
/// diamond.
void drawMark(QPainter& painter, QPointF centre, WardState state);
/// Draws the phone as a pin whose point is at `tip`.
void drawPhone(QPainter& painter, QPointF tip);

/// Half the width of the largest mark; the size of the phone's pin. Pixels.
inline constexpr double MARK_RADIUS = 8;
inline constexpr double PHONE_WIDTH = 26;
inline constexpr double PHONE_HEIGHT = 38;

}  // namespace viewer::theme
