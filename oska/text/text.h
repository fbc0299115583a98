#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Unicode: decoding, trimming, lower case, and equality and order that do not depend on how an accent was
/// typed. All text is UTF-8. No result depends on a locale.
///
/// Threads: any. Cost: linear in the text; ASCII text is handled without table look-ups.
/// Errors: none. Bytes that are not well-formed UTF-8 stay as they are and equal only themselves.
namespace oska::text {

/// Whether all bytes are below 0x80. True for the empty text.
[[nodiscard]] bool isAscii(std::string_view text);

/// Whether the whole text is well-formed UTF-8. True for the empty text.
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

/// `text` without the white space and line breaks at its two ends: general category Z, U+000A to U+000D and
/// U+0085. A tab (U+0009) is not among them and stays. The result is a part of `text` and lives as long.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// Unicode's full default lower case. U+0130 becomes two scalars; a capital sigma at the end of a word
/// becomes the final sigma.
[[nodiscard]] std::string lowercased(std::string_view text);
/// Appends what lowercased() returns to `lower`.
void appendLowercased(std::string& lower, std::string_view text);

/// The canonical composed form (NFC). A text that is not well-formed UTF-8 throughout is returned unchanged.
[[nodiscard]] std::string composed(std::string_view text);
/// Appends what composed() returns to `composed`. `scalars` is working memory, and its content is
/// overwritten; a caller that keeps both objects for the next call saves allocations.
void appendComposed(std::string& composed, std::string_view text, std::vector<std::int32_t>& scalars);

/// Whether both texts have the same composed form. Compatibility forms (U+FB01 and "fi") differ.
[[nodiscard]] bool canonicallyEqual(std::string_view a, std::string_view b);

/// Order for std::map and std::set: by the scalars of the composed forms. Two texts are equivalent in this
/// order exactly when canonicallyEqual() says so.
struct CanonicalLess {
    /// Lets a container look up a std::string_view without making a std::string.
    using is_transparent = void;
    /// Whether `a` comes before `b`.
    [[nodiscard]] bool operator()(std::string_view a, std::string_view b) const;
};

}  // namespace oska::text
