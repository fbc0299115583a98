#include "tools/site_viewer/label_layout.h"

#include <algorithm>
#include <array>

namespace viewer {

namespace {

/// Top left corners for a label, the best first: beside the mark, below, above, at its corners.
std::array<QPointF, 8> cornersAround(QPointF mark, double reach, QSizeF label) {
    const double middle = mark.y() - label.height() / 2;
    const double low = mark.y() + reach;
    const double high = mark.y() - reach - label.height();
    const double left = mark.x() - label.width();
    const double centred = mark.x() - label.width() / 2;
    return {{{mark.x() + reach, middle},
             {left - reach, middle},
             {centred, low},
             {centred, high},
             {mark.x(), low},
             {left, low},
             {mark.x(), high},
             {left, high}}};
}

}  // namespace

std::optional<QRectF> LabelLayout::place(QPointF mark, double radius, QSizeF label) {
    for (const double gap : {3.0, 10.0}) {
        for (const auto& corner : cornersAround(mark, radius + gap, label)) {
            const QRectF area(corner, label);
            if (!isFree(area)) continue;
            taken_.push_back(area);
            return area;
        }
    }
    return std::nullopt;
}

bool LabelLayout::isFree(const QRectF& area) const {
    return picture_.contains(area) && std::none_of(taken_.begin(), taken_.end(), [&](const QRectF& other) {
               return other.intersects(area);
           });
}

}  // namespace viewer
