#pragma once

#include <string>
#include <string_view>

namespace oska::tool {

/// A coordinate, rounded to a tenth, so that a drawing is the same bytes on every machine. Requires: below
/// 1e15.
[[nodiscard]] std::string svgNumber(double value);

/// Text from a file or a server (UTF-8), made safe as content or as an attribute: what XML reserves is
/// escaped, what it does not allow becomes U+FFFD.
[[nodiscard]] std::string svgText(std::string_view text);

/// Writes one SVG element: its attributes in the order of the calls, then one of the three endings, which
/// returns the element with a line feed behind it.
class SvgElement {
public:
    /// `name` of the element: "rect".
    explicit SvgElement(std::string_view name) : name_(name), out_("<" + name_) {}

    SvgElement& set(std::string_view name, double value);
    SvgElement& set(std::string_view name, std::string_view value);

    [[nodiscard]] std::string empty() const { return out_ + "/>\n"; }
    [[nodiscard]] std::string withText(std::string_view text) const;
    /// `children`: elements that have been written already.
    [[nodiscard]] std::string around(std::string_view children) const;

private:
    std::string name_;
    std::string out_;
};

}  // namespace oska::tool
