#pragma once

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <optional>
#include <vector>

#include "tools/site_viewer/site.h"
#include "tools/site_viewer/ward_reading.h"

class QPainter;

namespace viewer {

/// All that is to be seen of a level at an instant. What it points to must outlive it.
struct LevelPicture {
    const Level* level = nullptr;
    QImage image;  ///< null: a plan is drawn from the wards
    std::vector<WardReading> wards;
    std::vector<QPointF> trail;  ///< the latest last; like `phone` on the map image
    std::optional<QPointF> phone;
};

/// The part of the map that is shown, in the map image's units: the image, or where the wards are.
[[nodiscard]] QRectF extentOf(const Level& level, const QImage& image);

/// Where that part lies in a picture of `size`: as large as its proportions allow, in the middle.
[[nodiscard]] QRectF frameOf(const QRectF& extent, QSizeF size);

/// On a map that is narrower, labels leave out the thresholds. Pixels.
inline constexpr double BRIEF_BELOW = 600;

/// Draws the level as large as `size` (pixels) allows. Labels for which there is no room are left out.
void draw(QPainter& painter, QSizeF size, const LevelPicture& picture);

}  // namespace viewer
