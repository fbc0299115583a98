#pragma once

#include <QRectF>
#include <QSizeF>
#include <optional>
#include <vector>

namespace viewer {

/// Finds places for labels beside marks: inside the picture, and over no mark and no other label. Labels that
/// are placed first have more choice. All lengths are pixels.
class LabelLayout {
public:
    explicit LabelLayout(QRectF picture) : picture_(picture) {}

    /// No label is placed over `area` from now on.
    void keepFree(QRectF area) { taken_.push_back(area); }

    /// A place for a label of size `label` beside a mark of `radius`; nullopt when there is no room.
    [[nodiscard]] std::optional<QRectF> place(QPointF mark, double radius, QSizeF label);

private:
    [[nodiscard]] bool isFree(const QRectF& area) const;

    const QRectF picture_;
    std::vector<QRectF> taken_;
};

}  // namespace viewer
