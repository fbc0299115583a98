#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "oska/views/geometry.h"

namespace oska::views {

/// An image as a file holds it. The kit does not decode it; each toolkit does so by its own means. Images are
/// shared as `std::shared_ptr<const Image>` and not changed once they are shared.
struct Image {
    /// The file's bytes, in any format that the toolkit reads.
    std::string encoded = {};
    /// In pixels, not in points. Only its proportions matter for the layout: an image view shows an image of
    /// any size as large as fits.
    Size size = {};
};

/// An image from the bytes of a PNG file, which it keeps. The size is read from the file's header; what
/// follows the header is not checked. Nullopt when the bytes do not begin with the header of a PNG file.
[[nodiscard]] std::optional<Image> pngImage(std::string bytes);

/// One of the images that are compiled into the kit, so that a host need not ship a file for it. The only
/// name is "ic_dapo"; null for any other. Each call returns the same object, which is never destroyed.
/// Threads: any.
[[nodiscard]] std::shared_ptr<const Image> imageNamed(std::string_view name);

}  // namespace oska::views
