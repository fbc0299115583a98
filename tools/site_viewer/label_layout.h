#pragma once

#include <QRectF>
#include <QSizeF>
#include <optional>
#include <vector>

namespace viewer {

/// Finds places for labels beside marks, none over another, over a mark or out of the picture. First come,
/// first served: ask for what matters most first. In pixels.
class LabelLayout {
public:
    explicit LabelLayout(QRectF picture) : picture_(picture) {}

    /// Nothing is put over `area` from now on.
    void keepFree(QRectF area) { taken_.push_back(area); }

    /// Beside a mark of that radius; none when there is no room.
    [[nodiscard]] std::optional<QRectF> place(QPointF mark, double radius, QSizeF label);

private:
    [[nodiscard]] bool isFree(const QRectF& area) const;

    const QRectF picture_;
    std::vector<QRectF> taken_;
};

}  // namespace viewer
