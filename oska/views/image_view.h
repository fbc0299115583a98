#pragma once

#include <memory>

#include "oska/views/image.h"
#include "oska/views/view.h"

namespace oska::views {

/// Shows an image as large as its proportions allow, in the middle of the view. Closed to interaction from
/// the start.
class ImageView : public View {
public:
    [[nodiscard]] static std::shared_ptr<ImageView> create();

    [[nodiscard]] std::shared_ptr<const Image> image() const override { return image_; }
    /// Null shows nothing.
    void setImage(std::shared_ptr<const Image> image);

    /// Where the image is drawn, in the view's own points; empty without one.
    [[nodiscard]] Rect imageFrame() const;

private:
    ImageView();

    std::shared_ptr<const Image> image_;
};

}  // namespace oska::views
