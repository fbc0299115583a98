#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "oska/views/geometry.h"

namespace oska::views {

/// An image as a file holds it, so that each toolkit decodes it by its own means. A value that nobody
/// changes.
struct Image {
    std::string encoded;  ///< the file's bytes, in any format that the toolkit reads
    Size size;            ///< in pixels
};

/// An image from the bytes of a PNG file, whose size is read from its header; none when they are no PNG.
[[nodiscard]] std::optional<Image> pngImage(std::string bytes);

/// One of the images compiled into the kit, so that a host ships no file for it: "ic_dapo". Null for any
/// other name. Threads: any.
[[nodiscard]] std::shared_ptr<const Image> imageNamed(std::string_view name);

}  // namespace oska::views
