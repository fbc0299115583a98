#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What the kit asks of Unicode: trimming, lower case, and equality and order that do not depend on how an
/// accent was typed. All text is UTF-8; no result depends on a locale.
///
/// Threads: any. Cost: linear in the text; plain ASCII never reaches a table.
/// Errors: none. Bytes that are no UTF-8 stay as they are and count as nothing but themselves.
namespace oska::text {

[[nodiscard]] bool isAscii(std::string_view text);
[[nodiscard]] bool isUtf8(std::string_view text);

/// What a text begins with.
struct Scalar {
    std::int32_t value = -1;  ///< the Unicode scalar; -1 when the first byte begins no well-formed UTF-8
    std::size_t length = 1;   ///< its bytes in the text; 1 when `value` is -1
};

/// Decodes the first scalar of `text`. Overlong forms, surrogates, values above U+10FFFF and sequences that
/// are cut off are not well-formed. REQUIRES: `text` is not empty.
[[nodiscard]] Scalar firstScalar(std::string_view text);

/// Appends `scalar` as UTF-8. REQUIRES: a Unicode scalar, thus no surrogate.
void appendScalar(std::string& text, std::int32_t scalar);

/// The part of `text` between its white space and line breaks: general category Z, U+000A to U+000D and
/// U+0085, taken off scalar by scalar. A tab (U+0009) is neither and stays.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// Unicode's full default lower case: U+0130 becomes two scalars, and a capital sigma that ends a word the
/// final one.
[[nodiscard]] std::string lowercased(std::string_view text);
/// The same, appended to `lower`.
void appendLowercased(std::string& lower, std::string_view text);

/// The canonical composed form (NFC). A text that is not UTF-8 throughout is its own form.
[[nodiscard]] std::string composed(std::string_view text);
/// The same, appended to `composed`. What `scalars` holds is lost; a caller that keeps both saves
/// allocations.
void appendComposed(std::string& composed, std::string_view text, std::vector<std::int32_t>& scalars);

/// Whether both texts have one composed form. Compatibility forms (U+FB01 and "fi") differ.
[[nodiscard]] bool canonicallyEqual(std::string_view a, std::string_view b);

/// Orders texts by the scalars of their composed forms; two texts are equivalent exactly when
/// `canonicallyEqual`.
struct CanonicalLess {
    using is_transparent = void;
    [[nodiscard]] bool operator()(std::string_view a, std::string_view b) const;
};

}  // namespace oska::text
