#include "oska/views/image_view.h"

#include <utility>

namespace oska::views {

std::shared_ptr<ImageView> ImageView::create() { return std::shared_ptr<ImageView>(new ImageView); }

ImageView::ImageView() : View({}) { setUserInteractionEnabled(false); }

void ImageView::setImage(std::shared_ptr<const Image> image) {
    image_ = std::move(image);
    tellPeer(platform::ViewChange::image);
}

Rect ImageView::imageFrame() const { return aspectFit(image_ ? image_->size : Size{}, bounds().size()); }

}  // namespace oska::views
