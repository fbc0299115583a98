#pragma once

#include <QImage>
#include <memory>

#include "oska/views/image.h"

namespace oska::qt {

/// The pixels of an image, decoded once while the image lives. A null QImage for no image, and for bytes that
/// Qt cannot decode; Qt's log then gets one warning for the image. Threads: the application's thread.
[[nodiscard]] QImage decoded(const std::shared_ptr<const views::Image>& image);

}  // namespace oska::qt
