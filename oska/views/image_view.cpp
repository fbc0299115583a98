#include "oska/views/image_view.h"

#include <utility>

namespace oska::platform {

std::shared_ptr<ImageView> ImageView::create() { return std::shared_ptr<ImageView>(new ImageView); }

ImageView::ImageView() : View({}) { setUserInteractionEnabled(false); }

void ImageView::setImage(std::shared_ptr<const Image> image) {
    image_ = std::move(image);
    tellPeer(ViewChange::image);
}

Rect ImageView::imageFrame() const { return aspectFit(image_ ? image_->size : Size{}, bounds().size()); }

}  // namespace oska::platform
