#pragma once

#include <QSizeF>
#include <memory>

#include "oska/views/image.h"

namespace viewer {

/// What the Dapo view shows over a map of those proportions: a frame and a badge, so that the map stays to
/// be seen. A host may show any image; without one there is the kit's own.
[[nodiscard]] std::shared_ptr<const oska::views::Image> overlayImage(QSizeF map);

}  // namespace viewer
