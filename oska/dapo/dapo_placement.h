#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "oska/views/image_view.h"

namespace oska {

/// A Dapo view on the screen: where it lies, which image it shows, and taps. Threads: main thread. Lifetime:
/// a part of `view`.
class DapoPlacement {
public:
    explicit DapoPlacement(views::View& view) : view_(view) {}

    /// Sets what happens at a tap. To be called once, before `place`.
    void setTapAction(std::function<void()> action);

    /// Covers `to` and shows the image, null for the one that the kit contains: see
    /// `DapoView::configureFrame`. `id` is only logged.
    void place(const std::shared_ptr<views::View>& to, std::shared_ptr<const views::Image> image,
               const std::optional<std::string>& id);

private:
    void pinEdges();
    void setupAssets(std::shared_ptr<const views::Image> image);

    views::View& view_;
    std::array<std::shared_ptr<views::LayoutConstraint>, 4> edgeConstraints_;
    std::shared_ptr<const views::Image> dapoImage_;
    const std::shared_ptr<views::ImageView> dapoImageView_ = views::ImageView::create();
    std::shared_ptr<views::TapGestureRecognizer> tapRecognizer_;
};

}  // namespace oska
