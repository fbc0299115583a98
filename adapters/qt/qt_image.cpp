#include "adapters/qt/qt_image.h"

#include <QtGlobal>
#include <map>

namespace oska::qt {
namespace {

using Key = std::weak_ptr<const views::Image>;

QImage decode(const std::string& bytes) {
    auto image = QImage::fromData(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    if (image.isNull())
        qWarning("QuenloOska: an image of %zu bytes cannot be decoded, and is not shown", bytes.size());
    return image;
}

}  // namespace

QImage decoded(const std::shared_ptr<const views::Image>& image) {
    static std::map<Key, QImage, std::owner_less<Key>> images;
    if (!image) return {};
    if (const auto known = images.find(image); known != images.end()) return known->second;
    std::erase_if(images, [](const auto& entry) { return entry.first.expired(); });
    return images.emplace(image, decode(image->encoded)).first->second;
}

}  // namespace oska::qt
