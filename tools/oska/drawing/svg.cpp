#include "tools/oska/drawing/svg.h"

#include <cmath>
#include <cstdint>

namespace oska::tool {
namespace {

constexpr std::string_view REPLACEMENT = "\ufffd";

std::string_view escaped(char c) {
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        default:
            return {};
    }
}

/// U+FFFE and U+FFFF, which XML does not allow.
bool isForbidden(std::string_view text) {
    return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
}

}  // namespace

std::string svgNumber(double value) {
    const auto tenths = static_cast<std::int64_t>(std::round(value * 10));
    const auto sign = tenths < 0 ? "-" : "";
    const auto size = tenths < 0 ? -tenths : tenths;
    const auto fraction = size % 10;
    return sign + std::to_string(size / 10) + (fraction == 0 ? "" : "." + std::to_string(fraction));
}

std::string svgText(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (isForbidden(text.substr(i))) {
            out += REPLACEMENT;
            i += 2;
        } else if (byte < 0x20 || byte == 0x7f) {
            out += REPLACEMENT;
        } else {
            const auto replacement = escaped(text[i]);
            out += replacement.empty() ? text.substr(i, 1) : replacement;
        }
    }
    return out;
}

SvgElement& SvgElement::set(std::string_view name, double value) { return set(name, svgNumber(value)); }

SvgElement& SvgElement::set(std::string_view name, std::string_view value) {
    out_.append(" ").append(name).append("=\"").append(svgText(value)).append("\"");
    return *this;
}

std::string SvgElement::withText(std::string_view text) const {
    return out_ + ">" + svgText(text) + "</" + name_ + ">\n";
}

std::string SvgElement::around(std::string_view children) const {
    return out_ + ">\n" + std::string(children) + "</" + name_ + ">\n";
}

}  // namespace oska::tool
