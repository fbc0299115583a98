#include "oska/views/image.h"

#include <utility>

#include "oska/views/image_assets.h"

namespace oska::views {
namespace {

// ISO/IEC 15948, 5.2 and 11.2.2: the signature, then the header chunk, which begins with width and height.
constexpr std::string_view PNG_START{"\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16};

double bigEndian32(std::string_view bytes) {
    double value = 0;
    for (const char c : bytes.substr(0, 4)) value = value * 256 + static_cast<unsigned char>(c);
    return value;
}

std::shared_ptr<const Image> compiledIn(std::string_view png) {
    auto image = pngImage(std::string(png));
    return image ? std::make_shared<const Image>(*std::move(image)) : nullptr;
}

}  // namespace

std::optional<Image> pngImage(std::string bytes) {
    const std::string_view header = bytes;
    if (!header.starts_with(PNG_START) || header.size() < PNG_START.size() + 8) return std::nullopt;
    const Size size{bigEndian32(header.substr(16)), bigEndian32(header.substr(20))};
    return Image{std::move(bytes), size};
}

std::shared_ptr<const Image> imageNamed(std::string_view name) {
    if (name != "ic_dapo") return nullptr;
    static const auto* icDapo = new std::shared_ptr<const Image>(compiledIn(assets::icDapoPng()));
    return *icDapo;
}

}  // namespace oska::views
