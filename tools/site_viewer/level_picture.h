#pragma once

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <optional>
#include <vector>

#include "tools/oska/site/site.h"
#include "tools/site_viewer/ward_reading.h"

class QPainter;

namespace viewer {

/// All that is drawn of a level at one time. `level` and the wards must outlive it.
struct LevelPicture {
    const oska::tool::SiteLevel* level = nullptr;
    QImage image;  ///< null: a grid is drawn instead
    std::vector<WardReading> wards;
    std::vector<QPointF> trail;    ///< positions of the phone, the latest last; pixels of the map image
    std::optional<QPointF> phone;  ///< pixels of the map image; nullopt: it is not on this level
};

/// The part of the map that is shown, in pixels of the map image: the whole image; without an image, the area
/// of the wards.
[[nodiscard]] QRectF extentOf(const LevelPicture& picture);

/// Where `extent` is drawn in a picture of `size`: as large as its proportions allow, in the middle.
[[nodiscard]] QRectF frameOf(const QRectF& extent, QSizeF size);

/// On a map that is narrower than this, labels leave out the thresholds. Pixels.
inline constexpr double BRIEF_BELOW = 600;

/// Draws the level as large as `size` (pixels) allows. Labels without room are left out.
void draw(QPainter& painter, QSizeF size, const LevelPicture& picture);

}  // namespace viewer
