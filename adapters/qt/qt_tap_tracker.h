#pragma once

#include <QPointF>
#include <QRectF>
#include <optional>

namespace oska::qt {

/// Distinguishes a tap from a drag. A tap is pressed and released inside one area and never moves as far as
/// Qt's distance for a drag. Positions are in points, relative to the area.
class TapTracker {
public:
    void press(QPointF at) { start_ = at; }
    void move(QPointF at);
    /// Whether this ends a tap.
    [[nodiscard]] bool release(QPointF at, const QRectF& area);
    void cancel() { start_.reset(); }

private:
    std::optional<QPointF> start_;  // nullopt: no press that can still become a tap
};

}  // namespace oska::qt
