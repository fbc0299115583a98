#pragma once

#include <QImage>
#include <memory>

#include "oska/views/image.h"

namespace oska::qt {

/// The pixels of an image, decoded once for as long as the image lives. Null for no image, and for bytes that
/// Qt cannot decode, of which its log hears once. Threads: the application's.
[[nodiscard]] QImage decoded(const std::shared_ptr<const views::Image>& image);

}  // namespace oska::qt
