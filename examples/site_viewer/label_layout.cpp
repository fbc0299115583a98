#include "examples/site_viewer/label_layout.h"

#include <algorithm>

namespace viewer {

std::optional<QRectF> LabelLayout::place(QPointF mark, double radius, QSizeF label) {
    constexpr double GAP = 3;
    const double reach = radius + GAP;
    const double w = label.width();
    const double h = label.height();
    const double low = mark.y() + reach;
    const double high = mark.y() - reach - h;
    const QPointF corners[]{
        {mark.x() + reach, mark.y() - h / 2},      // right
        {mark.x() - reach - w, mark.y() - h / 2},  // left
        {mark.x() - w / 2, low},                   // below
        {mark.x() - w / 2, high},                  // above
        {mark.x(), low},
        {mark.x() - w, low},
        {mark.x(), high},
        {mark.x() - w, high},
    };
    for (const auto& corner : corners) {
        const QRectF area(corner, label);
        if (!isFree(area)) continue;
        taken_.push_back(area);
        return area;
    }
    return std::nullopt;
}

bool LabelLayout::isFree(const QRectF& area) const {
    return picture_.contains(area) && std::none_of(taken_.begin(), taken_.end(), [&](const QRectF& other) {
               return other.intersects(area);
           });
}

}  // namespace viewer
