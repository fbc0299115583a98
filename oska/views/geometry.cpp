#include "oska/views/geometry.h"

#include <algorithm>
#include <charconv>

namespace oska::views {
namespace {

void appendNumber(std::string& text, double number) {
    char digits[32];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

bool isEmpty(Size size) { return !(size.width > 0 && size.height > 0); }

}  // namespace

bool Rect::contains(ViewPoint point) const {
    return point.x >= x && point.x < x + width && point.y >= y && point.y < y + height;
}

Rect aspectFit(Size content, Size box) {
    if (isEmpty(content) || isEmpty(box)) return {box.width / 2, box.height / 2, 0, 0};
    const double scale = std::min(box.width / content.width, box.height / content.height);
    const Size fitted{content.width * scale, content.height * scale};
    return {(box.width - fitted.width) / 2, (box.height - fitted.height) / 2, fitted.width, fitted.height};
}

std::string describe(const Rect& rect) {
    std::string text = "(";
    for (const double number : {rect.x, rect.y, rect.width}) {
        appendNumber(text, number);
        text += ", ";
    }
    appendNumber(text, rect.height);
    return text += ')';
}

}  // namespace oska::views
