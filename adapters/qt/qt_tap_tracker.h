#pragma once

#include <QPointF>
#include <QRectF>
#include <optional>

namespace oska::qt {

/// Tells a tap from a drag: pressed and released inside one area, and never moved as far as a drag does.
/// Places are in points of the area's own.
class TapTracker {
public:
    void press(QPointF at) { start_ = at; }
    void move(QPointF at);
    /// Whether this ends a tap.
    [[nodiscard]] bool release(QPointF at, const QRectF& area);
    void cancel() { start_.reset(); }

private:
    std::optional<QPointF> start_;  // none: nothing that can still become a tap
};

}  // namespace oska::qt
