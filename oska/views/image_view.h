#pragma once

#include <memory>

#include "oska/views/image.h"
#include "oska/views/view.h"

namespace oska::views {

/// A view that shows an image, centred and as large as the view and the image's proportions allow.
///
/// User interaction is off at first: a tap goes to the view below. The image is scaled, never cut off; what
/// it leaves free of the view is transparent.
/// Threads: main thread. Lifetime: as View; the image is shared with whoever set it.
class ImageView : public View {
public:
    /// A view without an image, with an empty frame.
    [[nodiscard]] static std::shared_ptr<ImageView> create();

    /// The image that is shown, or null.
    /// An image stays alive as long as a view shows it.
    [[nodiscard]] std::shared_ptr<const Image> image() const override { return image_; }

    /// Shows `image` from now on; null shows nothing. The view's peer is told also when it is the same image.
    void setImage(std::shared_ptr<const Image> image);

    /// Where the image is drawn, in points from the view's own upper left corner. Empty, in the middle of the
    /// view, without an image.
    [[nodiscard]] Rect imageFrame() const;

private:
    ImageView();

    std::shared_ptr<const Image> image_;
};

}  // namespace oska::views
