#pragma once

#include <QSizeF>
#include <memory>

#include "oska/views/image.h"

namespace viewer {

/// The image of the Dapo view, for a map with the proportions of `map`: a frame and a badge, through which
/// the map can be seen.
[[nodiscard]] std::shared_ptr<const oska::views::Image> overlayImage(QSizeF map);

}  // namespace viewer
